#include "support/database.hpp"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>

TemporaryFile::TemporaryFile(std::string_view content) {
  const auto* test = testing::UnitTest::GetInstance()->current_test_info();
  path_ = std::string(test->test_suite_name()) + "." + test->name() + ".dbc";
  std::ofstream(path_, std::ios::binary) << content;
}

TemporaryFile::~TemporaryFile() { std::remove(path_.c_str()); }

uint32_t Database::read(std::string_view content) {
  return read_file(TemporaryFile(content).path());
}

uint32_t Database::read_file(const char* path) {
  zelk_clear_error_text();
  const uint32_t number = try_read(path);
  reported = zelk_get_error_text();
  return number;
}

uint32_t Database::read_text(std::string_view content) {
  zelk_clear_error_text();
  const uint32_t number = read_by(zelk_try_read_text, content.data(), content.size());
  reported = zelk_get_error_text();
  return number;
}
