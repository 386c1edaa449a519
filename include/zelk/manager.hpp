/// \file
/// The entry object of the class interface: open databases, their names, and notifications of
/// changes.

#ifndef ZELK_MANAGER_HPP
#define ZELK_MANAGER_HPP

#include <memory>
#include <vector>

#include "zelk/database.hpp"
#include "zelk/types.hpp"

namespace zelk {
struct ManagerAttributes;
struct ManagerEdits;
struct ManagerLookups;
struct ManagerTables;

/// Records that carry attribute values: nodes, messages, environment variables, signals, signal
/// types, links.
template <typename Record>
concept AttributeOwner = requires(const Record& record) {
  record.attrs;
};
/// Records that carry value descriptions.
template <typename Record>
concept ValueOwner = requires(const Record& record) {
  record.values;
};
}  // namespace zelk

class ZelkManager;
class MultiplexedBySignalPredicate;
class ValidMultiplexorPredicate;
class ValidSignalPredicate;
template <typename T>
class ZelkIterator;

/// Entry of the process-wide list of managers.
struct ZelkManagerNode {
  ZelkManager& manager;
  ZelkManagerNode* next;
};

/// Holds open databases for one window or thread of a host.
///
/// **Names.** A manager hands out a name for each open database. That text is a handle: the
/// operations that take an open database's name (parameter `db`) compare its address, not its
/// characters. `GetUniqueDatabaseName` turns any text into the handle of that name. A handle lives
/// until its database is closed or renamed. A handle of another manager, or any other text, names
/// no database.
///
/// **Order.** Databases stand in descending priority and, among equals, in the order of opening:
/// the order in which lookups visit them.
///
/// **Sharing.** Managers that open the same unchanged file share one `ZelkDatabase`, and so see
/// each other's edits at once.
///
/// **None and all.** Null has two meanings: `GetUniqueDatabaseName` returns it when there is no
/// such name, and as `db` it means all databases to `CloseDatabase`, `ReopenDatabase`,
/// `UnlockDatabase`, to the write manager's `WriteDatabase`, `CommitDatabase` and `ClearDatabase`,
/// and to lookups, iterators and counts. So test the result before you pass it on:
///
///     const char* const db = manager.GetUniqueDatabaseName("motor");
///     if (db) manager.CloseDatabase(db, false);
///
/// **Relative paths** start at the working folder at the time of the call. A database stays with
/// the file that its path named then, when the working folder changes later; its `path` keeps the
/// text.
///
/// **Threads.** Managers of different threads may run at once, and share databases, as long as
/// nobody edits these; one manager belongs to one thread at a time. zelk.h has the whole contract.
/// The operations that a host overrides run in the thread that called the manager. While
/// `OwnsDatabaseForWrite` runs, other threads wait for the lists of the process: it must not wait
/// for those threads.
///
/// **Memory.** Only the constructors raise, when the heap is exhausted. An operation that runs out
/// of memory reports `ZELK_ERR_MEMORY` in the error text (errors.h) and fails.
class ZELK_API ZelkManager {
 public:
  /// One open database of a manager.
  struct DbListNode {
    char* name;                    ///< owned; the handle
    const ZelkDatabase& database;  ///< `GetDatabase` gives it to be changed
    std::uint32_t priority;
    ZelkSelectionPattern pattern;
    std::uint32_t envvar_handle_base;  ///< the manager's when the database was opened
    void* info;                        ///< the application's own
    DbListNode* next;
    DbListNode* previous;  ///< null for the first
  };

  /// Sends notifications to the thread whose identifier is in the low 32 bits of `thread`; null: to
  /// nobody.
  explicit ZelkManager(void* thread);
  /// Sends notifications to a window; null: to nobody.
  explicit ZelkManager(HWND window);
  ZelkManager(const ZelkManager&) = delete;
  ZelkManager& operator=(const ZelkManager&) = delete;

  // The virtual operations, in the order of their slots.

  /// Closes all databases without keeping them in the cache. The last manager empties the cache.
  virtual ~ZelkManager();

  /// Takes a lock on a database (lock.hpp): here a read lock. A refusal is shown to the user.
  ///
  /// @param reason  shown to the user of another application when this lock refuses it; copied, may
  /// be null
  /// @return false when another manager's lock refuses, or there is no such database
  virtual bool LockDatabase(const char* db, const char* reason);
  /// Takes a lock on every database in list order. At the first refusal it stops and frees all
  /// locks of this manager, older ones too.
  ///
  /// @return false when one is refused
  virtual bool LockAllDatabases(const char* reason);
  /// Frees this manager's locks on a database; null: all its locks ("None and all" above).
  virtual void UnlockDatabase(const char* db);

