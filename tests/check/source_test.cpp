// Places in a text as people count them.

#include "check/statements/source.hpp"

#include <gtest/gtest.h>

namespace zelk::check {
namespace {

// In a line of many kilobytes as in a short one: in characters where its front is UTF-8, in bytes
// behind what is not.
TEST(Source, CountsColumnsInLongLines) {
  const struct {
    std::string unit, end;  // of the line's front, which stands 9,000 times, and behind it
    std::uint32_t column, utf16_column;
  } cases[] = {
      {"a", "", 9'001, 9'001},
      {"\u00E4", "", 9'001, 9'001},
      {"\U0001F697", "", 9'001, 18'001},
      {"\u20AC", "\xFF", 27'002, 27'002},
  };
  for (const auto& c : cases) {
    std::string line;
    for (int i = 0; i < 9'000; ++i) line += c.unit;
    const Source source("a.dbc", "first\n" + line + c.end + "x\n");
    const auto at = static_cast<std::uint32_t>(6 + line.size() + c.end.size());
    EXPECT_EQ(source.position(at), (Position{2, c.column})) << c.unit;
    EXPECT_EQ(source.utf16_column(at), c.utf16_column) << c.unit;
    EXPECT_EQ(source.position(at - 1).line, 2U);
  }
}

}  // namespace
}  // namespace zelk::check
