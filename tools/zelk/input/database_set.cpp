#include "input/database_set.hpp"

#include <fmt/format.h>

#include <memory>
#include <system_error>
#include <utility>

#include "base/check_memory.hpp"
#include "base/database_names.hpp"
#include "input/mending.hpp"
#include "input/opening.hpp"
#include "term/output.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

struct Release {
  void operator()(const char* text) const { zelk_mfree(const_cast<char*>(text)); }
};

}  // namespace

bool DatabaseSet::open(const std::vector<std::string>& paths) {
  bool all = true;
  for (const std::string& path : paths) all &= open(path);
  return all;
}

bool DatabaseSet::open(const std::string& path) {
  const Format format = format_of_file(path).value_or(Format{});
  const bool is_opened = format.is_own() && !mending_.is_wanted;
  const OpenedDatabase opened = is_opened ? open_own(path) : import(path, format);
  if (opened.error == ZelkErrorAlreadyOpen) {
    print_error(fmt::format("{}: warning: named twice", escaped(path)));
    return true;
  }
  print_reports(opened, path);
  if (!opened.database) return false;
  databases_.push_back({opened.name, {*opened.database, opened.encoding}});
  return true;
}

OpenedDatabase DatabaseSet::open_own(const std::string& path) {
  OpenedDatabase opened = open_database(manager_, path);
  if (opened.error != ZelkErrorNameUsed) return opened;
  const std::unique_ptr<const char, Release> base(manager_.GetDatabaseName(path.c_str()));
  OpenedDatabase renamed = open_database(manager_, path, unique(view(base.get())).c_str());
  renamed.reports = std::move(opened.reports);  // of the first reading
  return renamed;
}

OpenedDatabase DatabaseSet::import(const std::string& path, const Format& format) {
  const std::filesystem::path file(std::u8string(path.begin(), path.end()));
  std::error_code error;
  std::filesystem::path canonical = std::filesystem::weakly_canonical(file, error);
  check_memory(error);
  if (error) canonical = file;
  if (!imported_.insert(std::move(canonical)).second) {
    OpenedDatabase opened;
    opened.error = ZelkErrorAlreadyOpen;
    return opened;
  }
  const std::string name = unique(database_name(path));
  return format.is_own() ? import_mended(manager_, path, name.c_str(), mending_)
                         : import_database(manager_, path, name.c_str(), {format.module});
}

std::string DatabaseSet::unique(std::string_view name) {
  if (!manager_.GetUniqueDatabaseName(std::string(name).c_str())) return std::string(name);
  unsigned number = 2;
  while (manager_.GetUniqueDatabaseName(numbered_name(name, number).c_str())) ++number;
  return numbered_name(name, number);
}

}  // namespace zelk::tool