  /// Whether a file can be opened.
  ///
  /// @return `ZelkErrorOk`, also for a read-only file; `ZelkErrorFileNotFound` when it does not
  /// exist
  virtual ZelkError GetDatabaseFileInfo(const char* path) const;
  /// Whether the file may be opened while other managers edit it: here always (`ZelkErrorOk`).
  virtual ZelkError CheckForWriteOpen(const char* path) const;
  /// Whether this manager has the file open for writing: here never.
  virtual bool OwnsDatabaseForWrite(const char* path) const;

 protected:
  /// The shared database of a file, which is read unless it is open already. Keeps the error text
  /// for `GetLastOpenError`. A derived manager that edits the database must get it from
  /// `GetDatabase`, so that lookups stop using its index.
  ///
  /// @throws ZelkException when the file cannot be read
  virtual ZelkDatabase& AssignDatabase(const char* path);
  /// Gives a database back, and frees this manager's locks on it.
  virtual void ReleaseDatabase(ZelkDatabase& database, bool keep_in_cache);

 public:
  /// Sends notifications to a thread from now on, and no more to a window.
  void SetHandle(void* thread);
  /// Sends notifications to a window from now on, and no more to a thread.
  void SetHandle(HWND window);

  // --- Opening and closing ---

  /// Opens a file.
  ///
  /// @param path         in the system's encoding
  /// @param name         receives the handle, with `ZelkErrorOk` and `ZelkErrorAlreadyOpen`; may be
  /// null
  /// @param wanted_name  name for the database; null: its default name (`ZelkDatabase`)
  /// @param priority     counts only without a wanted name; with one it is 0
  /// @return tested in this order: `ZelkErrorInvalidName` for the wanted name, `ZelkErrorNameUsed`
  /// likewise, `ZelkErrorFileNotFound`, `ZelkErrorAlreadyOpen` when this manager has the file open,
  /// `ZelkErrorOpenForWrite` when a write manager refuses, `ZelkErrorNoDatabase` when the file
  /// cannot be read (`GetLastOpenError` tells why), `ZelkErrorNameUsed` for the default name; or
  /// `ZelkErrorOk`. On all but `ZelkErrorOk` and `ZelkErrorAlreadyOpen` nothing has changed
  ZelkError OpenDatabase(const char* path, const char** name, const char* wanted_name,
                         unsigned priority);
  ZelkError OpenDatabase(const char* path, const char** name, unsigned priority);
  /// Reads a database's file again. Its old records are released, for every manager that has it
  /// open.
  ///
  /// @param db  null: all databases ("None and all" above)
  /// @return `ZelkErrorOk`; `ZelkErrorNoDatabase` when there is no such database, or its file
  /// cannot be read (`ZelkDatabase::ReopenDatabaseFile`): the reason is in the error text
  /// (errors.h), which this does not clear, and not in `GetLastOpenError`; `ZelkErrorFileNotFound`,
  /// with the records as they were, when the file is gone or there is none. For all databases the
  /// last error met
  ZelkError ReopenDatabase(const char* db);
  /// Closes a database, and frees this manager's locks on it; does nothing when there is no such
  /// database. Edits that were not written are lost unless another manager has it open, or the
  /// cache keeps it as it is.
  ///
  /// @param db             null: all databases ("None and all" above)
  /// @param keep_in_cache  a following open of the unchanged file finds it without reading, until
  /// `FlushDatabaseCache`
  void CloseDatabase(const char* db, bool keep_in_cache);
  void CloseDatabase(bool keep_in_cache);  ///< all databases
  /// Deleted: the language would convert a name alone to `true`.
  template <typename T>
  void CloseDatabase(T* db) = delete;
  /// Gives up the databases that this manager closed into the cache.
  void FlushDatabaseCache();
  /// The message lines that were reported while this manager last opened a file, each with a line
  /// feed; empty when there were none. Valid until the next open.
  const char* GetLastOpenError() const;

  // --- Names ---

