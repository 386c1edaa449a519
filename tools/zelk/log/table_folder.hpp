/// \file
/// A folder of tables, a CSV file each.

#ifndef ZELK_TOOL_LOG_TABLE_FOLDER_HPP
#define ZELK_TOOL_LOG_TABLE_FOLDER_HPP

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "files/held_folder.hpp"
#include "zelk/logs/wide.hpp"

namespace zelk::tool {

/// Writes the files of tables that have rows in a folder of their own inside the wanted one, and
/// puts them in their places at the end: until then, and after a fault, files of an earlier run
/// stay as they were. One file is open at a time, and lines are gathered in between: a log may have
/// frames of hundreds of messages.
class TableFolder {
 public:
  /// Makes the folder when its parent is there.
  ///
  /// @param path    in UTF-8
  /// @param tables  must outlive the object
  /// @throws RequestError that says why when the folder cannot be written
  TableFolder(const std::string& path, const std::vector<ZelkWideTable>& tables);
  TableFolder(const TableFolder&) = delete;
  TableFolder& operator=(const TableFolder&) = delete;
  /// Removes all that has not taken its place.
  ~TableFolder();

  /// @throws RequestError when the system does not take the lines
  void add(std::size_t table, std::string_view line);
  /// Puts the files in their places, with the permissions of those that are there; `HeldSignals`
  /// keep this whole. Prints a warning about files of tables that have no rows this time.
  ///
  /// @throws RequestError when one of them cannot be there
  void take_places();

 private:
  struct File {
    std::string name;
    std::string held = {};  ///< lines that are not written yet
    bool is_there = false;  ///< begun
  };

  [[noreturn]] void fail(const std::filesystem::path& path, const std::string& reason) const;
  void make_folders();
  void write_all();
  void write(const ZelkWideTable& table, File& file);
  void warn_of_older() const;

  std::string path_;
  std::filesystem::path folder_;
  std::unique_ptr<files::HeldFolder> fresh_;  ///< inside that
  bool is_made_ = false;                      ///< `folder_` was not there
  const std::vector<ZelkWideTable>& tables_;
  std::vector<File> files_;  ///< of all tables
  std::size_t held_ = 0;     ///< bytes, of all files
};

}  // namespace zelk::tool

#endif
