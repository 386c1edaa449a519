/// A database to be edited, and what edits change in its file.
#ifndef ZELK_TESTS_EDIT_EDITED_HPP
#define ZELK_TESTS_EDIT_EDITED_HPP

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "manager/manager_test.hpp"
#include "support/files.hpp"
#include "support/paths.hpp"
#include "zelk/write_manager.hpp"

/// A database with every kind of object, in a write manager.
class Edited : public ZelkWriteManager {
 public:
  explicit Edited(const Folder& folder) : ZelkWriteManager(static_cast<void*>(nullptr)) {
    const std::string source = ZELK_SOURCE_DIR "/tests/data/ok_every_statement.dbc";
    const std::string path = folder.write("edited.dbc", bytes_of(source));
    EXPECT_EQ(OpenDatabase(path.c_str(), &db, "edited", 0), 0);
  }

  symblk& node(const char* name) { return *GetNode(name, db); }
  msgblk& message() { return *GetMessage(1UL, db); }
  sigblk& signal(const char* name) { return *GetSignal(message(), name); }
  env_var_blk& variable() { return *GetEnvvar("V", db); }
  siggroupblk& group() { return *GetSignalGroup(message(), "G"); }

  /// The lines of the file that is written now.
  std::vector<std::string> lines() {
    EXPECT_EQ(GetDatabase(db)->Write(nullptr), 0);
    std::istringstream content(content_of(GetDatabasePath("edited")));
    std::vector<std::string> lines;
    for (std::string line; std::getline(content, line);) {
      if (!line.empty()) lines.push_back(line);
    }
    return lines;
  }

  const char* db = nullptr;
};

/// The lines that differ: removed ones behind "-", added ones behind "+".
inline std::string difference(std::vector<std::string> before, std::vector<std::string> after) {
  std::string result;
  for (const std::string& line : before) {
    const auto same = std::find(after.begin(), after.end(), line);
    if (same == after.end()) {
      result += "-" + line + "\n";
    } else {
      after.erase(same);
    }
  }
  for (const std::string& line : after) result += "+" + line + "\n";
  return result;
}

inline zelk_attr_value_t number(double value) { return {.number = value}; }
inline zelk_attr_value_t text_value(const char* value) {
  return {.text = const_cast<char*>(value)};
}

#endif
