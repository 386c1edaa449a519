/// \file
/// One file, read and held.

#ifndef ZELK_TOOL_INPUT_DATABASE_HPP
#define ZELK_TOOL_INPUT_DATABASE_HPP

#include <string>
#include <string_view>
#include <vector>

#include "base/list.hpp"
#include "input/text_encoding.hpp"
#include "zelk/write_manager.hpp"
#include "zelk/zelk.h"

namespace zelk::tool {

/// What became of the opening of a file.
struct OpenedDatabase {
  const char* name = nullptr;        ///< the manager's handle; null when it cannot be read
  ZelkDatabase* database = nullptr;  ///< likewise
  ZelkError error = ZelkErrorNoDatabase;
  Encoding encoding = Encoding::kUtf8;    ///< of its texts
  std::vector<std::string> reports = {};  ///< one text per fault or warning, `escaped`
};

/// Opens and reads `path`, a file of the library's own format; the manager holds it.
///
/// @param name  for the database; null: by itself
OpenedDatabase open_database(ZelkManager& manager, const std::string& path,
                             const char* name = nullptr);

/// Fills in the rest of `opened`, which has its name, once its opening or import has ended.
///
/// @param text  what the library noted on the way
void finish_opening(OpenedDatabase& opened, ZelkManager& manager, ZelkError error,
                    std::string_view text, const std::string& path);

/// Tells the reports on standard error, and when names were cut.
void tell_reports(const OpenedDatabase& opened, const std::string& path);

/// `open_database`, with its reports told on standard error.
OpenedDatabase open_and_report(ZelkManager& manager, const std::string& path);

/// A database file, held by a manager of its own until this goes.
class DatabaseFile {
 public:
  /// Opens and reads `path`, once: by its extension a file of the library's own format, or one that
  /// a converter module reads.
  ///
  /// @return the database; null when it cannot be read: `reports` tells why
  ZelkDatabase* open(const std::string& path);

  /// What there is to tell of the reading: one text per fault or warning, `escaped`.
  const std::vector<std::string>& reports() const { return opened_.reports; }

  const OpenedDatabase& opened() const { return opened_; }

  /// The database that `open` gave.
  EncodedDatabase encoded() const { return {*opened_.database, opened_.encoding}; }

 private:
  ZelkManager reader_{static_cast<void*>(nullptr)};
  ZelkWriteManager importer_{static_cast<void*>(nullptr)};
  OpenedDatabase opened_;
};

/// `DatabaseFile::open`, with its reports told on standard error.
ZelkDatabase* open_and_report(DatabaseFile& file, const std::string& path);

/// Why `ZelkDatabase::Write` did not write the database, by its result and the error text, which
/// has been cleared before.
std::string write_complaint(ZelkError error, const ZelkDatabase& database);

/// Tells on standard error what the error text has of a save of `path` that has succeeded.
void tell_save_notes(const ZelkDatabase& database, const std::string& path);

/// A line of the library's error text, `escaped`, behind the file that it is about.
std::string behind_path(const std::string& path, const std::string& line);

/// What is to be told when `ZelkDatabase::SymbolsShortenedOnRead`.
inline constexpr std::string_view kShortenedWarning =
    "names or units are longer than the library keeps, and were cut";

}  // namespace zelk::tool

#endif
