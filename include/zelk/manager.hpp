/// \file
/// The entry object of the class interface: open databases, their names, and news of changes.

#ifndef ZELK_MANAGER_HPP
#define ZELK_MANAGER_HPP

#include "zelk/database.hpp"
#include "zelk/types.hpp"

class ZelkManager;

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
/// until its database is closed or renamed; one of another manager, or any other text, is not
/// found.
///
/// **Order.** Databases stand in descending priority and, among equals, in the order of opening:
/// the order in which lookups visit them.
///
/// **Sharing.** Managers that open the same unchanged file share one `ZelkDatabase`, and so see
/// each other's edits at once.
///
/// Nothing raises. Managers, their databases and locks are process-wide and unguarded: one thread
/// at a time.
class ZELK_API ZelkManager {
 public:
  /// One open database of a manager.
  struct DbListNode {
    char* name;  ///< owned; the handle
    ZelkDatabase& database;
    std::uint32_t priority;
    ZelkSelectionPattern pattern;
    std::uint32_t envvar_handle_base;  ///< the manager's when the database was opened
    void* info;                        ///< the application's own
    DbListNode* next;
  };

  /// For a thread, whose identifier the low 32 bits of `thread` are; null: nobody is told.
  explicit ZelkManager(void* thread);
  /// For a window; null: nobody is told.
  explicit ZelkManager(HWND window);
  ZelkManager(const ZelkManager&) = delete;
  ZelkManager& operator=(const ZelkManager&) = delete;

  // The virtual operations, in the order of their slots.

  /// Closes everything without keeping it in the cache. With the last manager the cache goes.
  virtual ~ZelkManager();

  /// Takes a lock on a database (lock.hpp): here a read lock. A refusal is shown to the user.
  ///
  /// @param reason  what another application is told when this lock refuses it; copied, may be null
  /// @return false when another manager's lock refuses, or there is no such database
  virtual bool LockDatabase(const char* db, const char* reason);
  /// Takes a lock on every database in list order, until the first refusal; that frees all locks of
  /// this manager, also older ones.
  virtual bool LockAllDatabases(const char* reason);
  /// Frees this manager's locks on a database; null: all its locks.
  virtual void UnlockDatabase(const char* db);

  /// Whether a file can be opened.
  ///
  /// @return 0; 2 when it does not exist
  virtual ZelkError GetDatabaseFileInfo(const char* path) const;
  /// Whether the file may be opened beside the managers that edit it.
  virtual ZelkError CheckForWriteOpen(const char* path) const;
  /// Whether this manager has the file open for writing.
  virtual bool OwnsDatabaseForWrite(const char* path) const;

 protected:
  /// The shared database of a file, read when need be; keeps the error text for `GetLastOpenError`.
  ///
  /// @throws ZelkException when the file cannot be read
  virtual ZelkDatabase& AssignDatabase(const char* path);
  /// Gives a database back, and this manager's locks on it.
  virtual void ReleaseDatabase(ZelkDatabase& database, bool keep_in_cache);

 public:
  /// Directs notifications to a thread, and no more to a window.
  void SetHandle(void* thread);
  /// Directs notifications to a window, and no more to a thread.
  void SetHandle(HWND window);

  // --- Opening and closing ---

  /// Opens a file.
  ///
  /// @param path         in the system's encoding
  /// @param name         receives the handle, on success and with result 4; may be null
  /// @param wanted_name  name for the database; null: its default name (`ZelkDatabase`)
  /// @param priority     counts only without a wanted name; with one it is 0
  /// @return tested in this order: 7 for an invalid wanted name, 3 for one that is in use, 2 when
  /// the file does not exist, 4 when this manager has it open, 5 when a write manager refuses, 1
  /// when it cannot be read (`GetLastOpenError` tells why), 3 when the default name is in use; or
  /// 0. On all but 0 and 4 nothing has changed
  ZelkError OpenDatabase(const char* path, const char** name, const char* wanted_name,
                         unsigned priority);
  ZelkError OpenDatabase(const char* path, const char** name, unsigned priority);
  /// Reads a database's file afresh; its records are other ones afterwards.
  ///
  /// @param db  null: all databases
  /// @return 0; 1 when there is no such database or its file cannot be read; 2 when the file is
  /// gone. For all databases the last error met
  ZelkError ReopenDatabase(const char* db);
  /// Closes a database; nothing happens when there is no such one. Its locks by this manager are
  /// freed.
  ///
  /// @param db             null: all databases
  /// @param keep_in_cache  a following open of the unchanged file finds it without reading, until
  /// `FlushDatabaseCache`
  void CloseDatabase(const char* db, bool keep_in_cache);
  void CloseDatabase(bool keep_in_cache);  ///< all databases
  /// Lets go of the databases that this manager closed into the cache.
  void FlushDatabaseCache();
  /// Message lines of the last open, each with a line feed; empty when there was nothing to tell.
  /// Valid until the next open.
  const char* GetLastOpenError() const;

  // --- Names ---

