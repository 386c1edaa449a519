#include "database.hpp"

#include "output.hpp"
#include "text.hpp"

namespace zelk::tool {

namespace {

void tell_reports(const ZelkDatabase* database, const std::vector<std::string>& reports,
                  const std::string& path) {
  for (const std::string& line : reports)
    print_error(behind_path(path, database ? "warning: " + line : line));
  if (database && database->SymbolsShortenedOnRead())
    print_error(fmt::format("{}: warning: {}", escaped(path), kShortenedWarning));
}

}  // namespace

OpenedDatabase open_database(ZelkManager& manager, const std::string& path) {
  OpenedDatabase opened;
  const ZelkError error = manager.OpenDatabase(path.c_str(), &opened.name, 0);
  opened.reports = escaped_lines(error == ZelkErrorFileNotFound
                                     ? zelk_format_error(ZELK_ERR_NOT_FOUND, 0, path.c_str())
                                     : manager.GetLastOpenError());
  if (error == ZelkErrorOk) opened.database = manager.GetDatabase(opened.name);
  return opened;
}

OpenedDatabase open_and_report(ZelkManager& manager, const std::string& path) {
  OpenedDatabase opened = open_database(manager, path);
  tell_reports(opened.database, opened.reports, path);
  return opened;
}

ZelkDatabase* DatabaseFile::open(const std::string& path) {
  opened_ = open_database(manager_, path);
  return opened_.database;
}

ZelkDatabase* open_and_report(DatabaseFile& file, const std::string& path) {
  ZelkDatabase* const database = file.open(path);
  tell_reports(database, file.reports(), path);
  return database;
}

std::string write_complaint(ZelkError error, const ZelkDatabase& database) {
  if (error == ZelkErrorReadOnly) return "the file is read-only";
  if (database.SymbolsShortenedOnRead()) {
    return "not written: names or units were cut, and the file would lose them; zelk rewrite "
           "--allow-cut writes it all the same";
  }
  return zelk_format_error(ZELK_ERR_WRITE, 0, nullptr);
}

std::string behind_path(const std::string& path, const std::string& line) {
  // A syntax error has no text of its own: its line begins with the comma in front of "line N".
  const char* separator = line.starts_with(", ") ? "" : ": ";
  return escaped(path) + separator + line;
}

}  // namespace zelk::tool
