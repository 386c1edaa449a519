#include "input/database.hpp"

#include <utility>

#include "input/formats.hpp"
#include "input/importing.hpp"
#include "term/output.hpp"
#include "term/quoting.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

/// What is told of an opening that failed without a report: the library reports every other reason.
std::string failure_text(ZelkError error, const std::string& path) {
  return error == ZelkErrorFileNotFound
             ? escaped(zelk_format_error(ZELK_ERR_NOT_FOUND, 0, path.c_str()))
             : "out of memory";
}

/// What the error text has of a save, `escaped`; without the words with which the library begins a
/// line: what failed, and the file.
std::vector<std::string> save_notes(const ZelkDatabase& database) {
  const std::string failure = zelk_format_error(ZELK_ERR_WRITE, 0, nullptr);
  const std::string leads[] = {failure, ", ", escaped(utf8(view(database.path))) + ": "};
  std::vector<std::string> notes;
  for (std::string note : escaped_lines(utf8(zelk_get_error_text()))) {
    for (const std::string& lead : leads)
      if (note.starts_with(lead)) note.erase(0, lead.size());
    if (!note.empty()) notes.push_back(std::move(note));
  }
  return notes;
}

}  // namespace

void finish_opening(OpenedDatabase& opened, ZelkManager& manager, ZelkError error,
                    std::string_view text, const std::string& path) {
  opened.error = error;
  if (error == ZelkErrorOk) {
    opened.database = manager.GetDatabase(opened.name);
    opened.encoding = encoding_of(*opened.database);
  }
  if (error != ZelkErrorFileNotFound) {
    // A report can also quote what became no text of the database.
    const bool is_1252 = opened.encoding == Encoding::kWindows1252;
    opened.reports = escaped_lines(is_1252 ? to_utf8(text, opened.encoding) : utf8(text));
  }
  // The others are for the caller to answer.
  const bool is_failure = error == ZelkErrorNoDatabase || error == ZelkErrorFileNotFound;
  if (is_failure && opened.reports.empty()) opened.reports = {failure_text(error, path)};
}

OpenedDatabase open_database(ZelkManager& manager, const std::string& path, const char* name) {
  OpenedDatabase opened;
  const ZelkError error = manager.OpenDatabase(path.c_str(), &opened.name, name, 0);
  finish_opening(opened, manager, error, manager.GetLastOpenError(), path);
  return opened;
}

void tell_reports(const OpenedDatabase& opened, const std::string& path) {
  for (const std::string& line : opened.reports)
    print_error(behind_path(path, opened.database ? "warning: " + line : line));
  if (opened.database && opened.database->SymbolsShortenedOnRead())
    print_error(fmt::format("{}: warning: {}", escaped(path), kShortenedWarning));
}

OpenedDatabase open_and_report(ZelkManager& manager, const std::string& path) {
  OpenedDatabase opened = open_database(manager, path);
  tell_reports(opened, path);
  return opened;
}

ZelkDatabase* DatabaseFile::open(const std::string& path) {
  const Format format = format_of_file(path).value_or(Format{});
  opened_ = format.is_own() ? open_database(reader_, path)
                            : import_database(importer_, path, "imported", import_call(format));
  return opened_.database;
}

ZelkDatabase* open_and_report(DatabaseFile& file, const std::string& path) {
  ZelkDatabase* const database = file.open(path);
  tell_reports(file.opened(), path);
  return database;
}

void tell_save_notes(const ZelkDatabase& database, const std::string& path) {
  for (const std::string& note : save_notes(database))
    print_error(behind_path(path, "warning: " + note));
}

std::string write_complaint(ZelkError error, const ZelkDatabase& database) {
  if (database.SymbolsShortenedOnRead() && error == ZelkErrorNotWritten) {
    return "not written: names or units were cut, and the file would lose them; zelk rewrite "
           "--allow-cut writes it all the same";
  }
  std::string reasons;
  for (const std::string& reason : save_notes(database))
    reasons += (reasons.empty() ? "" : "; ") + reason;
  if (!reasons.empty()) return "could not be written: " + reasons;
  if (error == ZelkErrorReadOnly) return "could not be written: the file is read-only";
  return "could not be written";
}

std::string behind_path(const std::string& path, const std::string& line) {
  // A syntax error has no text of its own: its line begins with the comma in front of "line N".
  const char* separator = line.starts_with(", ") ? "" : ": ";
  return escaped(path) + separator + line;
}

}  // namespace zelk::tool