  /// The name of the database of a file.
  ///
  /// @return of an open file the handle; of another one its default name, a new text that the
  /// caller releases with `zelk_mfree` (the file is read into the cache); null, with
  /// `ZelkStatusNotFound`, when the file does not exist or cannot be read
  const char* GetDatabaseName(const char* path);
  /// Gives a database another name. The old handle is no longer valid.
  ///
  /// @param name  receives the new handle, on success only; may be null
  /// @return `ZelkErrorOk`; `ZelkErrorNoDatabase` when there is no such database, or no memory;
  /// `ZelkErrorInvalidName` for a name that no database can have; `ZelkErrorNameUsed` when another
  /// database of this manager has it
  ZelkError SetDatabaseName(const char* db, const char** name, const char* new_name);
  /// The handle whose characters are those of `text`; null, with `ZelkStatusNotFound`, when there
  /// is none. Test the result before you pass it on: see "None and all" above.
  const char* GetUniqueDatabaseName(const char* text);
  /// Puts the default name of a database into `buffer`, terminated.
  ///
  /// @param buffer  may be null, and `size` may be 0: then nothing is stored
  /// @return whether all of it was stored; false, with nothing stored, when there is no such
  /// database
  bool GetDefaultDatabaseName(const char* db, char* buffer, std::size_t size);
  /// Path of the database whose name has the characters of `text`; null, with `ZelkStatusNotFound`,
  /// when there is none. The database's own text.
  const char* GetDatabasePath(const char* text);
  bool IsDatabaseName(const char* db);  ///< whether it is a handle of this manager; sets the status
  /// The database, to be changed; valid while it is open here. Null, with `ZelkStatusNotFound`,
  /// when there is none. From now on its lookups walk the lists, until it is read again, cleared or
  /// assigned to: to read it only, use `GetConstDatabase`.
  ZelkDatabase* GetDatabase(const char* db);
  /// The same database, only to be read: its lookups stay fast.
  const ZelkDatabase* GetConstDatabase(const char* db);
  /// The same for a const manager; leaves the status as it was.
  const ZelkDatabase* GetDatabase(const char* db) const;

  // --- Settings of one open database ---

  /// @return false, with `ZelkStatusNotFound`, when there is no such database
  bool AssignSelectionPattern(const ZelkSelectionPattern& pattern, const char* db);
  /// @return the database's pattern, valid while it is open; an empty one, with
  /// `ZelkStatusNotFound`, when there is no such database
  const ZelkSelectionPattern& GetSelectionPattern(const char* db);
  /// 0, with `ZelkStatusNotFound`, when there is no such database.
  unsigned GetPriority(const char* db);
  /// Stores a pointer of the application's own.
  ///
  /// @return false, with `ZelkStatusNotFound`, when there is no such database
  bool AssignDatabaseInfo(void* info, const char* db);
  /// Null, with `ZelkStatusNotFound`, when there is no such database.
  void* GetDatabaseInfo(const char* db);

  // --- Queries ---

  unsigned DatabaseCount() const;  ///< of the databases that this manager has open
  /// Whether names of the database were cut while its file was read; false, with
  /// `ZelkStatusNotFound`, when there is no such database.
  bool SymbolsShortenedOnRead(const char* db);
  /// Whether a database uses a feature that older readers do not know.
  ///
  /// @param feature  1: extended multiplexing
  /// @return 1 or 0; -1 for an unknown feature. 0, with `ZelkStatusNotFound`, when there is no such
  /// database
  int IsNewFeatureUsed(int feature, const char* db);
  /// Whether the library can write databases that use the feature: true for 1.
  bool IsSavingOfNewFeaturePossible(int feature) const;
  /// The result of the last operation that sets it, a `ZelkStatus`. Operations that look for a
  /// database by handle, name, path or selection set `ZelkStatusOk` or `ZelkStatusNotFound`; so do
  /// lookups with a `db`, whether or not they find the object itself. `GetAttrValueEx` and
  /// `GetAttrDefaultEx` set what they return. Lookups of value descriptions set `ZelkStatusOk`, or
  /// `ZelkStatusNoDescription` or `ZelkStatusNoNumber` when they find nothing. Others leave it as
  /// it was.
  std::uint32_t Status() const { return status_; }

  // --- Notifications ---

  /// Announces a change of `database` to all windows, and to every manager that holds it, the
  /// sender first. A registered sink (platform.h) runs in the calling thread. It must not read the
  /// characters of a name that belongs to another thread's manager.
  static void NotifyChanges(const ZelkManager& sender, const ZelkDatabase& database);
  /// Notifies this manager's window or thread, once for each name that it has for `database`.
  void NotifyChanges(const ZelkDatabase& database, const ZelkManager& sender) const;

