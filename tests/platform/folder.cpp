#include "platform/folder.hpp"

#include <gtest/gtest.h>

#include <fstream>

namespace fs = std::filesystem;

WorkingFolder::WorkingFolder() : previous_(fs::current_path()) {
  const auto* test = testing::UnitTest::GetInstance()->current_test_info();
  path_ = previous_ / (std::string(test->test_suite_name()) + "." + test->name());
  std::error_code error;
  fs::remove_all(path_, error);
  fs::create_directory(path_);
  fs::current_path(path_);
}

WorkingFolder::~WorkingFolder() {
  std::error_code error;
  fs::current_path(previous_, error);
  fs::remove_all(path_, error);
}

void put_bytes(const fs::path& path, std::string_view bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}
