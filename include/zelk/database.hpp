/// \file
/// One loaded database: the lists of a file, shared between the managers that hold them.

#ifndef ZELK_DATABASE_HPP
#define ZELK_DATABASE_HPP

#include <atomic>
#include <memory>
#include <string>
#include <type_traits>

#include "zelk/types.hpp"

// Windows' own header makes this name a macro. To call the system's function, hosts write the name
// that the macro stands for (`GetMessageA`).
#ifdef GetMessage
#undef GetMessage
#endif

namespace zelk {
class DatabaseCopier;
class DatabaseIndex;
struct DatabaseFile;
struct DatabaseLookup;
struct ListEnds;
struct ManagerEdits;
namespace platform {
struct FilePath;
}
}  // namespace zelk

/// The definitions of the four attributes that carry names longer than the text format takes.
class ZELK_API ZelkPredefinedAttributes {
 public:
  /// Whether `definition` is string-valued and bears one of the four names (compared on 32
  /// characters): "SystemSignalLongSymbol", "SystemMessageLongSymbol", "SystemNodeLongSymbol",
  /// "SystemEnvVarLongSymbol".
  static bool IsPredefinedAttribute(const attr_def& definition);

  /// Remembers `definition` under its name, in place of an earlier one.
  ///
  /// @return false, with nothing changed, when it is none of the four
  bool Insert(const attr_def& definition);
  /// Forgets `definition`.
  ///
  /// @return false when it was not remembered
  bool Remove(const attr_def& definition);
  void ClearAll();

  /// Borrowed from the database's definitions, null when absent; in the order signal, message,
  /// node, environment variable.
  attr_def* slots[4] = {};
};

/// One loaded database file.
///
/// Managers (manager.hpp) make and destroy databases, and share them: all databases of the process
/// stand in one list, which finds them by their file. A host gets one from
/// `ZelkManager::GetDatabase` and may use it as long as that manager has it open. The lists may be
/// read and handed to the C interface; they belong to the database and are released with it.
///
/// Only the library sets the counts, the path and the file time: by path and time it finds a
/// database again. To give a database another file, hand it to `Write`.
///
/// Only the constructors and `CreateDatabase` raise: `ZelkException`, for a file that cannot be
/// read. For memory see `ZelkManager`.
class ZELK_API ZelkDatabase {
 public:
  std::uint32_t ref_count = 1;    ///< managers that hold the database
  std::uint32_t cache_count = 0;  ///< releases that asked to keep it in the cache
  char* path = nullptr;  ///< owned; the file it was read from or last written to, as it was named;
                         ///< null for none
  std::int64_t file_time = 0;  ///< modification time of `path` when it was read or written, in the
                               ///< system's own ticks; only equality means something
  symblk* nodes = nullptr;
  msgblk* messages = nullptr;
  env_var_blk* env_vars = nullptr;
  btlblk* bit_timings = nullptr;
  attr_def* attr_defs = nullptr;
  attr* attr_values = nullptr;  ///< of the network itself
  cat* categories = nullptr;
  filter_t filter = {};
  char* comment = nullptr;    ///< owned; of the network
  char* user_data = nullptr;  ///< owned; the text of the "VERSION" line; null only after `Clear`
  sigtype* signal_types = nullptr;
  valtable* value_tables = nullptr;
  std::uint8_t symbols_shortened = 0;  ///< 1: names were cut while the file was read
  ZelkPredefinedAttributes predefined;
  std::uint8_t write_ext_mux = 1;  ///< 1: `Write` puts extended multiplexing into the file

  /// The same instance, or the same unchanged file: `IsPathEqual(other.path)`.
  bool operator==(const ZelkDatabase& other) const;

  /// Whether `file` names this database's file, and the file is unchanged since it was read or
  /// written: the absolute paths are equal without regard to case (except on file systems that tell
  /// two such files apart), and the modification times are equal. A relative path starts at the
  /// working folder: `file` at the present one, the own path at the one in which it was set. False
  /// when either one is null or the file is gone.
  bool IsPathEqual(const char* file) const;

  // --- The file ---

  /// Releases all records and reads the own file again. `file_time` stays as it is.
  ///
  /// A database that was not read whole holds what stands before the fault. `Write` refuses it
  /// until it is read whole, cleared, or assigned to.
  ///
  /// @return `ZelkErrorOk`; `ZelkErrorFileNotFound` without a path; `ZelkErrorNoDatabase` when the
  /// file cannot be read, with its message line in the error text
  ZelkError ReopenDatabaseFile();

