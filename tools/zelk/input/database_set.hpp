/// \file
/// Several files, read and held together.

#ifndef ZELK_TOOL_INPUT_DATABASE_SET_HPP
#define ZELK_TOOL_INPUT_DATABASE_SET_HPP

#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "input/formats.hpp"
#include "input/opening.hpp"

namespace zelk::tool {

/// Database files that one manager holds, each under a name of its own, until this goes.
class DatabaseSet {
 public:
  explicit DatabaseSet(const Mending& mending = {}) : mending_(mending) {}

  /// Opens every file, in this order. Faults and warnings are printed on standard error. A file
  /// that is named twice is opened once, with a warning.
  ///
  /// @return whether all could be read; the set holds those that could
  bool open(const std::vector<std::string>& paths);

  /// One of the databases, with its name in the set.
  struct Entry {
    std::string name;
    EncodedDatabase texts;
  };

  /// The databases in the order of their files; a name is its file's, and where several would have
  /// the same one, that with "_2", "_3", ... behind it.
  const std::vector<Entry>& databases() const { return databases_; }

 private:
  bool open(const std::string& path);
  OpenedDatabase open_own(const std::string& path);
  OpenedDatabase import(const std::string& path, const Format& format);
  std::string unique(std::string_view name);

  Mending mending_;
  ZelkWriteManager manager_{static_cast<void*>(nullptr)};
  std::set<std::filesystem::path> imported_;  // files
  std::vector<Entry> databases_;
};

}  // namespace zelk::tool

#endif
