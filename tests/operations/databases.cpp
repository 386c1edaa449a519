// Databases, as hosts have them from a manager, and as the library keeps them.

#include <utility>

#include "operations/operation.hpp"
#include "operations/worlds.hpp"

namespace {

using W = Databases;

/// What only the library makes and lists.
struct Own : ZelkDatabase {
  Own() = default;
  explicit Own(const char* file) : ZelkDatabase(file) {}
  explicit Own(const ZelkDatabase& other) : ZelkDatabase(other) {}
  void assign(const ZelkDatabase& other) { ZelkDatabase::operator=(other); }
  using ZelkDatabase::CreateDatabase;
  using ZelkDatabase::DestroyDatabase;
  using ZelkDatabase::ListFindDb;
  using ZelkDatabase::ListInsertDb;
  using ZelkDatabase::ListRemoveDb;
  using ZelkDatabase::ReleaseCache;
};

/// Opens the other file in the list, and gives it back.
Answer created(const char* file) {
  ZelkDatabase& database = Own::CreateDatabase(file);
  const bool is_read = database.nodes;
  Own::DestroyDatabase(database, false);
  return is_read;
}

const Operations<W> kOperations(
    "Databases",
    {
        {"ZelkDatabase::ZelkDatabase", Promise::kReports, kRaises,
         [](W&) -> Answer { return Own().user_data; }},
        {"ZelkDatabase::CreateDatabase ZelkDatabase::DestroyDatabase", Promise::kReports,
         "ZelkException|silent:bad_alloc", [](W& w) { return created(w.other.c_str()); }},
        {"ZelkDatabase::CreateDatabase", Promise::kReports, "ZelkException|silent:bad_alloc",
         [](W&) { return created(nullptr); }},
        {"ZelkDatabase::ListFindDb", Promise::kIsSilent, kBadAlloc,
         [](W& w) -> Answer { return Own::ListFindDb(w.path.c_str()); }},
        {"ZelkDatabase::ReleaseCache", Promise::kAllocatesNothing, nullptr,
         [](W&) -> Answer {
           Own::ReleaseCache();
           return 0;
         }},
        {"ZelkDatabase::ListInsertDb ZelkDatabase::ListRemoveDb", Promise::kIsSilent, kBadAlloc,
         [](W& w) -> Answer {
           Own::ListRemoveDb(*w.database);
           Own::ListInsertDb(*w.database);
           return 0;
         }},
        {"ZelkDatabase::IsPathEqual", Promise::kReports, "0",
         [](W& w) -> Answer { return w.database->IsPathEqual(w.path.c_str()); }},
        {"ZelkDatabase::ReopenDatabaseFile", Promise::kLeavesAPart, "1",
         [](W& w) -> Answer { return w.database->ReopenDatabaseFile(); }},
        {"ZelkDatabase::Write", Promise::kReports, "9",
         [](W& w) -> Answer { return w.database->Write(nullptr); }},
        {"ZelkDatabase::Write", Promise::kLeavesAPart, "9",  // the new file becomes its own at once
         [](W& w) -> Answer { return w.database->Write(w.fresh.c_str()); }},
        {"ZelkDatabase::Clear", Promise::kAllocatesNothing, nullptr,
         [](W& w) -> Answer {
           w.database->Clear();
           return 0;
         }},
        {"ZelkDatabase::GetNode ZelkDatabase::GetMessage ZelkDatabase::GetEnvvar "
         "ZelkDatabase::GetBitTiming ZelkDatabase::GetValueTable ZelkDatabase::GetSignalType "
         "ZelkDatabase::GetAttrDef ZelkDatabase::GetJ1939Message",
         Promise::kDoesWithout, nullptr,
         [](W& w) -> Answer {
           ZelkDatabase& d = *w.database;
           return d.GetNode("E") && d.GetMessage("M") && d.GetEnvvar("W") && d.GetBitTiming(500) &&
                  d.GetValueTable("Gears") && d.GetSignalType("Celsius") &&
                  d.GetAttrDef("RelVar") && d.GetMessage(1UL) &&
                  !d.GetJ1939Message(0x98FF0000UL, 0);
         }},
        {"ZelkDatabase::CreateNode ZelkDatabase::DeleteNode", Promise::kReports, "null",
         [](W& w) -> Answer {
           symblk* const made = w.database->CreateNode(9);
           if (made) w.database->DeleteNode(*made);
           return made;
         }},
        {"ZelkDatabase::CreateMessage ZelkDatabase::DeleteMessage", Promise::kReports, "null",
         [](W& w) -> Answer {
           msgblk* const made = w.database->CreateMessage(9);
           if (made) w.database->DeleteMessage(*made);
           return made;
         }},
        {"ZelkDatabase::CreateEnvvar ZelkDatabase::DeleteEnvvar", Promise::kReports, "null",
         [](W& w) -> Answer {
           env_var_blk* const made = w.database->CreateEnvvar(9);
           if (made) w.database->DeleteEnvvar(*made);
           return made;
         }},
        {"ZelkDatabase::CreateBitTiming ZelkDatabase::DeleteBitTiming", Promise::kReports, "null",
         [](W& w) -> Answer {
           btlblk* const made = w.database->CreateBitTiming(9);
           if (made) w.database->DeleteBitTiming(*made);
           return made;
         }},
        {"ZelkDatabase::CreateValueTable ZelkDatabase::DeleteValueTable", Promise::kReports, "null",
         [](W& w) -> Answer {
           valtable* const made = w.database->CreateValueTable(9);
           if (made) w.database->DeleteValueTable(*made);
           return made;
         }},
        {"ZelkDatabase::CreateSignalType ZelkDatabase::DeleteSignalType", Promise::kReports, "null",
         [](W& w) -> Answer {
           sigtype* const made = w.database->CreateSignalType(9);
           if (made) w.database->DeleteSignalType(*made);
           return made;
         }},
        {"ZelkDatabase::CreateCategory ZelkDatabase::DeleteCategory", Promise::kReports, "null",
         [](W& w) -> Answer {
           cat* const made = w.database->CreateCategory(9);
           if (made) w.database->DeleteCategory(*made);
           return made;
         }},
        {"ZelkDatabase::CreateAttrDef ZelkDatabase::DeleteAttrDef", Promise::kReports, "null",
         [](W& w) -> Answer {
           attr_def* const made = w.database->CreateAttrDef(99);
           if (made) w.database->DeleteAttrDef(*made);
           return made;
         }},
        {"ZelkDatabase::SetComment", Promise::kReports, "called",
         [](W& w) -> Answer {
           w.database->SetComment("a new comment");
           return called();
         }},
        {"ZelkDatabase::SetUserData", Promise::kReports, "called",
         [](W& w) -> Answer {
           w.database->SetUserData(nullptr);
           return called();
         }},
        {"ZelkDatabase::GetDefaultName", Promise::kReports, "null",
         [](W& w) -> Answer {
           char* const name = w.database->GetDefaultName();
           const Answer answer = name;
           zelk_mfree(name);
           return answer;
         }},
        {"ZelkDatabase::RenameAttrDef ZelkDatabase::CheckAndInsertPredefinedAttrs "
         "ZelkDatabase::CheckAndRemovePredefinedAttrs ZelkPredefinedAttributes::Insert "
         "ZelkPredefinedAttributes::Remove ZelkPredefinedAttributes::IsPredefinedAttribute",
         Promise::kLeavesAPart, "called",
         [](W& w) -> Answer {
           ZelkDatabase& d = *w.database;
           d.RenameAttrDef(*d.GetAttrDef("Var"), "SystemEnvVarLongSymbol");
           d.CheckAndRemovePredefinedAttrs(*d.GetAttrDef("SystemEnvVarLongSymbol"));
           d.CheckAndInsertPredefinedAttrs(*d.GetAttrDef("SystemEnvVarLongSymbol"));
           d.RenameAttrDef(*d.GetAttrDef("SystemEnvVarLongSymbol"), "Var");
           return called();
         }},
        {"ZelkPredefinedAttributes::ClearAll", Promise::kAllocatesNothing, nullptr,
         [](W& w) -> Answer {
           w.database->predefined.ClearAll();
           return called();
         }},
    });

/// A second instance of the open file, with another comment.
struct Twins : W {
  Twins() : W("BS_:\nBU_: A\nBO_ 1 M: 8 A\n SG_ S : 0|8@1+ (1,0) [0|9] \"\" A\n"), twin(*database) {
    twin.SetComment("twin");
    writer.CloseDatabase(false);
    reader.OpenDatabase(path.c_str(), &db, "every", 0);
  }
  std::string state() const override { return W::state() + content_of(twin); }
  Own twin;
};

const Operations<Twins> kCopies(
    "Copies",
    {
        {"ZelkDatabase::ZelkDatabase", Promise::kReports, "ZelkException|called",
         [](Twins& w) { return called(Own(w.twin)); }},
        {"ZelkDatabase::operator=", Promise::kLeavesAPart, "called",
         [](Twins& w) -> Answer {
           w.twin.assign(*w.reader.GetConstDatabase(w.db));
           return called();
         }},
        {"ZelkDatabase::operator==", Promise::kAllocatesNothing, nullptr,
         [](Twins& w) -> Answer { return w.twin == *w.reader.GetConstDatabase(w.db); }},
        {"ZelkDatabase::Commit", Promise::kLeavesAPart, "called",
         [](Twins& w) -> Answer {
           w.twin.Commit();
           return called();
         }},
        {"ZelkDatabase::Write", Promise::kLeavesAPart, "9|0",  // saved, and the other lacks a list
         [](Twins& w) -> Answer { return w.twin.Write(nullptr); }},
    });

const std::vector<Stated<Opened>> kLookups = {
    {"ZelkDatabase::GetNode ZelkDatabase::GetMessage ZelkDatabase::GetEnvvar "
     "ZelkDatabase::GetBitTiming ZelkDatabase::GetValueTable ZelkDatabase::GetSignalType "
     "ZelkDatabase::GetAttrDef ZelkDatabase::GetJ1939Message ZelkDatabase::GetMaxEnvvarHandle "
     "ZelkDatabase::HasJ1939GroupNumbers ZelkDatabase::J1939Flags",
     Promise::kDoesWithout, nullptr,
     [](Opened& w) -> Answer {
       const ZelkDatabase& d = *w.manager->GetConstDatabase(w.db);
       const auto flags = ZelkDatabase::J1939Flags(0, false);
       return d.GetNode("E") && d.GetMessage("M") && d.GetMessage(1UL) && d.GetEnvvar("W") &&
              d.GetBitTiming(500) && d.GetValueTable("Gears") && d.GetSignalType("Celsius") &&
              d.GetAttrDef("RelVar") && d.GetMaxEnvvarHandle() == 10 && !d.HasJ1939GroupNumbers() &&
              !d.GetJ1939Message(0x98FF0000UL, flags);
     }},
};

const Operations<W, Opened> kOwnLookups("Databases", kLookups);
const Operations<SharedDatabase, Opened> kSharedLookups("SharedDatabase", kLookups);

}  // namespace