  /// Writes the database, and then overwrites another instance of the same file (`Commit`). Plain
  /// managers may have that instance open: to them this is an edit, which replaces all records.
  ///
  /// The file is replaced in one step once all of it is on the disk: on a failure it is as it was,
  /// and a line with the system's reason enters the error text. Then its folder is put on the disk,
  /// so that the new file outlasts a loss of power; when the disk fails at that, the file has its
  /// new content, the result is `ZelkErrorNotWritten`, and the line says so. It keeps its
  /// permissions, access list and extended attributes, and its owner when the process may give
  /// files away; a file that this process may not write is not replaced. Links are followed. A file
  /// with several hard links is written in place while ".NAME.zelk-whole" beside it has the whole
  /// new content: when the process is killed meanwhile, the next `Write` first finishes that write,
  /// with a line in the error text. It also removes the ".NAME.zelk-N" that a killed process has
  /// left. A pipe, or anything else that is no regular file, is written to directly.
  ///
  /// A given file becomes the database's own as soon as it is found to be writable.
  ///
  /// @param file  null: the own file
  /// @return tested in this order: `ZelkErrorFileNotFound` without any path;
  /// `ZelkErrorFileBelongs`, when another open database has the given file, or a write manager,
  /// also the one that writes, has another instance of the own file open; `ZelkErrorFileBelongs`,
  /// when the own file exists although it did not when it became that, and this database has not
  /// written it since; `ZelkErrorReadOnly`; `ZelkErrorNotWritten`, when names were shortened on
  /// reading (`ZELK_ERR_SHORTENED`), the database was not read or copied whole (`ZELK_ERR_WRITE`),
  /// or the file could not be written, with the reason in the error text; or `ZelkErrorOk`, also
  /// when memory ran out for the other instance (`ZELK_ERR_MEMORY` in the error text), which then
  /// lacks a list and refuses to be written
  ZelkError Write(const char* file);

  /// Copies this database over the other instance of the same file in the process's list; does
  /// nothing when there is none. All records of that instance are replaced, and unwritten edits of
  /// other managers are lost; `Write` refuses in that case. The mark of cut names is copied too.
  void Commit();

  /// Releases all lists and texts. The path, the counts, `file_time` and `write_ext_mux` stay. A
  /// cleared database may be written, empty as it is.
  void Clear();

  /// Whether names were cut while the file was read.
  bool SymbolsShortenedOnRead() const { return symbols_shortened != 0; }

  // --- Objects ---
  //
  // Lookups: first match in list order, names byte by byte as in query.h; null when there is none
  // or the name is null. The records belong to the database. A literal null must be cast:
  // `GetMessage(nullptr)` and `GetMessage(0)` are ambiguous.
  //
  // Lookups use an index, and take the same time whatever the size of the database, as long as no
  // host can change its records. A host can change them once it got the database or a record as
  // non-const: from a lookup in a database that is not const, from `ZelkManager::GetDatabase`, from
  // a creation, or from a lookup or iterator of a write manager. From then on lookups walk the
  // lists, until the database is next read, cleared or assigned to; a host that wants to go on
  // editing after that must get the database or its records anew. Lookups in a const database, and
  // those of `ZelkManager`, keep the index. What hangs on a const record is not to be changed
  // either, although its links are not const.
  //
  // Several threads may use lookups in one database as long as all of them are const.
  //
  // Creation: a record with the values of model.h, linked in front of the record at position
  // `index` (0: the first), behind the last one when there are fewer. Null when the heap is
  // exhausted. Creation behind the last record takes the same time whatever the size of the list,
  // when nothing was deleted or inserted elsewhere since the last one.
  //
  // To relink records of these lists, use only the functions of model.h.
  //
  // Deletion: as the functions `can_delete_*` of model.h, which say what is not released. The
  // caller removes other records' references first.

  const symblk* GetNode(const char* name) const;
  symblk* GetNode(const char* name);
  symblk* CreateNode(unsigned index);
  void DeleteNode(symblk& node);

  const msgblk* GetMessage(const char* name) const;
  msgblk* GetMessage(const char* name);
  const msgblk* GetMessage(unsigned long id) const;  ///< all 32 bits count; bit 31: extended
  msgblk* GetMessage(unsigned long id);
  msgblk* CreateMessage(unsigned index);
  void DeleteMessage(msgblk& message);

  const env_var_blk* GetEnvvar(const char* name) const;
  env_var_blk* GetEnvvar(const char* name);
  env_var_blk* CreateEnvvar(unsigned index);
  void DeleteEnvvar(env_var_blk& variable);

  const btlblk* GetBitTiming(unsigned short baudrate) const;
  btlblk* GetBitTiming(unsigned short baudrate);
  btlblk* CreateBitTiming(unsigned index);
  void DeleteBitTiming(btlblk& bit_timing);

  const valtable* GetValueTable(const char* name) const;
  valtable* GetValueTable(const char* name);
  valtable* CreateValueTable(unsigned index);
  void DeleteValueTable(valtable& table);