  /// Head of the process-wide list of managers, the newest first; null when there is none. Walk it
  /// only while no other thread makes or destroys managers.
  static const ZelkManagerNode* GetManagersList();

  // --- Signal values, lookups, iterators and counts, attributes ---

#include "zelk/manager/attributes.inc"
#include "zelk/manager/iterators.inc"
#include "zelk/manager/lookups.inc"
#include "zelk/manager/signal_values.inc"

 private:
  friend class ZelkDatabase;
  friend class ZelkExporter;
  friend class ZelkLock;
  friend class ZelkWriteManager;
  friend struct zelk::ManagerEdits;
  friend struct zelk::ManagerLookups;
  friend struct zelk::ManagerAttributes;
  template <typename T>
  friend class ZelkIterator;

  /// Removes a database that is about to be destroyed from every manager's cache.
  static void ForgetCached(ZelkDatabase& database);
  static ZelkDatabase& Changeable(const DbListNode& node) {
    return const_cast<ZelkDatabase&>(node.database);
  }
  static bool OwnsForWrite(const ZelkManager& manager, const char* path);
  static bool IsEdited(const ZelkDatabase& database, const char* file);
  bool IsWrittenByOtherThread(const char* path) const;
  void EnterManagersList();
  void LeaveManagersList();
  void AddNews(const std::vector<const ZelkDatabase*>& databases, const ZelkManager& sender,
               std::vector<zelk_notification>& news) const;
  void KeepErrorText() noexcept;
  void CloseNode(DbListNode& node, bool keep_in_cache);
  ZelkError OpenAssigned(const char* path, const char** name, const char* wanted_name,
                         unsigned priority);
  ZelkError Reopen(ZelkDatabase& database) const;
  bool PutIntoCache(ZelkDatabase& database);
  void RemoveFromCache(ZelkDatabase& database);

  const attr_def* FindDefinition(const char* name, const char* db) const;
  ZelkStatus DefaultFor(zelk_obj_t type, const char* name, zelk_attr_value_t& value,
                        const char* db);
  ZelkStatus Answer(ZelkStatus status);
  const char* DescriptionOf(const val* descriptions, long value);
  long NumberOf(const val* descriptions, const char* text);

  /// @return the stored name
  /// @throws ZelkException, std::bad_alloc
  const char* ListInsertDatabase(ZelkDatabase& database, const char* name, std::uint32_t priority);
  /// By handle; sets the status.
  DbListNode* ListFindDatabase(const char* db);
  /// By handle, without the status.
  DbListNode* ListFindNode(const char* db) const;
  /// `GetDatabase` for the library itself: the index stays valid.
  ZelkDatabase* FindDatabase(const char* db);
  bool Rename(DbListNode& node, const char* name);
  /// By characters.
  DbListNode* ListFindName(const char* text) const;
  DbListNode* ListFindPath(const char* path) const;
  /// Removes a node from the list and releases it and its name, but not the database.
  void ListRemoveDatabase(DbListNode& node);
  /// The name of the database that a selection means: of the first exact match (`ZelkStatusOk`),
  /// else of the last partial match, else of the last one that answers to every selection (both
  /// with `ZelkStatusNotFound`).
  const char* GetDbNameBySelectionPattern(const ZelkSelection& selection);

  void* thread_ = nullptr;
  HWND window_ = nullptr;
  std::uint32_t status_ = ZelkStatusOk;
  std::uint32_t envvar_handle_base_ = 0;
  char* last_open_error_ = nullptr;
  DbListNode* databases_ = nullptr;
  std::unique_ptr<zelk::ManagerTables> tables_;  ///< with the cache
  mutable DbListNode* last_found_ = nullptr;     ///< the next lookup often wants the same one
  const ZelkDatabase* answered_ = nullptr;       ///< the one whose record the last lookup gave
};

/// They stand for a null link of a view filter, which selects objects without a category (category
/// 0) or without a node ("Ostrel__XXX"). Records of the library, in no list; not to be changed.
ZELK_API cat& ZelkNoneFilterCategory();
ZELK_API symblk& ZelkNoneFilterNode();

// The iterators' members need the manager, and its members return them.
#include "zelk/iterator.hpp"

#endif