  /// The name of the database of a file.
  ///
  /// @return of an open file the handle; of another one its default name, a new text that the
  /// caller releases with `zelk_mfree` (the file is read into the cache); null and status 2 when
  /// the file does not exist, null also when it cannot be read
  const char* GetDatabaseName(const char* path);
  /// Gives a database another name. The old handle is no longer valid.
  ///
  /// @param name  receives the new handle, on success only; may be null
  /// @return 0; 1 when there is no such database; 3 when another database of this manager has the
  /// name; 7 when no database can have it
  ZelkError SetDatabaseName(const char* db, const char** name, const char* new_name);
  /// The handle whose characters are those of `text`; null, with status 2, when there is none.
  const char* GetUniqueDatabaseName(const char* text);
  /// Puts the default name of a database into `buffer`, terminated (when `size` is not 0).
  ///
  /// @return whether it fitted whole; false, with nothing put, when there is no such database
  bool GetDefaultDatabaseName(const char* db, char* buffer, std::size_t size);
  /// Path of the database whose name has the characters of `text`; null, with status 2, when there
  /// is none. The database's own text.
  const char* GetDatabasePath(const char* text);
  bool IsDatabaseName(const char* db);
  /// The database, valid while it is open here; null, with status 2, when there is none.
  ZelkDatabase* GetDatabase(const char* db);

  // --- Settings of one open database ---

  /// @return false, with status 2, when there is no such database
  bool AssignSelectionPattern(const ZelkSelectionPattern& pattern, const char* db);
  /// @return the database's pattern, valid while it is open; an empty one, with status 2, when
  /// there is no such database
  const ZelkSelectionPattern& GetSelectionPattern(const char* db);
  unsigned GetPriority(const char* db);  ///< 0, with status 2, when there is no such database
  /// Stores a pointer of the application's own.
  ///
  /// @return false, with status 2, when there is no such database
  bool AssignDatabaseInfo(void* info, const char* db);
  void* GetDatabaseInfo(const char* db);  ///< null, with status 2, when there is no such database

  // --- Queries ---

  unsigned DatabaseCount() const;
  bool SymbolsShortenedOnRead(const char* db);
  /// Whether a database uses a feature that older readers do not know.
  ///
  /// @param feature  1: extended multiplexing
  /// @return 1 or 0; -1 for an unknown feature. 0, with status 2, when there is no such database
  int IsNewFeatureUsed(int feature, const char* db);
  bool IsSavingOfNewFeaturePossible(int feature) const;
  /// Result of the last operation that looked for a database by name: 0 found, 2 not found.
  std::uint32_t Status() const { return status_; }

  // --- Notifications ---

  /// Announces a change of `database` to all windows, and to every manager that holds it, the
  /// sender first.
  static void NotifyChanges(const ZelkManager& sender, const ZelkDatabase& database);
  /// Tells this manager's window or thread, once for each name that it has for `database`.
  void NotifyChanges(const ZelkDatabase& database, const ZelkManager& sender) const;

  /// Head of the process-wide list of managers, the newest first; null when there is none.
  static const ZelkManagerNode* GetManagersList();

 private:
  friend class ZelkDatabase;

  struct CacheNode {
    ZelkDatabase& database;
    CacheNode* next;
  };

  /// Takes a database that is destroyed out of every manager's cache list.
  static void ForgetCached(const ZelkDatabase& database);
  void EnterManagersList();
  void LeaveManagersList();
  void KeepErrorText() noexcept;
  void CloseNode(DbListNode& node, bool keep_in_cache);
  ZelkError OpenAssigned(const char* path, const char** name, const char* wanted_name,
                         unsigned priority);
  ZelkError Reopen(ZelkDatabase& database) const;
  void RemoveFromCache(const ZelkDatabase& database);

  /// @return the stored name
  /// @throws ZelkException, std::bad_alloc
  const char* ListInsertDatabase(ZelkDatabase& database, const char* name, std::uint32_t priority);
  /// By handle; sets the status.
  DbListNode* ListFindDatabase(const char* db);
  /// By characters.
  DbListNode* ListFindName(const char* text) const;
  DbListNode* ListFindPath(const char* path) const;
  /// Takes a node out of the list and releases it and its name, but not the database.
  void ListRemoveDatabase(DbListNode& node);
  /// The name of the database that a selection means: of the first exact match, else of the last
  /// partial one, else of the last that answers to every selection; all but the first with status
  /// 2.
  const char* GetDbNameBySelectionPattern(const ZelkSelection& selection);

  void* thread_ = nullptr;
  HWND window_ = nullptr;
  std::uint32_t status_ = 0;
  std::uint32_t envvar_handle_base_ = 0;
  char* last_open_error_ = nullptr;
  DbListNode* databases_ = nullptr;
  CacheNode* cache_ = nullptr;
};

/// Whether a text can be the name of a database: 1 to 32 letters, digits and "_", the first no
/// digit. False for null.
ZELK_API bool ZelkVerifyDatabaseName(const char* text);

/// Splits "database::object" at its first colon, in place.
///
/// @param text    its first ":" is overwritten with the end when another follows it
/// @param db      receives `text`
/// @param object  receives the part behind the double colon; null when the first colon is single,
/// or there is none
/// @return whether the text was split
ZELK_API bool ZelkSplitQualifiedName(char* text, const char** db, const char** object);

#endif
