/// \file
/// Several files, read and held together.

#ifndef ZELK_TOOL_DATABASE_SET_HPP
#define ZELK_TOOL_DATABASE_SET_HPP

#include <string>
#include <vector>

#include "database.hpp"

namespace zelk::tool {

/// Database files that one manager holds, each under a name of its own, until this goes.
class DatabaseSet {
 public:
  /// Opens every file, in this order. Faults and warnings are told on standard error, also that a
  /// file is named twice, which counts once.
  ///
  /// @return whether all could be read; the others are there all the same
  bool open(const std::vector<std::string>& paths);

  /// The databases in the order of their files; a name is its file's, and where several would have
  /// the same one, that with "_2", "_3", ... behind it.
  std::vector<const ZelkManager::DbListNode*> databases() const;

 private:
  bool open(const std::string& path);
  ZelkError open_renamed(const std::string& path, const char** name);

  ZelkManager manager_{static_cast<void*>(nullptr)};
};

}  // namespace zelk::tool

#endif
