#include "database.hpp"

#include "output.hpp"
#include "text.hpp"

namespace zelk::tool {

ZelkDatabase* DatabaseFile::open(const std::string& path) {
  const char* name = nullptr;
  const ZelkError error = manager_.OpenDatabase(path.c_str(), &name, 0);
  reports_ = escaped_lines(error == ZelkErrorFileNotFound
                               ? zelk_format_error(ZELK_ERR_NOT_FOUND, 0, path.c_str())
                               : manager_.GetLastOpenError());
  return error == ZelkErrorOk ? manager_.GetDatabase(name) : nullptr;
}

ZelkDatabase* open_and_report(DatabaseFile& file, const std::string& path) {
  ZelkDatabase* const database = file.open(path);
  for (const std::string& line : file.reports()) {
    print_error(behind_path(path, database ? "warning: " + line : line));
  }
  if (database && database->SymbolsShortenedOnRead()) {
    print_error(fmt::format("{}: warning: {}", escaped(path), kShortenedWarning));
  }
  return database;
}

std::string behind_path(const std::string& path, const std::string& line) {
  // A syntax error has no text of its own: its line begins with the comma in front of "line N".
  const char* separator = line.starts_with(", ") ? "" : ": ";
  return escaped(path) + separator + line;
}

}  // namespace zelk::tool
