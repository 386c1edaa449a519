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
/// Nothing raises but for the constructors, when the heap is exhausted. Managers, their databases
/// and locks are process-wide and unguarded: one thread at a time.
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
  ///
  /// @return false when one is refused
  virtual bool LockAllDatabases(const char* reason);
  /// Frees this manager's locks on a database; null: all its locks.
  virtual void UnlockDatabase(const char* db);

  /// Whether a file can be opened.
  ///
  /// @return 0; 2 when it does not exist
  virtual ZelkError GetDatabaseFileInfo(const char* path) const;
  /// Whether the file may be opened beside the managers that edit it: here always, with 0.
  virtual ZelkError CheckForWriteOpen(const char* path) const;
  /// Whether this manager has the file open for writing: here never.
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
  /// @return 0; 1 when there is no such database, or no memory; 3 when another database of this
  /// manager has the name; 7 when no database can have it
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
  bool IsDatabaseName(const char* db);  ///< whether it is a handle of this manager; sets the status
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

  unsigned DatabaseCount() const;  ///< of the databases that are open here
  /// Whether names of the database were cut while its file was read; false, with status 2, when
  /// there is no such database.
  bool SymbolsShortenedOnRead(const char* db);
  /// Whether a database uses a feature that older readers do not know.
  ///
  /// @param feature  1: extended multiplexing
  /// @return 1 or 0; -1 for an unknown feature. 0, with status 2, when there is no such database
  int IsNewFeatureUsed(int feature, const char* db);
  /// Whether the library can write databases that use the feature: true for 1.
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

  // --- Signal values ---
  //
  // These ask nothing of the manager or its databases: all they need is the signal and the frame.
  // `frame` is the first data byte; the caller answers for the frame having all bytes that the
  // signal and the multiplexors above it touch (`zelk_sig_mask_t::min_data_length`). `message` may
  // be any. To decode whole frames of known length use frame_decoder.hpp.
  //
  // Bits are numbered as in DBC files: byte * 8 + bit, bit 0 least significant. Raw values of
  // signed signals are two's complement; in an `unsigned long` they fill 32 bits, zero-extended.
  // Outputs are written also when the result tells a fault, unless said otherwise.

  static const sigblk* GetMultiplexorSignal(const sigblk* signal);  ///< null for none, and for null
  static bool SignalIsMultiplexor(const sigblk* signal);            ///< false for null
  /// Whether the signal has a multiplexor or a range of its values; false for null.
  static bool SignalIsMultiplexed(const sigblk* signal);
  /// Whether the signal is multiplexed and one of its ranges, both ends included, has `value` (32
  /// bits); false for null.
  static bool SignalIsMultiplexedByValue(const sigblk* signal, unsigned long value);
  static const muxor_val_range* GetMultiplexorValueRanges(const sigblk* signal);  ///< or null

  /// Where the signal's bits lie.
  void GetSignalAccessMask(const sigblk& signal, zelk_sig_mask_t& mask) const;
  /// Whether the frame holds the signal: it is not multiplexed, or its multiplexor is there itself
  /// and reads a value within one of the signal's ranges. False for ranges without a multiplexor, a
  /// multiplexor without ranges, one of more than 64 bits (signed: 32), and multiplexors in a
  /// circle.
  bool CheckSignalModeValue(const unsigned char& frame, const sigblk& signal,
                            const msgblk& message) const;

  /// physical = raw * factor + offset, in IEEE double arithmetic, each operation rounded.
  ///
  /// @param raw  32 bits, signed when the signal is
  /// @return 0; 4 when the result is outside [minimum, maximum], unless both are 0
  ZelkSigvalueResult RawToPhysicalValue(const unsigned long& raw, const sigblk& signal,
                                        double& physical) const;
  ZelkSigvalueResult RawToPhysicalValueInt64(const long long& raw, const sigblk& signal,
                                             double& physical) const;  ///< 64 bits likewise
  ZelkSigvalueResult RawToPhysicalValue(const double& raw, const sigblk& signal,
                                        double& physical) const;  ///< of an IEEE signal

  /// raw = (physical - offset) / factor, rounded half away from zero by adding 0.5 and cutting.
  /// What the type cannot hold becomes its nearest value, not-a-number 0; nothing is limited to the
  /// signal's bits. Of an unsigned signal the 32-bit form gives the low 32 of 64 bits.
  ///
  /// @return 0; 4 when `physical` is outside [minimum, maximum], unless both are 0
  ZelkSigvalueResult PhysicalToRawValue(const double& physical, const sigblk& signal,
                                        unsigned long& raw) const;
  ZelkSigvalueResult PhysicalToRawValueInt64(const double& physical, const sigblk& signal,
                                             long long& raw) const;
  ZelkSigvalueResult PhysicalToRawValue(const double& physical, const sigblk& signal,
                                        double& raw) const;  ///< of an IEEE signal: not rounded

  /// The low 32 bits of the signal.
  ///
  /// @return 0; 3 for more than 64 bits (nothing is written) and for a signed signal of more than
  /// 32; 5 when the frame does not hold the signal
  ZelkSigvalueResult GetSignalRawValue(const unsigned char& frame, const sigblk& signal,
                                       const msgblk& message, unsigned long& raw) const;
  /// Up to 64 bits of the signal, sign-extended when it is signed. Of a signal that reaches into a
  /// ninth byte the bits there read as 0.
  ///
  /// @return 0; 3 for more than 64 bits (nothing is written); 5 when the frame does not hold it
  ZelkSigvalueResult GetSignalRawValueInt64(const unsigned char& frame, const sigblk& signal,
                                            const msgblk& message, long long& raw) const;
  /// The number in an IEEE signal: 32 or 64 bits by its value type, whatever its length.
  ///
  /// @return 0; 2 for an integer signal (nothing is written); 5 when the frame does not hold it
  ZelkSigvalueResult GetSignalRawValue(const unsigned char& frame, const sigblk& signal,
                                       const msgblk& message, double& raw) const;

  // The same with a signal's access record, which saves the arithmetic of positions. The 64-bit
  // form is right for signals of up to 32 bits only: of 33 to 63 it gives the low (length - 32)
  // bits, of 64 the low 32. The IEEE form wants a record of 32 or 64 bits (else 3). The 32-bit form
  // masks likewise.

  ZelkSigvalueResult GetSignalRawValue(const unsigned char& frame, const zelk_sig_mask_t& mask,
                                       const sigblk& signal, const msgblk& message,
                                       unsigned long& raw) const;
  ZelkSigvalueResult GetSignalRawValueInt64(const unsigned char& frame, const zelk_sig_mask_t& mask,
                                            const sigblk& signal, const msgblk& message,
                                            long long& raw) const;
  ZelkSigvalueResult GetSignalRawValue(const unsigned char& frame, const zelk_sig_mask_t& mask,
                                       const sigblk& signal, const msgblk& message,
                                       double& raw) const;

  // Raw and physical value in one; the result is the reading's, or when that is 0 the conversion's.
  // The physical value is computed from `raw` as it stands then.

  ZelkSigvalueResult GetSignalValue(const unsigned char& frame, const sigblk& signal,
                                    const msgblk& message, unsigned long& raw,
                                    double& physical) const;
  ZelkSigvalueResult GetSignalValueInt64(const unsigned char& frame, const sigblk& signal,
                                         const msgblk& message, long long& raw,
                                         double& physical) const;
  ZelkSigvalueResult GetSignalValue(const unsigned char& frame, const sigblk& signal,
                                    const msgblk& message, double& raw, double& physical) const;
  ZelkSigvalueResult GetSignalValue(const unsigned char& frame, const zelk_sig_mask_t& mask,
                                    const sigblk& signal, const msgblk& message, unsigned long& raw,
                                    double& physical) const;
  ZelkSigvalueResult GetSignalValueInt64(const unsigned char& frame, const zelk_sig_mask_t& mask,
                                         const sigblk& signal, const msgblk& message,
                                         long long& raw, double& physical) const;
  ZelkSigvalueResult GetSignalValue(const unsigned char& frame, const zelk_sig_mask_t& mask,
                                    const sigblk& signal, const msgblk& message, double& raw,
                                    double& physical) const;
  /// The physical value, by the IEEE form for IEEE signals and by the 64-bit form for all others.
  ZelkSigvalueResult GetSignalPhysicalValue(const unsigned char& frame, const sigblk& signal,
                                            const msgblk& message, double& physical) const;
  /// The value as a text.
  ///
  /// @param text    receives the text, terminated; untouched with results 1 and 6
  /// @param size    bytes in `text`; the byte formats want 4 (decimal) or 3 (hexadecimal) for each
  /// byte of the signal
  /// @param format  for the decimal ("%d"), hexadecimal ("%x") and physical ("%lg", with unit "%lg
  /// %s") formats another format of `printf`, for an argument of the same type, printed in the
  /// process's locale; null: those, in the C locale
  /// @return in this order: 3 for more than 96 bits, 1 for 90 or more, an unknown format, and no
  /// value description, 6 when the text does not fit, 3 for more than 32 bits in the formats that
  /// print a number (of the low 32), 4 for a physical value out of range, 5 when the frame does not
  /// hold the signal, 0
  ZelkSigvalueResult GetSignalValue(const unsigned char& frame, const sigblk& signal,
                                    const msgblk& message, char* text, unsigned long size,
                                    ZelkSigvalueFormat text_format, const char* format);

  // Writing puts a raw value into the frame. Every other bit of the frame stays, as long as the
  // value fits into the signal. The multiplexing test is made on the frame as it is then. A signal
  // of 90 bits or more is not written at all (result 3).

  /// @param raw  32 bits; of a signed signal two's complement
  /// @return 0; 3 for a signal of more than 32 bits, written zero-extended; 5 when the frame does
  /// not hold the signal
  ZelkSigvalueResult SetSignalRawValue(unsigned char& frame, const sigblk& signal,
                                       const msgblk& message, const unsigned long& raw) const;
  /// @return 0; 3 for a signal of more than 64 bits, written zero-extended; 5 likewise
  ZelkSigvalueResult SetSignalRawValueInt64(unsigned char& frame, const sigblk& signal,
                                            const msgblk& message, const long long& raw) const;
  /// Writes 32 or 64 bits by the signal's value type, whatever its length.
  ///
  /// @return 0; 2 for an integer signal, into which the double's bits have been written; 5 likewise
  ZelkSigvalueResult SetSignalRawValue(unsigned char& frame, const sigblk& signal,
                                       const msgblk& message, const double& raw) const;
  /// @param bytes  (length + 7) / 8 bytes, least significant first
  ZelkSigvalueResult SetSignalRawValue(unsigned char& frame, const sigblk& signal,
                                       const msgblk& message, const unsigned char*& bytes) const;
  /// Converts and writes; a value out of range is written all the same.
  ///
  /// @return the writing's result, or when that is 0 the conversion's
  ZelkSigvalueResult SetSignalPhysicalValue(unsigned char& frame, const sigblk& signal,
                                            const msgblk& message, const double& physical) const;

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
