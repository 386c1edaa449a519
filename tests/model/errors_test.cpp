#include <gtest/gtest.h>

#include <string>

#include "zelk/exception.hpp"

namespace {

TEST(Errors, MessageLine) {
  EXPECT_STREQ(zelk_format_error(0, -1, nullptr), "");
  EXPECT_STREQ(zelk_format_error(1, 11, "error: syntax"), ", line 11, error: syntax");
  EXPECT_STREQ(zelk_format_error(10, 1, ""), "commandline: parameter for  missing\n, line 1");
  EXPECT_STREQ(zelk_format_error(16, -1, "a%sb.dbc"), "database: not found, a%sb.dbc");
  EXPECT_STREQ(zelk_format_error(24, INT32_MIN, nullptr), "not enough memory");
  EXPECT_STREQ(zelk_format_error(0xFFFFFFFF, 0, "x"), "Unknown error, x");
  for (std::size_t length : {997u, 998u, 5000u}) {  // ", " stands in front, 999 are kept
    const std::string detail(length, 'x');
    EXPECT_EQ(zelk_format_error(1, 0, detail.c_str()), ", " + std::string(997, 'x')) << length;
  }
}

TEST(Errors, TextCollectsEveryReport) {
  zelk_clear_error_text();
  zelk_note(26, 3, "FOO_");
  try {
    zelk_report(20, 4, "msg 5", 1);
    ADD_FAILURE() << "not raised";
  } catch (const std::exception& error) {
    zelk_report(28, 0, nullptr, 0);
    EXPECT_STREQ(error.what(), "database: unknown symbol newly defined, line 4, msg 5");
  }
  EXPECT_STREQ(zelk_get_error_text(),
               "new symbol not supported, line 3, FOO_\n"
               "database: unknown symbol newly defined, line 4, msg 5\nunknown category\n");
  zelk_clear_error_text();
  EXPECT_STREQ(zelk_get_error_text(), "");
  EXPECT_STREQ(ZelkException(nullptr).what(), "");
  EXPECT_EQ(ZelkException(std::string(1200, 'x').c_str()).what(), std::string(999, 'x'));
}

}  // namespace