  const sigtype* GetSignalType(const char* name) const;
  sigtype* GetSignalType(const char* name);
  sigtype* CreateSignalType(unsigned index);
  void DeleteSignalType(sigtype& type);

  cat* CreateCategory(unsigned index);
  void DeleteCategory(cat& category);

  /// The first definition of that name, of whatever kind; `ZelkManager::GetAttrDefinition` gives
  /// that of an object.
  const attr_def* GetAttrDef(const char* name) const;
  attr_def* GetAttrDef(const char* name);
  attr_def* CreateAttrDef(unsigned index);
  /// Also removes the definition from the long-name attributes (`predefined`).
  void DeleteAttrDef(attr_def& definition);
  /// Gives the definition another name, cut to 32 characters; null changes nothing. When that is
  /// the name of a long-name attribute, its values become the names of the objects at once, as in
  /// `CheckAndInsertPredefinedAttrs`.
  void RenameAttrDef(attr_def& definition, const char* name);

  /// The message of a J1939 frame, as `zelk_get_j1939_message` finds it.
  ///
  /// @param id     identifier of the frame; without bit 31 it is looked up as it is
  /// @param flags  `ZELK_J1939_PGN_IDS`, `ZELK_J1939_FRAME_FORMAT`; without either the first
  /// applies if `HasJ1939GroupNumbers`, else the second
  const msgblk* GetJ1939Message(unsigned long id, unsigned long flags) const;
  msgblk* GetJ1939Message(unsigned long id, unsigned long flags);
  /// `flags`, completed by what the database says when they have neither mode.
  static std::uint32_t J1939Flags(std::uint32_t flags, bool has_group_numbers);
  /// Whether the database says that its messages' identifiers are J1939 group numbers: the network
  /// attribute "J1939PGN", or else "IsNMEA", has a value or a default above 0.
  bool HasJ1939GroupNumbers() const;

  /// The largest `id` of an environment variable; 0 when there is none.
  unsigned long GetMaxEnvvarHandle() const;

  /// For the construction of an iterator over a kind of objects: the first one for null, else the
  /// next one. `T` is one of the database's record types, or it with const; `rxblk` and `catlink`
  /// are the links of the view filter, `attr` the network's own attribute values. Without const it
  /// gives the records out to be changed, as the lookups above do.
  template <typename T>
  T* Walk(T* object) {
    T* const found = object ? object->next : ListOf(static_cast<const T*>(nullptr));
    if constexpr (std::is_const_v<T>) {
      return found;
    } else {
      return HandOut(found);
    }
  }

  // --- Texts and settings ---

  void SetComment(const char* text);   ///< copied; null: no comment
  void SetUserData(const char* text);  ///< copied; null: the empty text
  void WriteExtendedMultiplexing(bool on) { write_ext_mux = on ? 1 : 0; }

  /// The name that the database has by itself: the network attribute "DBName" (its value or, when
  /// there is none or its text is null, its default) if that is defined as a text, else the file's
  /// name without folder and extension. In front of the first character that can begin a name each
  /// character is replaced by "_"; behind it, characters that no name has are dropped. At most 32
  /// characters are left.
  ///
  /// @return released by the caller with `zelk_mfree`; null when the heap is exhausted
  char* GetDefaultName() const;

  /// Adds a definition to the long-name attributes if it has one of their names: its values become
  /// the names of their objects. A value that a file cannot hold as a name is left out and reported
  /// (`ZELK_ERR_FORMAT` with the value); an empty one is left out.
  void CheckAndInsertPredefinedAttrs(attr_def& definition);
  /// Removes the definition from the long-name attributes. The objects keep their names.
  void CheckAndRemovePredefinedAttrs(attr_def& definition);

 protected:
  friend class ZelkImporter;
  friend class ZelkManager;
  friend class ZelkWriteManager;
  friend class zelk::DatabaseCopier;
  friend struct zelk::DatabaseFile;
  friend struct zelk::DatabaseLookup;
  friend struct zelk::ManagerEdits;

  /// An empty database without a path.
  ZelkDatabase();
  /// Reads a file; null gives an empty database.
  ///
  /// @throws ZelkException when the file cannot be read
  explicit ZelkDatabase(const char* file);
  /// Deep copies: new records, which refer to each other as the source's do. A reference to a
  /// record that the source does not own becomes one to the first record of that name or number in
  /// the copy, or else null. The copy of an attribute value without a definition has no value. When
  /// memory runs out for a list, that list is empty in the copy, and `Write` refuses the copy; it
  /// also refuses the copy of a database that was not read whole. The copy has its own counts and
  /// file time; assignment keeps those of the target, and its `symbols_shortened` and
  /// `write_ext_mux`.
  ZelkDatabase(const ZelkDatabase& other);
  ZelkDatabase& operator=(const ZelkDatabase& other);
  virtual ~ZelkDatabase();

