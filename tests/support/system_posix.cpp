#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>

#include "support/system.hpp"

const char* const kLineEnd = "\n";

namespace {

/// Enters a locale made for the running test.
bool enter_locale(const std::string& source, const std::string& charset) {
  const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
  const std::string name = std::string(test->test_suite_name()) + "_" + test->name();
  const std::string log = name + ".log";
  const std::string command = "localedef -c -i " + source + " -f " + charset + " ./" + name;
  const bool is_entered = std::system((command + " >" + log + " 2>&1").c_str()) >= 0 &&
                          setenv("LOCPATH", ".", 1) == 0 && std::setlocale(LC_ALL, name.c_str());
  unsetenv("LOCPATH");
  std::filesystem::remove(log);
  std::filesystem::remove_all(name);
  return is_entered;
}

}  // namespace

bool enter_decimal_comma() {
  return std::setlocale(LC_ALL, "German") || enter_locale("de_DE", "UTF-8");
}

bool enter_double_byte_characters() {
  if (enter_locale("ja_JP", "SHIFT_JIS") && std::mblen("\x83\\", 2) == 2) return true;
  std::setlocale(LC_ALL, "C");  // the system may know the locale and not its characters
  return false;
}

std::string encoded(const std::filesystem::path& path) { return path.string(); }

std::filesystem::path at_any_length(const std::filesystem::path& absolute) { return absolute; }
