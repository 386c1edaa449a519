/// \file
/// The entry object of the class interface: open databases, their names, and news of changes.

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
/// until its database is closed or renamed; one of another manager, or any other text, is not
/// found.
///
/// **Order.** Databases stand in descending priority and, among equals, in the order of opening:
/// the order in which lookups visit them.
///
/// **Sharing.** Managers that open the same unchanged file share one `ZelkDatabase`, and so see
/// each other's edits at once.
///
/// **None and all.** Null stands for two things: it is what `GetUniqueDatabaseName` gives when
/// there is no such name, and as `db` it means all databases to `CloseDatabase`, `ReopenDatabase`,
/// `UnlockDatabase`, to the write manager's `WriteDatabase`, `CommitDatabase` and `ClearDatabase`,
/// and to lookups, iterators and counts. So never hand the one on to the other; the safe form is
///
///     const char* const db = manager.GetUniqueDatabaseName("motor");
///     if (db) manager.CloseDatabase(db, false);
///
/// **Relative paths** lead from the working folder at the time of the call. A database keeps the
/// file that its path led to when it was given, wherever the working folder moves later; its `path`
/// keeps the text.
///
/// **Threads.** Managers of different threads may run at once, and share databases, as long as
/// nobody edits these; one manager belongs to one thread at a time. zelk.h has the whole contract.
/// The operations that a host overrides run in the thread that called the manager; while
/// `OwnsDatabaseForWrite` runs, other threads wait for the lists, so that it must not wait for
/// them.
///
/// Nothing raises but for the constructors, when the heap is exhausted.
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
  /// Frees this manager's locks on a database; null: all its locks ("None and all" above).
  virtual void UnlockDatabase(const char* db);

  /// Whether a file can be opened.
  ///
  /// @return `ZelkErrorOk`, also for a read-only file; `ZelkErrorFileNotFound` when it does not
  /// exist
  virtual ZelkError GetDatabaseFileInfo(const char* path) const;
  /// Whether the file may be opened beside the managers that edit it: here always
  /// (`ZelkErrorOk`).
  virtual ZelkError CheckForWriteOpen(const char* path) const;
  /// Whether this manager has the file open for writing: here never.
  virtual bool OwnsDatabaseForWrite(const char* path) const;

 protected:
  /// The shared database of a file, read when need be; keeps the error text for `GetLastOpenError`.
  /// A derived manager that edits it gets it by `GetDatabase` first, which lookups must know of.
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
  /// Reads a database's file afresh; its records are other ones afterwards, for every manager that
  /// has it open.
  ///
  /// @param db  null: all databases ("None and all" above)
  /// @return `ZelkErrorOk`; `ZelkErrorNoDatabase` when there is no such database, or its file
  /// cannot be read (`ZelkDatabase::ReopenDatabaseFile`): the reason is in the error text
  /// (errors.h), which this does not clear, and not in `GetLastOpenError`; `ZelkErrorFileNotFound`,
  /// with the records as they were, when the file is gone or there is none. For all databases the
  /// last error met
  ZelkError ReopenDatabase(const char* db);
  /// Closes a database; nothing happens when there is no such one. Its locks by this manager are
  /// freed, and what was not written is gone when no other manager has it open.
  ///
  /// @param db             null: all databases ("None and all" above)
  /// @param keep_in_cache  a following open of the unchanged file finds it without reading, until
  /// `FlushDatabaseCache`
  void CloseDatabase(const char* db, bool keep_in_cache);
  void CloseDatabase(bool keep_in_cache);  ///< all databases
  /// A name alone, which the language would take for true, closes nothing.
  template <typename T>
  void CloseDatabase(T* db) = delete;
  /// Lets go of the databases that this manager closed into the cache.
  void FlushDatabaseCache();
  /// Message lines that the calling thread reported while this manager last opened a file, each
  /// with a line feed; empty when there were none. Valid until the next open.
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
  /// `ZelkErrorInvalidName` when no database can have the name; `ZelkErrorNameUsed` when another
  /// database of this manager has it
  ZelkError SetDatabaseName(const char* db, const char** name, const char* new_name);
  /// The handle whose characters are those of `text`; null, with `ZelkStatusNotFound`, when there
  /// is none. Do not pass the result on unseen: see "None and all" above.
  const char* GetUniqueDatabaseName(const char* text);
  /// Puts the default name of a database into `buffer`, terminated.
  ///
  /// @param buffer  null, or a `size` of 0: nothing is put
  /// @return whether it was put whole; false, with nothing put, when there is no such database
  bool GetDefaultDatabaseName(const char* db, char* buffer, std::size_t size);
  /// Path of the database whose name has the characters of `text`; null, with `ZelkStatusNotFound`,
  /// when there is none. The database's own text.
  const char* GetDatabasePath(const char* text);
  bool IsDatabaseName(const char* db);  ///< whether it is a handle of this manager; sets the status
  /// The database, to be changed, valid while it is open here; null, with `ZelkStatusNotFound`,
  /// when there is none. From now on, until it is read afresh, cleared or assigned to, its objects
  /// are looked up by walks over the lists: who only reads asks for `GetConstDatabase`.
  ZelkDatabase* GetDatabase(const char* db);
  /// The same database, to be read: its lookups stay fast.
  const ZelkDatabase* GetConstDatabase(const char* db);
  /// The same, of a manager that is itself only read, with the status as it was.
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

  unsigned DatabaseCount() const;  ///< of the databases that are open here
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
  /// What became of the last operation that sets it: a `ZelkStatus`. `ZelkStatusOk` or
  /// `ZelkStatusNotFound` from those that look for a database by handle, name, path or selection,
  /// also from lookups with a `db`, whether or not the object itself is found; the result of
  /// `GetAttrValueEx` and `GetAttrDefaultEx`, `ZelkStatusNotDefined` among them; and
  /// `ZelkStatusNoDescription` or `ZelkStatusNoNumber` from lookups of value descriptions. Others
  /// leave it as it was.
  std::uint32_t Status() const { return status_; }

  // --- Notifications ---

  /// Announces a change of `database` to all windows, and to every manager that holds it, the
  /// sender first. A registered sink (platform.h) runs in the calling thread; the characters of a
  /// name that belongs to another thread's manager are for that thread to read.
  static void NotifyChanges(const ZelkManager& sender, const ZelkDatabase& database);
  /// Tells this manager's window or thread, once for each name that it has for `database`.
  void NotifyChanges(const ZelkDatabase& database, const ZelkManager& sender) const;

  /// Head of the process-wide list of managers, the newest first; null when there is none. To be
  /// walked while no other thread makes or destroys managers.
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
  // Outputs are written also when the result tells a fault, unless said otherwise, and never read.
  //
  // On 64-bit Linux `std::uint64_t` is `unsigned long`: an argument of that type picks the 32-bit
  // form there, and an unsigned signal of 40 bits gives its low half with `ZelkSigvalueOk`. The
  // forms for 64 bits bear the names `...Uint64` and `...Int64`:
  //
  //     std::uint64_t raw = 0;
  //     if (manager.GetSignalRawValueUint64(data[0], signal, message, raw) == ZelkSigvalueOk) ...

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
  /// @return `ZelkSigvalueOk`; `ZelkSigvalueOutOfRange` when the result is outside [minimum,
  /// maximum], unless both are 0
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
  /// @return `ZelkSigvalueOk`; `ZelkSigvalueOutOfRange` when `physical` is outside [minimum,
  /// maximum], unless both are 0
  ZelkSigvalueResult PhysicalToRawValue(const double& physical, const sigblk& signal,
                                        unsigned long& raw) const;
  ZelkSigvalueResult PhysicalToRawValueInt64(const double& physical, const sigblk& signal,
                                             long long& raw) const;
  ZelkSigvalueResult PhysicalToRawValue(const double& physical, const sigblk& signal,
                                        double& raw) const;  ///< of an IEEE signal: not rounded

  /// The low 32 bits of the signal. Not for a `std::uint64_t`: see above.
  ///
  /// @return `ZelkSigvalueOk`; `ZelkSigvalueTooLong` for more than 64 bits (nothing is written) and
  /// for a signed signal of more than 32; `ZelkSigvalueNotPresent` when the frame does not hold the
  /// signal
  ZelkSigvalueResult GetSignalRawValue(const unsigned char& frame, const sigblk& signal,
                                       const msgblk& message, unsigned long& raw) const;
  /// Up to 64 bits of the signal, sign-extended when it is signed. Of a signal that reaches into a
  /// ninth byte the bits there read as 0.
  ///
  /// @return `ZelkSigvalueOk`; `ZelkSigvalueTooLong` for more than 64 bits (nothing is written);
  /// `ZelkSigvalueNotPresent` when the frame does not hold it
  ZelkSigvalueResult GetSignalRawValueInt64(const unsigned char& frame, const sigblk& signal,
                                            const msgblk& message, long long& raw) const;
  /// All bits of a signal of up to 64, those in a ninth byte too; of a signed one two's complement
  /// of 64 bits. Results as of `GetSignalRawValueInt64`.
  ZelkSigvalueResult GetSignalRawValueUint64(const unsigned char& frame, const sigblk& signal,
                                             const msgblk& message, std::uint64_t& raw) const;
  /// The number in an IEEE signal: 32 or 64 bits by its value type, whatever its length.
  ///
  /// @return `ZelkSigvalueOk`; `ZelkSigvalueWrongType` for an integer signal (nothing is written);
  /// `ZelkSigvalueNotPresent` when the frame does not hold it
  ZelkSigvalueResult GetSignalRawValue(const unsigned char& frame, const sigblk& signal,
                                       const msgblk& message, double& raw) const;

  // The same with a signal's access record, which saves the arithmetic of positions. The form
  // `...Int64` is right for signals of up to 32 bits only: of 33 to 63 it gives the low (length -
  // 32) bits, of 64 the low 32. The 32-bit form masks likewise, `...Uint64` gives all bits of the
  // record. The IEEE form wants a record of 32 or 64 bits (else `ZelkSigvalueTooLong`, with nothing
  // written). Of a record that is longer than its signed signal of n bits a value from 2^(n - 1) on
  // has 2^n subtracted, and keeps its bits above the signal.

  ZelkSigvalueResult GetSignalRawValue(const unsigned char& frame, const zelk_sig_mask_t& mask,
                                       const sigblk& signal, const msgblk& message,
                                       unsigned long& raw) const;
  ZelkSigvalueResult GetSignalRawValueInt64(const unsigned char& frame, const zelk_sig_mask_t& mask,
                                            const sigblk& signal, const msgblk& message,
                                            long long& raw) const;
  ZelkSigvalueResult GetSignalRawValueUint64(const unsigned char& frame,
                                             const zelk_sig_mask_t& mask, const sigblk& signal,
                                             const msgblk& message, std::uint64_t& raw) const;
  ZelkSigvalueResult GetSignalRawValue(const unsigned char& frame, const zelk_sig_mask_t& mask,
                                       const sigblk& signal, const msgblk& message,
                                       double& raw) const;

  // Raw and physical value in one; the result is the reading's, or when that is `ZelkSigvalueOk`
  // the conversion's. The physical value is computed from `raw` as it stands then: give it a value
  // before, when the reading may write nothing.

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
  /// The value as a text. An IEEE signal's bits are taken as an integer, as they are, also by the
  /// physical formats: for its number use `GetSignalPhysicalValue`.
  ///
  /// @param text    receives the text, terminated; untouched with `ZelkSigvalueError` and
  /// `ZelkSigvalueBufferTooSmall`
  /// @param size    bytes in `text`; the byte formats want 4 (decimal) or 3 (hexadecimal) for each
  /// byte of the signal
  /// @param format  for the decimal ("%d"), hexadecimal ("%x") and physical ("%lg", with unit "%lg
  /// %s") formats another format of `printf`, for an argument of the same type, printed in the
  /// process's locale; null: those, in the C locale
  /// @return in this order: `ZelkSigvalueTooLong` for more than 96 bits, `ZelkSigvalueError` for 90
  /// or more, an unknown format, and no value description, `ZelkSigvalueBufferTooSmall` when the
  /// text does not fit, `ZelkSigvalueTooLong` for more than 32 bits in the formats that print a
  /// number (of the low 32), `ZelkSigvalueOutOfRange` for a physical value out of range,
  /// `ZelkSigvalueNotPresent` when the frame does not hold the signal, `ZelkSigvalueOk`
  ZelkSigvalueResult GetSignalValue(const unsigned char& frame, const sigblk& signal,
                                    const msgblk& message, char* text, unsigned long size,
                                    ZelkSigvalueFormat text_format, const char* format);

  // Writing puts a raw value into the frame. Every other bit of the frame stays, as long as the
  // value fits into the signal. The multiplexing test is made on the frame as it is then. A signal
  // of 90 bits or more is not written at all (`ZelkSigvalueTooLong`).

  /// Not for a `std::uint64_t`: see above.
  ///
  /// @param raw  32 bits; of a signed signal two's complement
  /// @return `ZelkSigvalueOk`; `ZelkSigvalueTooLong` for a signal of more than 32 bits, written
  /// zero-extended; `ZelkSigvalueNotPresent` when the frame does not hold the signal
  ZelkSigvalueResult SetSignalRawValue(unsigned char& frame, const sigblk& signal,
                                       const msgblk& message, const unsigned long& raw) const;
  /// @return `ZelkSigvalueOk`; `ZelkSigvalueTooLong` for a signal of more than 64 bits, written
  /// zero-extended; `ZelkSigvalueNotPresent` likewise
  ZelkSigvalueResult SetSignalRawValueInt64(unsigned char& frame, const sigblk& signal,
                                            const msgblk& message, const long long& raw) const;
  ZelkSigvalueResult SetSignalRawValueUint64(unsigned char& frame, const sigblk& signal,
                                             const msgblk& message, const std::uint64_t& raw) const;
  /// Writes 32 or 64 bits by the signal's value type, whatever its length.
  ///
  /// @return `ZelkSigvalueOk`; `ZelkSigvalueWrongType` for an integer signal, into which the
  /// double's bits have been written; `ZelkSigvalueNotPresent` likewise
  ZelkSigvalueResult SetSignalRawValue(unsigned char& frame, const sigblk& signal,
                                       const msgblk& message, const double& raw) const;
  /// @param bytes  (length + 7) / 8 bytes, least significant first
  /// @return `ZelkSigvalueOk`; `ZelkSigvalueNotPresent` likewise
  ZelkSigvalueResult SetSignalRawValue(unsigned char& frame, const sigblk& signal,
                                       const msgblk& message, const unsigned char*& bytes) const;
  /// Converts and writes; a value out of range is written all the same.
  ///
  /// @return the writing's result, or when that is `ZelkSigvalueOk` the conversion's
  ZelkSigvalueResult SetSignalPhysicalValue(unsigned char& frame, const sigblk& signal,
                                            const msgblk& message, const double& physical) const;

  // --- Lookups across databases ---
  //
  // Databases are visited in the order of the list; the first that has the object answers, and a
  // database answers with the first object of its list. Names are compared byte by byte, those that
  // records hold inline on 32 characters; a null name is not found. Records are borrowed and valid
  // while their database is open and unchanged; null when there is none. Each lookup has these
  // forms:
  //
  // - `db`: only that database; null: all.
  // - `db_name`: all databases; receives the name of the one that answered, when one did. Not null.
  // - `selection`: first the databases whose pattern is exactly the selection, then those with its
  //   key and any sub key, then those that answer to everything. The status is `ZelkStatusOk` for
  //   an answer in the first pass, else `ZelkStatusNotFound`.
  // - `selection` and `db_name`: both.
  //
  // With a literal null pointer say which form is meant: `GetNode("A", nullptr)` is ambiguous,
  // `GetNode("A", static_cast<const char*>(nullptr))` asks all databases.
  //
  // While no host can change a database (`ZelkDatabase`: no record of it was handed out to be
  // changed) lookups by name, by identifier and for J1939 frames take the same time whatever its
  // size. The lookups of this class hand out nothing to be changed, also those of a write manager
  // when they are called by this class's name (`manager.ZelkManager::GetNode(name, db)`).

  const symblk* GetNode(const char* name, const char* db);
  const symblk* GetNode(const char* name, const char** db_name);
  const symblk* GetNode(const char* name, const ZelkSelection& selection);
  const symblk* GetNode(const char* name, const ZelkSelection& selection, const char** db_name);
  const msgblk* GetMessage(const char* name, const char* db);
  const msgblk* GetMessage(const char* name, const char** db_name);
  const msgblk* GetMessage(const char* name, const ZelkSelection& selection);
  const msgblk* GetMessage(const char* name, const ZelkSelection& selection, const char** db_name);
  /// All 32 bits count; bit 31: an extended identifier.
  const msgblk* GetMessage(unsigned long id, const char* db);
  const msgblk* GetMessage(unsigned long id, const char** db_name);
  const msgblk* GetMessage(unsigned long id, const ZelkSelection& selection);
  const msgblk* GetMessage(unsigned long id, const ZelkSelection& selection, const char** db_name);
  /// As `ZelkDatabase::GetJ1939Message`, in each database.
  const msgblk* GetJ1939Message(unsigned long id, unsigned long flags, const char* db);
  const msgblk* GetJ1939Message(unsigned long id, unsigned long flags, const char** db_name);
  const msgblk* GetJ1939Message(unsigned long id, unsigned long flags,
                                const ZelkSelection& selection);
  const msgblk* GetJ1939Message(unsigned long id, unsigned long flags,
                                const ZelkSelection& selection, const char** db_name);
  const env_var_blk* GetEnvvar(const char* name, const char* db);
  const env_var_blk* GetEnvvar(const char* name, const char** db_name);
  const env_var_blk* GetEnvvar(const char* name, const ZelkSelection& selection);
  const env_var_blk* GetEnvvar(const char* name, const ZelkSelection& selection,
                               const char** db_name);
  const btlblk* GetBitTiming(unsigned short baudrate, const char* db);
  const btlblk* GetBitTiming(unsigned short baudrate, const char** db_name);
  const btlblk* GetBitTiming(unsigned short baudrate, const ZelkSelection& selection);
  const btlblk* GetBitTiming(unsigned short baudrate, const ZelkSelection& selection,
                             const char** db_name);
  const cat* GetCategory(const char* name, const char* db);
  const cat* GetCategory(const char* name, const char** db_name);
  const sigtype* GetSignalType(const char* name, const char* db);
  const sigtype* GetSignalType(const char* name, const char** db_name);
  const sigtype* GetSignalType(const char* name, const ZelkSelection& selection);
  const sigtype* GetSignalType(const char* name, const ZelkSelection& selection,
                               const char** db_name);
  const valtable* GetValueTable(const char* name, const char* db);
  const valtable* GetValueTable(const char* name, const char** db_name);
  const valtable* GetValueTable(const char* name, const ZelkSelection& selection);
  const valtable* GetValueTable(const char* name, const ZelkSelection& selection,
                                const char** db_name);
  /// The first definition of that name, of whatever kind: an object's own may be another one
  /// (`GetAttrDefinition` with the object).
  const attr_def* GetAttrDefinition(const char* name, const char* db);
  const attr_def* GetAttrDefinition(const char* name, const char** db_name);

  // In one object, first match; null when there is none.

  const sigblk* GetSignal(const msgblk& message, const char* name) const;
  const siggroupblk* GetSignalGroup(const msgblk& message, const char* name) const;
  const sigblk* GetSignal(const siggroupblk& group, const char* name) const;

  // --- Iterators (iterator.hpp) ---
  //
  // Over the objects of one database, or of all for null; none for an unknown name. They are valid
  // while the databases are neither closed nor changed, and go on with a record's `next`.

  ZelkIterator<const DbListNode> GetDatabaseNameIterator() const;
  ZelkIterator<const symblk> GetNodeIterator(const char* db) const;
  ZelkIterator<const msgblk> GetMessageIterator(const char* db) const;
  ZelkIterator<const env_var_blk> GetEnvvarIterator(const char* db) const;
  ZelkIterator<const btlblk> GetBitTimingIterator(const char* db) const;
  ZelkIterator<const attr_def> GetAttrDefinitionIterator(const char* db) const;
  ZelkIterator<const cat> GetCategoryIterator(const char* db) const;
  ZelkIterator<const sigtype> GetSignalTypeIterator(const char* db) const;
  ZelkIterator<const valtable> GetValueTableIterator(const char* db) const;
  /// Of the network itself.
  ZelkIterator<const attr> GetAttributeIterator(const char* db) const;
  /// The view filter's links; a null link stands for `ZelkNoneFilterCategory`,
  /// `ZelkNoneFilterNode`.
  ZelkIterator<const catlink> GetFilterCategoryIterator(const char* db) const;
  ZelkIterator<const rxblk> GetFilterNodeIterator(const char* db) const;

  // Over what one object owns; their database name is null.

  ZelkIterator<const sigblk> GetSignalIterator(const msgblk& message) const;
  ZelkIterator<const sigblk> GetValidSignalIterator(const msgblk& message,
                                                    ValidSignalPredicate& predicate) const;
  ZelkIterator<const sigblk> GetValidMultiplexorSignalIterator(
      const msgblk& message, ValidMultiplexorPredicate& predicate) const;
  ZelkIterator<const sigblk> GetMultiplexedSignalIterator(
      const msgblk& message, MultiplexedBySignalPredicate& predicate) const;
  ZelkIterator<const sigblk> GetMultiplexorSignalIterator(const msgblk& message) const;
  ZelkIterator<const siggroupblk> GetSignalGroupIterator(const msgblk& message) const;
  ZelkIterator<const siglistblk> GetSubsignalIterator(const siggroupblk& group) const;
  ZelkIterator<const rxblk> GetReceiverIterator(const sigblk& signal) const;
  ZelkIterator<const rxblk> GetTransmitterIterator(const msgblk& message) const;
  ZelkIterator<const rxblk> GetAccessNodeIterator(const env_var_blk& variable) const;
  ZelkIterator<const val> GetValueDescriptionIterator(const sigblk& signal) const;
  ZelkIterator<const val> GetValueDescriptionIterator(const env_var_blk& variable) const;
  ZelkIterator<const val> GetValueDescriptionIterator(const valtable& table) const;
  ZelkIterator<const attr> GetAttributeIterator(const symblk& node) const;
  ZelkIterator<const attr> GetAttributeIterator(const msgblk& message) const;
  ZelkIterator<const attr> GetAttributeIterator(const sigblk& signal) const;
  ZelkIterator<const attr> GetAttributeIterator(const env_var_blk& variable) const;
  ZelkIterator<const attr> GetAttributeIterator(const sigtype& type) const;
  ZelkIterator<const attr> GetAttributeIterator(const rxblk& link) const;

  // --- Counts ---
  //
  // Each steps an iterator to its end; `db` null: all databases.

  unsigned NodeCount(const char* db) const;
  unsigned MessageCount(const char* db) const;
  unsigned EnvvarCount(const char* db) const;
  unsigned BitTimingCount(const char* db) const;
  unsigned AttrDefinitionCount(const char* db) const;
  unsigned CategoryCount(const char* db) const;
  unsigned SignalTypeCount(const char* db) const;
  unsigned ValueTableCount(const char* db) const;
  unsigned AttributeCount(const char* db) const;  ///< values of the network itself
  unsigned AttributeCount(const symblk& node) const;
  unsigned AttributeCount(const msgblk& message) const;
  unsigned AttributeCount(const env_var_blk& variable) const;
  unsigned AttributeCount(const sigblk& signal) const;
  template <zelk::AttributeOwner Object>
  unsigned AttributeCount(const Object* object) const {
    return object ? AttributeCount(*object) : 0;
  }
  unsigned SignalCount(const msgblk& message) const;
  unsigned SignalCount(const siggroupblk& group) const;
  unsigned SignalGroupCount(const msgblk& message) const;

  // --- Attributes ---
  //
  // The effective value is the object's own, else the default of the definition. Names are compared
  // on 32 characters. Values are the records' own: texts are borrowed. An ENUM's own value is the
  // index of its item, as a number; its default is a text, but for `GetAttrDefaultEx`, which gives
  // the index. Link means a receiver of a signal.
  //
  // Objects are given by reference or by pointer. A null pointer, as a lookup gives that finds
  // nothing, is answered as an object that has neither value nor definition; a reference must not
  // be made of it.

  /// The definition by which `SetAttrValue` stores the object's value of that name: the one of the
  /// value that the object has; else the first one of that name for objects of its kind; else the
  /// first one of that name for objects of another kind, but for relations. Its `value_type` says
  /// which member of `zelk_attr_value_t` counts: `text` for `ZELK_ATTR_STRING`, else `number`.
  ///
  /// @param db  database whose definitions count; null: the one that holds the object
  /// @return null when there is none, no such database, or when another database than the named one
  /// holds the object
  const attr_def* GetAttrDefinition(const symblk& node, const char* name,
                                    const char* db = nullptr) const;
  const attr_def* GetAttrDefinition(const msgblk& message, const char* name,
                                    const char* db = nullptr) const;
  const attr_def* GetAttrDefinition(const env_var_blk& variable, const char* name,
                                    const char* db = nullptr) const;
  const attr_def* GetAttrDefinition(const sigtype& type, const char* name,
                                    const char* db = nullptr) const;
  const attr_def* GetAttrDefinition(const sigblk& signal, const char* name,
                                    const char* db = nullptr) const;
  const attr_def* GetAttrDefinition(const rxblk& link, const char* name,
                                    const char* db = nullptr) const;
  template <zelk::AttributeOwner Object>
  const attr_def* GetAttrDefinition(const Object* object, const char* name,
                                    const char* db = nullptr) const {
    return object ? GetAttrDefinition(*object, name, db) : nullptr;
  }
  /// Likewise of the network itself.
  const attr_def* GetNetworkAttrDefinition(const char* db, const char* name) const;

  /// Effective value; zeroed when there is none. The default is that of the first definition of
  /// that name, of whatever kind, in the database that holds the object, and in all databases, in
  /// list order, when none does. For the type of a default ask `GetAttrDefinition` with the name.
  zelk_attr_value_t GetAttrValue(const char* name, const char* db);
  zelk_attr_value_t GetAttrValue(const symblk& node, const char* name);
  zelk_attr_value_t GetAttrValue(const msgblk& message, const char* name);
  zelk_attr_value_t GetAttrValue(const env_var_blk& variable, const char* name);
  zelk_attr_value_t GetAttrValue(const sigtype& type, const char* name);
  zelk_attr_value_t GetAttrValue(const sigblk& signal, const char* name);
  zelk_attr_value_t GetAttrValue(const rxblk& link, const char* name);
  template <zelk::AttributeOwner Object>
  zelk_attr_value_t GetAttrValue(const Object* object, const char* name) {
    return object ? GetAttrValue(*object, name) : zelk_attr_value_t{};
  }

  /// Effective value with a status, which becomes the manager's too. `value` is written on
  /// `ZelkStatusOk` only. The default is that of `GetAttrDefaultEx`: of the first definition of
  /// that name, of whatever kind.
  ///
  /// @param db  database whose definitions count; null: the one that holds the object
  /// @return `ZelkStatusOk`; `ZelkStatusNotFound` when there is no such database, or for a null
  /// object; `ZelkStatusNotDefined` when nothing of that name is defined for this kind of object
  ZelkStatus GetAttrValueEx(const char* name, zelk_attr_value_t& value, const char* db);
  ZelkStatus GetAttrValueEx(const symblk& node, const char* name, zelk_attr_value_t& value,
                            const char* db);
  ZelkStatus GetAttrValueEx(const msgblk& message, const char* name, zelk_attr_value_t& value,
                            const char* db);
  ZelkStatus GetAttrValueEx(const env_var_blk& variable, const char* name, zelk_attr_value_t& value,
                            const char* db);
  /// A signal type that no database holds counts for all of them; an unknown `db` gives
  /// `ZelkStatusNotDefined`.
  ZelkStatus GetAttrValueEx(const sigtype& type, const char* name, zelk_attr_value_t& value,
                            const char* db);
  ZelkStatus GetAttrValueEx(const sigblk& signal, const char* name, zelk_attr_value_t& value,
                            const char* db);
  ZelkStatus GetAttrValueEx(const rxblk& link, const char* name, zelk_attr_value_t& value,
                            const char* db);
  template <zelk::AttributeOwner Object>
  ZelkStatus GetAttrValueEx(const Object* object, const char* name, zelk_attr_value_t& value,
                            const char* db) {
    return object ? GetAttrValueEx(*object, name, value, db) : Answer(ZelkStatusNotFound);
  }

  /// Default of the first definition of that name; zeroed when there is none.
  ///
  /// @param db  null: all databases
  zelk_attr_value_t GetAttrDefault(const char* name, const char* db) const;
  /// The same, an ENUM's as the index of its item (`GetAttrValueIndex`).
  ///
  /// @return `ZelkStatusOk`; `ZelkStatusNotDefined` when there is no such definition
  ZelkStatus GetAttrDefaultEx(const char* name, zelk_attr_value_t& value, const char* db);

  /// Whether there is a definition of that name for that kind of object; `db` null: in any
  /// database.
  bool IsAttributeDefined(const char* name, zelk_obj_t type, const char* db) const;
  /// Whether the network, or the object, has a value of its own; `db` null: in any database.
  bool IsAttrValueDefined(const char* name, const char* db) const;
  bool IsAttrValueDefined(const symblk& node, const char* name) const;
  bool IsAttrValueDefined(const msgblk& message, const char* name) const;
  bool IsAttrValueDefined(const env_var_blk& variable, const char* name) const;
  bool IsAttrValueDefined(const sigtype& type, const char* name) const;
  bool IsAttrValueDefined(const sigblk& signal, const char* name) const;
  bool IsAttrValueDefined(const rxblk& link, const char* name) const;
  template <zelk::AttributeOwner Object>
  bool IsAttrValueDefined(const Object* object, const char* name) const {
    return object && IsAttrValueDefined(*object, name);
  }

  /// Item of an ENUM. Empty items count; below 0 is the first.
  ///
  /// @return a new text, released by the caller with `zelk_mfree`; null past the end, for a
  /// definition without items or none, and when the heap is exhausted
  const char* GetAttrValueString(const char* name, long index, const char* db) const;
  const char* GetAttrValueString(const attr_def& definition, long index) const;
  const char* GetAttrValueString(const attr_def* definition, long index) const {
    return definition ? GetAttrValueString(*definition, index) : nullptr;
  }
  /// Position of an item of an ENUM. Empty items do not count, other than above.
  ///
  /// @return -1 when there is none
  long GetAttrValueIndex(const char* name, const char* text, const char* db) const;
  long GetAttrValueIndex(const attr_def& definition, const char* text) const;
  long GetAttrValueIndex(const attr_def* definition, const char* text) const {
    return definition ? GetAttrValueIndex(*definition, text) : -1;
  }

  /// Text of the first value description with this number (32 bits); null, with the status
  /// `ZelkStatusNoDescription`, when there is none.
  const char* GetValueDescription(const sigblk& signal, long value);
  const char* GetValueDescription(const env_var_blk& variable, long value);
  template <zelk::ValueOwner Object>
  const char* GetValueDescription(const Object* object, long value) {
    return DescriptionOf(object ? object->values : nullptr, value);
  }
  /// Number of the first value description with this text; 0x7FFFFFFF, with the status
  /// `ZelkStatusNoNumber`, when there is none.
  long GetDescriptionValue(const sigblk& signal, const char* text);
  long GetDescriptionValue(const env_var_blk& variable, const char* text);
  template <zelk::ValueOwner Object>
  long GetDescriptionValue(const Object* object, const char* text) {
    return NumberOf(object ? object->values : nullptr, text);
  }

  /// Whether the view filter of a database (null: of any) links to this very record; the
  /// placeholder stands for a null link.
  bool IsCategoryInFilter(const cat& category, const char* db) const;
  bool IsNodeInFilter(const symblk& node, const char* db) const;

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

  /// Takes a database that is destroyed out of every manager's cache.
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
  /// `GetDatabase` for who does not hand it out.
  ZelkDatabase* FindDatabase(const char* db);
  bool Rename(DbListNode& node, const char* name);
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
  std::unique_ptr<zelk::ManagerTables> tables_;  ///< with the cache
  mutable DbListNode* last_found_ = nullptr;     ///< lookups tend to ask for the same one again
  const ZelkDatabase* answered_ = nullptr;       ///< whose record the last lookup gave
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
/// @return whether its first colon is a double one. Without `db` or `object` that is all: the text
/// stays as it is
ZELK_API bool ZelkSplitQualifiedName(char* text, const char** db, const char** object);

/// Stand for a null link of a view filter: what it says of objects without a category (category 0),
/// or without a node ("Ostrel__XXX"). Records of the library, in no list, and never to be changed.
ZELK_API cat& ZelkNoneFilterCategory();
ZELK_API symblk& ZelkNoneFilterNode();

// The iterators' members need the manager, and its members return them.
#include "zelk/iterator.hpp"

#endif