  // The process-wide list, newest first.

  /// The shared database of a file, with one more hold: the one in the list, or else a new one that
  /// is read from the file. Null gives a new, empty database without a path.
  ///
  /// @throws ZelkException when the file cannot be read; the list is unchanged then
  static ZelkDatabase& CreateDatabase(const char* file);
  /// Gives one hold back. With `keep_in_cache` the database stays in the list with one more mark;
  /// without, it is destroyed when nobody holds it and no mark is left.
  static void DestroyDatabase(ZelkDatabase& database, bool keep_in_cache);
  /// Destroys every database that nobody holds, marked or not.
  static void ReleaseCache();
  static void ListInsertDb(ZelkDatabase& database);
  static void ListRemoveDb(ZelkDatabase& database);
  /// The first one whose `IsPathEqual(file)` holds; null when there is none.
  static ZelkDatabase* ListFindDb(const char* file);

 private:
  symblk* ListOf(const symblk*) const { return nodes; }
  msgblk* ListOf(const msgblk*) const { return messages; }
  env_var_blk* ListOf(const env_var_blk*) const { return env_vars; }
  btlblk* ListOf(const btlblk*) const { return bit_timings; }
  attr_def* ListOf(const attr_def*) const { return attr_defs; }
  attr* ListOf(const attr*) const { return attr_values; }
  cat* ListOf(const cat*) const { return categories; }
  sigtype* ListOf(const sigtype*) const { return signal_types; }
  valtable* ListOf(const valtable*) const { return value_tables; }
  catlink* ListOf(const catlink*) const { return filter.categories; }
  rxblk* ListOf(const rxblk*) const { return filter.nodes; }

  /// Null when lookups must walk the lists.
  const zelk::DatabaseIndex* Index() const;
  /// Called when the lists are new and no host has a record of them: an index may be made again.
  void DropIndex() const;
  /// Called when a host can change the lists without the library's knowledge.
  void ForbidIndex() const;

  /// Returns `found` to be changed, and forbids the index: every record that a host or the library
  /// may change from now on passes here, and so does the database itself.
  template <typename T>
  T* HandOut(const T* found) const {
    if (found) ForbidIndex();
    return const_cast<T*>(found);
  }
  bool IsHandedOut() const {
    return index_state_.load(std::memory_order_relaxed) == IndexState::kForbidden;
  }
  template <typename Record>
  Record* CreateAt(Record*& list, unsigned index, Record* (*create)());
  template <typename Record>
  void Delete(Record*& list, Record& record, void (*remove)(Record**, Record*));

  void ReadFile();
  void CopyFrom(const ZelkDatabase& other);
  void SetFile(const char* file);
  void SetFile(char* text, std::shared_ptr<const zelk::platform::FilePath> file);
  bool TakeFileOf(const ZelkDatabase& other);
  std::string OwnFile() const;
  bool BelongsToAnother(const char* target) const;
  ZelkError WriteOwn(const char* file);
  bool MayBeSaved() const;
  ZelkError Save(const char* target);
  ZelkDatabase* StartSaving();
  ZelkDatabase* FindListed() const;
  static ZelkDatabase* HoldListed(const char* file);
  static void Destroy(ZelkDatabase& database);

  /// The first const lookup makes the index, and publishes it when it is whole, unless the database
  /// has been handed out meanwhile. The index stays until the lists are released.
  enum class IndexState : std::uint8_t { kNone, kBeingMade, kMade, kForbidden };
  mutable std::unique_ptr<const zelk::DatabaseIndex> made_index_;
  mutable std::atomic<IndexState> index_state_ = IndexState::kNone;
  mutable std::unique_ptr<zelk::ListEnds> ends_;  ///< made when it is first wanted
  /// What `path` led to when it was set.
  std::shared_ptr<const zelk::platform::FilePath> file_;
  bool is_being_saved_ = false;  ///< the time of the file is about to change
  bool is_incomplete_ = false;   ///< a part was not read or copied: `Write` refuses
  bool is_file_new_ = false;     ///< the file did not exist when `path` was set; not written since
};

/// Whether a text can be the name of a database: 1 to 32 letters, digits and "_", the first no
/// digit. False for null.
ZELK_API bool ZelkVerifyDatabaseName(const char* text);

/// Splits "database::object" at its first colon, in place.
///
/// @param text    its first ":" is overwritten with a NUL when another ":" follows it
/// @param db      receives `text`
/// @param object  receives the part behind the double colon; null when the first colon is single,
/// or there is none
/// @return whether the first colon is a double one. With `db` or `object` null the text is only
/// tested and stays as it is
ZELK_API bool ZelkSplitQualifiedName(char* text, const char** db, const char** object);

#endif
