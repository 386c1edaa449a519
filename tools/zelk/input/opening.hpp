/// \file
/// Opening database files of any format, and reporting what the library noted on the way.

#ifndef ZELK_TOOL_INPUT_OPENING_HPP
#define ZELK_TOOL_INPUT_OPENING_HPP

#include <string>
#include <string_view>
#include <vector>

#include "base/list.hpp"
#include "check/includes/mend.hpp"
#include "input/encoded_database.hpp"
#include "input/formats.hpp"
#include "zelk/converter.hpp"
#include "zelk/write_manager.hpp"
#include "zelk/zelk.h"

namespace zelk::tool {

/// Whether and how files that the library refuses are made readable on the way.
struct Mending {
  bool is_wanted = false;
  bool lists_all = false;  ///< each mend is told, not their number alone
  check::MendOptions options{};
};

/// The result of opening a file.
struct OpenedDatabase {
  const char* name = nullptr;        ///< the manager's handle; null when it cannot be read
  ZelkDatabase* database = nullptr;  ///< likewise
  ZelkError error = ZelkErrorNoDatabase;
  Encoding encoding = Encoding::kUtf8;    ///< of its texts
  std::vector<std::string> reports = {};  ///< one text per fault or warning, `escaped`
  bool is_refused = false;  ///< the library's reader has found a fault in a file of its own format

  /// Only after an opening that succeeded.
  EncodedDatabase encoded() const { return {*database, encoding}; }
};

/// Opens and reads `path`, a file of the library's own format; the manager holds it.
///
/// @param name  for the database; null: by the file's name
OpenedDatabase open_database(ZelkManager& manager, const std::string& path,
                             const char* name = nullptr);

/// The call of a converter module.
struct ModuleCall {
  std::string module;                    ///< file
  std::string function = "zelk_import";  ///< in it
  std::string option = {};               ///< for it
};

/// Makes a database of `path`, which the manager holds. It is for no file: a file with the name of
/// this one and the extension ".dbc" is neither looked at nor claimed.
///
/// @param name  of the database, which no other one of the manager has
OpenedDatabase import_database(ZelkWriteManager& manager, const std::string& path, const char* name,
                               const ModuleCall& call);

/// Fills in the rest of `opened`, which has its name, once its opening or import has ended.
///
/// @param text  what the library noted on the way
void finish_opening(OpenedDatabase& opened, ZelkManager& manager, ZelkError error,
                    std::string_view text, const std::string& path);

/// Makes databases that are for no file yet, of files that may be read-only.
class NamelessImporter : public ZelkImporter {
 public:
  using ZelkImporter::ZelkImporter;

  ZelkError Import(const char* db, const char** name, const char* file) override;
};

/// Whether there is a file.
bool exists(const ZelkManager& manager, const std::string& path);

/// Why a module cannot be used; empty when it can.
std::string fault_of(const ZelkManager& manager, const ZelkConverter& converter,
                     const ModuleCall& call);

/// Prints the reports on standard error, of a refused file what the checks find in it; and a
/// warning when names were cut.
void print_reports(const OpenedDatabase& opened, const std::string& path);

/// A line of the library's error text, `escaped`, behind the file that it is about.
std::string behind_path(const std::string& path, const std::string& line);

/// The warning for a database of which `ZelkDatabase::SymbolsShortenedOnRead` is true.
inline constexpr std::string_view kShortenedWarning =
    "names or units are longer than the library keeps, and were cut";

/// A database file, held by a manager of its own for the life of this object.
class DatabaseFile {
 public:
  explicit DatabaseFile(const Mending& mending = {}) : mending_(mending) {}

  /// Opens and reads `path`, once, in the format of its extension.
  ///
  /// @return the database; null when it cannot be read: `reports` say why
  ZelkDatabase* open(const std::string& path);

  /// `open`, with its reports printed on standard error.
  ZelkDatabase* open_and_report(const std::string& path);

  /// The reports of the reading: one text per fault or warning, `escaped`.
  const std::vector<std::string>& reports() const { return opened_.reports; }

  /// What `open` found.
  const OpenedDatabase& opened() const { return opened_; }

  /// The database that `open` gave.
  EncodedDatabase encoded() const { return opened_.encoded(); }

 private:
  Mending mending_;
  ZelkManager reader_{static_cast<void*>(nullptr)};
  ZelkWriteManager importer_{static_cast<void*>(nullptr)};
  OpenedDatabase opened_;
};

}  // namespace zelk::tool

#endif
