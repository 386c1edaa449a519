// Managers, their lookups, locks and edits.

#include <utility>

#include "operations/operation.hpp"
#include "operations/worlds.hpp"
#include "zelk/predicates.hpp"

namespace {

using W = Databases;

const char* const kAll = nullptr;
void* const kThread = nullptr;

/// A manager as a host derives it.
struct Derived : ZelkManager {
  Derived() : ZelkManager(HWND{}) {}
  ::Answer assign(const char* path) {
    ZelkDatabase& database = AssignDatabase(path);
    ReleaseDatabase(database, false);
    return called();
  }
};

/// A lock as the library takes it.
template <typename Lock>
Answer locked(W& w) {
  Lock* const lock = Lock::Create(w.writer, w.db, "reason");
  return lock && !lock->Reason() ? Answer("without a reason") : Answer(lock);
}

/// Opens the other file in a manager and closes it.
Answer opened(W& w, const char* name) {
  const ZelkError error = w.reader.OpenDatabase(w.other.c_str(), nullptr, name, 3);
  w.reader.CloseDatabase(false);
  return error;
}

const Operations<W> kManagers(
    "Managers",
    {
        {"ZelkManager::ZelkManager", Promise::kIsSilent, kBadAlloc,
         [](W&) {
           return called(ZelkManager(HWND{}).DatabaseCount(), ZelkManager(kThread).Status());
         }},
        {"ZelkWriteManager::ZelkWriteManager", Promise::kIsSilent, kBadAlloc,
         [](W&) {
           return called(ZelkWriteManager(HWND{}).Status(), ZelkWriteManager(kThread).Status());
         }},
        {"ZelkManager::OpenDatabase ZelkManager::CloseDatabase", Promise::kReports, "1",
         [](W& w) { return opened(w, nullptr); }},
        {"ZelkManager::OpenDatabase", Promise::kReports, "1",
         [](W& w) { return opened(w, "name"); }},
        {"ZelkManager::OpenDatabase", Promise::kReports, "1",
         [](W& w) -> Answer {  // of a database that another manager has
           const char* name = nullptr;
           const ZelkError error = w.reader.OpenDatabase(w.path.c_str(), &name, 0);
           if (name) w.reader.CloseDatabase(name, false);
           return error;
         }},
        {"ZelkManager::CloseDatabase ZelkManager::FlushDatabaseCache", Promise::kDoesWithout,
         nullptr,
         [](W& w) -> Answer {
           w.writer.CloseDatabase(w.db, true);
           w.writer.FlushDatabaseCache();
           return called();
         }},
        {"ZelkManager::AssignDatabase ZelkManager::ReleaseDatabase", Promise::kReports,
         "ZelkException|silent:bad_alloc",
         [](W& w) {
           Derived derived;
           return derived.assign(w.other.c_str());
         }},
        {"ZelkManager::ReopenDatabase", Promise::kLeavesAPart, "1",
         [](W& w) -> Answer { return w.writer.ReopenDatabase(w.db); }},
        {"ZelkManager::GetDatabaseFileInfo", Promise::kAllocatesNothing, nullptr,
         [](W& w) -> Answer { return w.reader.GetDatabaseFileInfo(w.path.c_str()); }},
        {"ZelkManager::CheckForWriteOpen ZelkManager::OwnsDatabaseForWrite",
         Promise::kAllocatesNothing, nullptr,
         [](W& w) {
           return called(w.reader.CheckForWriteOpen(w.path.c_str()),
                         w.reader.OwnsDatabaseForWrite(w.path.c_str()));
         }},
        {"ZelkWriteManager::CheckForWriteOpen", Promise::kReports, "5",
         [](W& w) -> Answer { return w.writer.CheckForWriteOpen(w.other.c_str()); }},
        {"ZelkWriteManager::OwnsDatabaseForWrite", Promise::kReports, "1",
         [](W& w) -> Answer { return w.writer.OwnsDatabaseForWrite(w.other.c_str()); }},
        {"ZelkManager::GetDatabaseName", Promise::kReports, "null",
         [](W& w) -> Answer {
           const char* const name = w.reader.GetDatabaseName(w.other.c_str());
           const bool is_told = w.reader.Status() == ZelkStatusNotFound;
           zelk_mfree(const_cast<char*>(name));
           w.reader.FlushDatabaseCache();
           return name ? "a name" : is_told ? "null" : "null, and the status is good";
         }},
        {"ZelkManager::SetDatabaseName", Promise::kReports, "1",
         [](W& w) -> Answer { return w.writer.SetDatabaseName(w.db, &w.db, "another"); }},
        {"ZelkManager::GetDefaultDatabaseName", Promise::kReports, "0",
         [](W& w) -> Answer {
           char text[40];
           return w.writer.GetDefaultDatabaseName(w.db, text, sizeof text);
         }},
        {"ZelkManager::NotifyChanges", Promise::kReports, "called",
         [](W& w) -> Answer {
           ZelkManager::NotifyChanges(w.writer, *w.database);
           w.writer.NotifyChanges(*w.database, w.writer);
           return called();
         }},
        {"ZelkManager::GetUniqueDatabaseName ZelkManager::GetDatabasePath "
         "ZelkManager::IsDatabaseName "
         "ZelkManager::GetDatabase ZelkManager::GetConstDatabase "
         "ZelkManager::AssignSelectionPattern "
         "ZelkManager::GetSelectionPattern ZelkManager::GetPriority "
         "ZelkManager::AssignDatabaseInfo "
         "ZelkManager::GetDatabaseInfo ZelkManager::DatabaseCount "
         "ZelkManager::SymbolsShortenedOnRead "
         "ZelkManager::IsNewFeatureUsed ZelkManager::IsSavingOfNewFeaturePossible "
         "ZelkManager::SetHandle ZelkManager::GetManagersList ZelkManager::GetLastOpenError "
         "ZelkWriteManager::WriteExtendedMultiplexing ZelkNoneFilterCategory ZelkNoneFilterNode "
         "ZelkErrorText ZelkSigvalueResultText ZelkVerifyDatabaseName ZelkSplitQualifiedName "
         "ZELKMSGetModuleParameters ZelkDatabaseNameAttribute ZelkNotificationMessageString "
         "zelk_set_message_box zelk_set_notification_sink",
         Promise::kAllocatesNothing, nullptr,
         [](W& w) {
           ZelkWriteManager& m = w.writer;
           char text[99] = "a::b", version[9] = {};
           const char *db = nullptr, *object = nullptr;
           m.SetHandle(HWND{});
           m.SetHandle(static_cast<void*>(nullptr));
           zelk_set_notification_sink(nullptr, nullptr);
           zelk_set_message_box(nullptr, nullptr);
           return called(
               m.GetUniqueDatabaseName("every"), m.GetDatabasePath("every"), m.IsDatabaseName(w.db),
               m.GetDatabase(w.db), m.GetConstDatabase(w.db), std::as_const(m).GetDatabase(w.db),
               m.AssignSelectionPattern({1, 2}, w.db), m.GetSelectionPattern(w.db),
               m.GetPriority(w.db), m.AssignDatabaseInfo(text, w.db), m.GetDatabaseInfo(w.db),
               m.DatabaseCount(), m.SymbolsShortenedOnRead(w.db), m.IsNewFeatureUsed(1, w.db),
               m.IsSavingOfNewFeaturePossible(1), ZelkManager::GetManagersList(),
               m.GetLastOpenError(), m.WriteExtendedMultiplexing(w.db, true),
               ZelkNoneFilterCategory().number, ZelkNoneFilterNode().name,
               ZelkErrorText(ZelkErrorLocked), ZelkSigvalueResultText(ZelkSigvalueTooLong),
               ZelkVerifyDatabaseName("a"), ZelkSplitQualifiedName(text, &db, &object),
               ZELKMSGetModuleParameters(text, 99, version, 9, 1), ZelkDatabaseNameAttribute[0],
               ZelkNotificationMessageString[0]);
         }},

        {"ZelkReadLock::Create", Promise::kReports, "null", locked<ZelkReadLock>},
        {"ZelkWriteLock::Create", Promise::kReports, "null", locked<ZelkWriteLock>},
        {"ZelkReadLock::GetLock ZelkReadLock::IsWriteLock ZelkLock::ShowMessage",
         Promise::kIsSilent, kBadAlloc,
         [](W& w) -> Answer { return called(ZelkReadLock::GetLock(w.reader, *w.database)); }},
        {"ZelkWriteLock::GetLock ZelkWriteLock::IsWriteLock", Promise::kIsSilent, kBadAlloc,
         [](W& w) -> Answer { return ZelkWriteLock::GetLock(w.reader, *w.database); }},
        {"ZelkManager::LockDatabase ZelkManager::LockAllDatabases ZelkWriteManager::LockDatabase "
         "ZelkManager::UnlockDatabase",
         Promise::kReports, "0",
         [](W& w) -> Answer {
           const bool is_locked = w.writer.LockDatabase(w.db, "reason");
           w.writer.UnlockDatabase(w.db);
           return is_locked && w.writer.LockAllDatabases(nullptr);
         }},
        {"ZelkWriteManager::LockAllDatabases ZelkLock::FreeLock", Promise::kReports, "0",
         [](W& w) -> Answer {
           const bool is_locked = w.writer.LockAllDatabases("reason");
           ZelkLock::FreeLock(w.writer);
           ZelkLock::FreeLock(w.writer, *w.database);
           return is_locked;
         }},

        {"ZelkWriteManager::CreateDatabase", Promise::kReports, "1",
         [](W& w) -> Answer { return w.writer.CreateDatabase("new", nullptr, w.fresh.c_str()); }},
        {"ZelkWriteManager::WriteDatabase", Promise::kLeavesAPart, "9|0",  // written, not announced
         [](W& w) -> Answer { return w.writer.WriteDatabase(w.db, nullptr); }},
        {"ZelkWriteManager::WriteDatabase", Promise::kLeavesAPart, "9|0",
         [](W& w) -> Answer { return w.writer.WriteDatabase(kAll, nullptr); }},
        {"ZelkWriteManager::CommitDatabase", Promise::kReports, "called",
         [](W& w) -> Answer {
           w.writer.CommitDatabase(w.db);
           return called();
         }},
        {"ZelkWriteManager::ClearDatabase", Promise::kAllocatesNothing, nullptr,
         [](W& w) -> Answer {
           w.writer.ClearDatabase(w.db);
           return called();
         }},
    });

}  // namespace
