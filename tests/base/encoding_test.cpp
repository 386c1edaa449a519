#include "base/encoding.hpp"

#include <gtest/gtest.h>

#include "base/encoded_database.hpp"
#include "database/own_database.hpp"

namespace zelk {
namespace {

TEST(Encoding, FollowsFromTheBytesAndConvertsBothWays) {
  const struct {
    std::string bytes;
    Encoding encoding;
    std::string utf8 = bytes;
  } cases[] = {
      {"abc\x7F", Encoding::kUtf8},
      {"\xC2\x80\xDF\xBF", Encoding::kUtf8},          // of two bytes: the first and the last
      {"\xE0\xA0\x80\xEF\xBF\xBF", Encoding::kUtf8},  // of three
      {"\xED\x9F\xBF\xEE\x80\x80", Encoding::kUtf8},  // around the surrogates
      {"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", Encoding::kUtf8},  // of four
      {"20\xB0", Encoding::kWindows1252, "20\u00B0"},
      {"\x80\x81\x9F", Encoding::kWindows1252, "\u20AC\xC2\x81\u0178"},  // 0x81 is left open
      {"\xC1\xBF", Encoding::kWindows1252, "\u00C1\u00BF"},              // overlong, as the next
      {"\xE0\x9F\xBF", Encoding::kWindows1252, "\u00E0\u0178\u00BF"},
      {"\xED\xA0\x80", Encoding::kWindows1252, "\u00ED\u00A0\u20AC"},  // a surrogate
      {"\xF4\x90\x80\x80", Encoding::kWindows1252,
       "\u00F4\xC2\x90\u20AC\u20AC"},                                    // beyond the last
      {"\xE2\x82", Encoding::kWindows1252, "\u00E2\u201A"},              // cut
      {"\xC3\xA4 \xE4", Encoding::kWindows1252, "\u00C3\u00A4 \u00E4"},  // UTF-8 only in part
  };
  for (const auto& c : cases) {
    EXPECT_EQ(encoding_of(c.bytes), c.encoding) << c.utf8;
    EXPECT_EQ(to_utf8(c.bytes, c.encoding), c.utf8);
    EXPECT_EQ(from_utf8(c.utf8, c.encoding), c.bytes);
  }
  EXPECT_EQ(from_utf8("\u03A9", Encoding::kWindows1252), std::nullopt);
}

TEST(Encoding, RefusesOrReplacesWhatIsNotUtf8) {
  const struct {
    std::string bytes;
    std::string replaced;
  } cases[] = {
      {"a\x80z", "a\uFFFDz"},
      {"\xC3(", "\uFFFD("},
      {"\xF5\x80", "\uFFFD\uFFFD"},
      {"\xE2\x82", "\uFFFD\uFFFD"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(to_utf8(c.bytes, Encoding::kUtf8), c.replaced);
    EXPECT_EQ(from_utf8(c.bytes, Encoding::kUtf8), std::nullopt) << c.replaced;
    EXPECT_EQ(from_utf8(c.bytes, Encoding::kWindows1252), std::nullopt) << c.replaced;
  }
}

TEST(Encoding, AppendsCodePointsOfEachSize) {
  const struct {
    std::uint32_t code_point;
    std::string utf8;
  } cases[] = {{0x7F, "\x7F"},
               {0x80, "\xC2\x80"},
               {0x7FF, "\xDF\xBF"},
               {0x800, "\xE0\xA0\x80"},
               {0xFFFF, "\xEF\xBF\xBF"},
               {0x10000, "\xF0\x90\x80\x80"},
               {0x10FFFF, "\xF4\x8F\xBF\xBF"}};
  for (const auto& c : cases) {
    std::string text = "=";
    append_utf8(text, c.code_point);
    EXPECT_EQ(text, "=" + c.utf8);
  }
}

// A record holds the beginning of a long unit, which may end within a character.
TEST(Encoding, OfADatabaseSeesThroughCutUnits) {
  const std::string units[] = {"\u00B0C", std::string(31, 'u') + "\u00B0",
                               std::string(30, 'u') + "\u20AC", std::string(31, 'u') + "\xB0",
                               std::string(30, 'u') + "\x80\x80"};
  std::string found;
  for (const std::string& unit : units) {
    const TemporaryFile file("BS_:\nBU_:\nBO_ 1 M: 8 Ostrel__XXX\n SG_ S : 0|8@1+ (1,0) [0|0] \"" +
                             unit + "\" Ostrel__XXX\n");
    found += encoding_of(OwnDatabase(file.path())) == Encoding::kUtf8 ? "utf8 " : "1252 ";
  }
  EXPECT_EQ(found, "utf8 utf8 utf8 1252 1252 ");
}

}  // namespace
}  // namespace zelk
