/// Databases that a test makes and lists by itself, as only managers may.
#ifndef ZELK_TESTS_DATABASE_OWN_DATABASE_HPP
#define ZELK_TESTS_DATABASE_OWN_DATABASE_HPP

#include <gtest/gtest.h>

#include <filesystem>
#include <numeric>
#include <set>
#include <string>
#include <string_view>

#include "database/heads.hpp"
#include "database/registry.hpp"
#include "support/building.hpp"
#include "support/database.hpp"
#include "support/folder.hpp"
#include "zelk/database.hpp"

class OwnDatabase : public ZelkDatabase {
 public:
  OwnDatabase() = default;
  explicit OwnDatabase(const std::string& file) : ZelkDatabase(file.c_str()) {}
  explicit OwnDatabase(const ZelkDatabase& other) : ZelkDatabase(other) {}
  void assign(const ZelkDatabase& other) { ZelkDatabase::operator=(other); }

  using ZelkDatabase::CreateDatabase;
  using ZelkDatabase::DestroyDatabase;
  using ZelkDatabase::ListFindDb;
  using ZelkDatabase::ReleaseCache;

  static ZelkDatabase& open(const std::string& file) { return CreateDatabase(file.c_str()); }
  static ZelkDatabase* find(const std::string& file) { return ListFindDb(file.c_str()); }
};

/// Names of the files in the folder, as one text.
inline std::string names_in(const Folder& folder) {
  std::set<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder.path(""))) {
    names.insert(entry.path().filename().string() + " ");
  }
  return std::accumulate(names.begin(), names.end(), std::string());
}

inline std::string describe(const ZelkDatabase& d) { return describe(zelk::view_of(d)); }

/// Tests that leave no database behind.
class DatabaseTest : public testing::Test {
 protected:
  void SetUp() override { zelk_clear_error_text(); }
  void TearDown() override { EXPECT_TRUE(zelk::registry().all().empty()); }

  const Folder folder_;
};

#endif
