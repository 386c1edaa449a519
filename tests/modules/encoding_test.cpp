// Which characters a module takes the bytes of a database for, as an export as JSON shows.

#include "modules/conversions.hpp"

namespace {

TEST(Encoding, OfTheTextsOfADatabase) {
  const struct {
    std::string bytes, encoding;
    std::string utf8 = bytes;  ///< in the file
  } cases[] = {
      {"abc\x7F", "utf-8"},
      {"\xC2\x80\xDF\xBF", "utf-8"},                  // of two bytes: the first and the last
      {"\xE0\xA0\x80\xEF\xBF\xBF", "utf-8"},          // of three
      {"\xED\x9F\xBF\xEE\x80\x80", "utf-8"},          // around the surrogates
      {"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", "utf-8"},  // of four
      {"20\xB0", "windows-1252", "20\xC2\xB0"},
      {"\x80\x81\x9F", "windows-1252", "\xE2\x82\xAC\xC2\x81\xC5\xB8"},  // 0x81 is left open
      {"\xC1\xBF", "windows-1252", "\xC3\x81\xC2\xBF"},                  // overlong, as the next
      {"\xE0\x9F\xBF", "windows-1252", "\xC3\xA0\xC5\xB8\xC2\xBF"},
      {"\xED\xA0\x80", "windows-1252", "\xC3\xAD\xC2\xA0\xE2\x82\xAC"},  // a surrogate
      {"\xF4\x90\x80\x80", "windows-1252", "\xC3\xB4\xC2\x90\xE2\x82\xAC\xE2\x82\xAC"},
      {"\xE2\x82", "windows-1252", "\xC3\xA2\xE2\x80\x9A"},            // cut
      {"\xC3\xA4 \xE4", "windows-1252", "\xC3\x83\xC2\xA4 \xC3\xA4"},  // UTF-8 only in part
  };
  for (const auto& test : cases) {
    Conversions conversions(ZELK_JSON_MODULE);
    const char* name = nullptr;
    ASSERT_EQ(conversions.manager.CreateDatabase("db", &name, nullptr), 0);
    conversions.manager.GetDatabase(name)->SetComment(test.bytes.c_str());
    const std::string json = conversions.exported(name);
    EXPECT_NE(json.find("\"encoding\": \"" + test.encoding + "\""), json.npos) << json;
    EXPECT_NE(json.find("\"comment\": \"" + test.utf8 + "\""), json.npos) << json;
    ASSERT_EQ(conversions.import(json), "");
    EXPECT_EQ(conversions.imported().comment, test.bytes);
  }
}

}  // namespace
