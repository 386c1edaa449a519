/// \file
/// Other file formats, read and written by converter modules.

#ifndef ZELK_CONVERTER_HPP
#define ZELK_CONVERTER_HPP

#include <cstdint>

#include "zelk/module.h"
#include "zelk/platform.h"
#include "zelk/write_manager.hpp"

/// What importers and exporters have in common: a loaded module, its conversion function, and the
/// manager whose database is converted.
///
/// module.h has the contract of modules. Faults are reported in the error text
/// (`zelk_get_error_text`), which a conversion empties when it begins. For memory see
/// `ZelkManager`. A converter must not outlive its manager.
class ZELK_API ZelkConverter {
 public:
  /// The address of a function of a module, whatever its type.
  using Function = void (*)();

  ZelkConverter(const ZelkConverter&) = delete;
  ZelkConverter& operator=(const ZelkConverter&) = delete;

  // The virtual operations, in the order of their slots; the derived classes go on with theirs.

  /// Unloads the module.
  virtual ~ZelkConverter();

 protected:
  /// Takes over the lists that a module filled, after they were copied. Here it does nothing.
  ///
  /// @return true
  virtual bool PostProcess(symblk* nodes, msgblk* messages, env_var_blk* env_vars,
                           btlblk* bit_timings, attr_def* attr_defs, attr* attr_values,
                           cat* categories, filter_t filter, char* comment, char* user_data,
                           sigtype* signal_types, valtable* value_tables);

 public:
  /// A function that the module exports; null when it has none of that name, or is not loaded, and
  /// for null.
  Function GetFunction(const char* name) const;
  /// The manager's database of that handle; null when there is none.
  ZelkDatabase* GetDatabase(const char* db) const;
  /// 0 after a success; 1 while a conversion runs and after a failed one. Before the first
  /// conversion 1 when the module could not be loaded, else 0.
  std::uint32_t Status() const { return status_; }
  /// Sets the option for the module, whose meaning is the module's (`zelk_conversion::option`);
  /// null is the empty text. The text is borrowed until the next `SetOption`.
  void SetOption(const char* option) { option_ = option ? option : ""; }

 protected:
  /// Loads a module. A conversion reports in the error text that the module could not be loaded, or
  /// does not have the function.
  ///
  /// @param module  file name as the system's loader takes it: a bare name is searched for on the
  /// system's path; null: none
  ZelkConverter(ZelkManager& manager, const char* module);

  /// Looks the conversion function up; null: none is wanted.
  void FindFunction(const char* function);

  std::uint32_t status_ = 0;
  ZelkManager& manager_;
  ZelkDatabase* database_ = nullptr;  ///< the one that is converted; null while none is
  HINSTANCE module_ = nullptr;        ///< null when it could not be loaded
  Function function_ = nullptr;       ///< null when the module does not have it
  const char* option_ = "";
  bool is_function_wanted_ = false;  ///< a function was named
};

/// Fills new databases from files of another format.
class ZELK_API ZelkImporter : public ZelkConverter {
 public:
  /// @param module    as for `ZelkConverter`
  /// @param function  name of the conversion function; null: none
  ZelkImporter(ZelkWriteManager& manager, const char* module, const char* function);

  /// Makes a database from a file. The database's own file is the one of the same name with the
  /// extension ".DBC"; it is not written until the application writes the database.
  ///
  /// @param db    name for the database
  /// @param name  receives the handle on success; may be null
  /// @param file  the other format's; its owner must be allowed to write it
  /// @return tested in this order: `ZelkErrorFileNotFound`, `ZelkErrorReadOnly`,
  /// `ZelkErrorNameUsed`, `ZelkErrorInvalidName`, `ZelkErrorFileBelongs` when the ".DBC" file
  /// exists, `ZelkErrorNoDatabase` when there is no conversion function, when it fails, and when
  /// the heap is exhausted; or `ZelkErrorOk`. In all cases but `ZelkErrorOk` no database is left
  /// behind
  virtual ZelkError Import(const char* db, const char** name, const char* file);

 protected:
  /// Releases the lists.
  bool PostProcess(symblk* nodes, msgblk* messages, env_var_blk* env_vars, btlblk* bit_timings,
                   attr_def* attr_defs, attr* attr_values, cat* categories, filter_t filter,
                   char* comment, char* user_data, sigtype* signal_types,
                   valtable* value_tables) override;
  /// Lets the module fill the lists of the database that is converted.
  ///
  /// @return whether it succeeded; false without a conversion function
  virtual bool ProcessFile(const char* file);

  // The parts of `Import`, for derived importers that choose the database's file.

  /// Makes the empty database, whose file is `file` with the extension ".DBC".
  ///
  /// @return as `Import`, from `ZelkErrorNameUsed` on
  ZelkError CreateDatabase(const char* db, const char** name, const char* file);
  /// Fills the database of the handle `name`, and closes it when that fails.
  ///
  /// @return `ZelkErrorOk`; `ZelkErrorNoDatabase` when there is no such database or it could not be
  /// filled
  ZelkError FillDatabase(const char* name, const char* file);
  /// Replaces the records that a module filled in by deep copies, whose references lead to records
  /// of this database alone; the originals go to `PostProcess`.
  ///
  /// @return false when memory ran out, or `PostProcess` returned false
  bool CopyDatabaseLists();
};

/// Writes open databases to files of another format.
class ZELK_API ZelkExporter : public ZelkConverter {
 public:
  /// @param module    as for `ZelkConverter`
  /// @param function  name of the conversion function; null: none
  ZelkExporter(ZelkManager& manager, const char* module, const char* function);

  /// Writes a database to a new file.
  ///
  /// @return `ZelkErrorOk`, also without a conversion function (nothing is written then, and the
  /// error text says so if one was named); `ZelkErrorFileBelongs` when the file exists;
  /// `ZelkErrorNotWritten` when there is no such database, and when the conversion function fails
  virtual ZelkError Export(const char* db, const char* file);

 protected:
  /// Lets the module write the database that is converted.
  ///
  /// @return whether it succeeded; true without a conversion function
  virtual bool ProcessFile(const char* file);
};

#endif
