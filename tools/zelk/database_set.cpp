#include "database_set.hpp"

#include <fmt/format.h>

#include <memory>

#include "output.hpp"
#include "text.hpp"
#include "zelk/iterator.hpp"

namespace zelk::tool {

namespace {

struct Release {
  void operator()(const char* text) const { zelk_mfree(const_cast<char*>(text)); }
};

/// `base` with a number behind it, in no more characters than the name of a database may have.
std::string numbered(std::string_view base, unsigned number) {
  constexpr std::size_t kLongestName = 32;
  const std::string suffix = fmt::format("_{}", number);
  return std::string(base.substr(0, kLongestName - suffix.size())) + suffix;
}

}  // namespace

bool DatabaseSet::open(const std::vector<std::string>& paths) {
  bool all = true;
  for (const std::string& path : paths) all &= open(path);
  return all;
}

bool DatabaseSet::open(const std::string& path) {
  const char* name = nullptr;
  ZelkError error = manager_.OpenDatabase(path.c_str(), &name, 0);
  if (error == ZelkErrorAlreadyOpen) {
    print_error(fmt::format("{}: warning: named twice", escaped(path)));
    return true;
  }
  const std::vector<std::string> reports = escaped_lines(
      error == ZelkErrorFileNotFound ? zelk_format_error(ZELK_ERR_NOT_FOUND, 0, path.c_str())
                                     : manager_.GetLastOpenError());
  if (error == ZelkErrorNameUsed) error = open_renamed(path, &name);
  const bool is_open = error == ZelkErrorOk;
  for (const std::string& line : reports)
    print_error(behind_path(path, is_open ? "warning: " + line : line));
  if (is_open && manager_.SymbolsShortenedOnRead(name))
    print_error(fmt::format("{}: warning: {}", escaped(path), kShortenedWarning));
  return is_open;
}

ZelkError DatabaseSet::open_renamed(const std::string& path, const char** name) {
  const std::unique_ptr<const char, Release> base(manager_.GetDatabaseName(path.c_str()));
  unsigned number = 2;
  while (manager_.GetUniqueDatabaseName(numbered(view(base.get()), number).c_str())) ++number;
  return manager_.OpenDatabase(path.c_str(), name, numbered(view(base.get()), number).c_str(), 0);
}

std::vector<const ZelkManager::DbListNode*> DatabaseSet::databases() const {
  std::vector<const ZelkManager::DbListNode*> databases;
  for (const ZelkManager::DbListNode* database : manager_.GetDatabaseNameIterator())
    databases.push_back(database);
  return databases;
}

}  // namespace zelk::tool
