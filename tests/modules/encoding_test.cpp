// Which characters a module takes the bytes of a database for, as an export as JSON shows.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/files.hpp"
#include "support/folder.hpp"
#include "zelk/converter.hpp"

namespace {

TEST(Encoding, OfTheTextsOfADatabase) {
  const std::string utf8_cases[] = {
      "abc\x7F",
      "\xC2\x80\xDF\xBF",                  // of two bytes: the first and the last
      "\xE0\xA0\x80\xEF\xBF\xBF",          // of three
      "\xED\x9F\xBF\xEE\x80\x80",          // around the surrogates
      "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF",  // of four
  };
  struct Case {
    std::string bytes;
    std::string encoding;
    std::string utf8;  ///< in the file
  };
  std::vector<Case> cases = {
      {"20\xB0", "windows-1252", "20\xC2\xB0"},
      {"\x80\x81\x9F", "windows-1252", "\xE2\x82\xAC\xC2\x81\xC5\xB8"},  // 0x81 is left open
      {"\xC1\xBF", "windows-1252", "\xC3\x81\xC2\xBF"},                  // overlong, as the next
      {"\xE0\x9F\xBF", "windows-1252", "\xC3\xA0\xC5\xB8\xC2\xBF"},
      {"\xED\xA0\x80", "windows-1252", "\xC3\xAD\xC2\xA0\xE2\x82\xAC"},  // a surrogate
      {"\xF4\x90\x80\x80", "windows-1252", "\xC3\xB4\xC2\x90\xE2\x82\xAC\xE2\x82\xAC"},
      {"\xE2\x82", "windows-1252", "\xC3\xA2\xE2\x80\x9A"},            // cut
      {"\xC3\xA4 \xE4", "windows-1252", "\xC3\x83\xC2\xA4 \xC3\xA4"},  // UTF-8 only in part
  };
  for (const std::string& text : utf8_cases) cases.push_back({text, "utf-8", text});
  const Folder folder;
  const std::string file = folder.path("db.json");
  for (const Case& test : cases) {
    ZelkWriteManager manager{HWND{}};
    const char* name = nullptr;
    ASSERT_EQ(manager.CreateDatabase("db", &name, nullptr), 0);
    manager.GetDatabase(name)->SetComment(test.bytes.c_str());
    std::filesystem::remove(file);
    ASSERT_EQ(ZelkExporter(manager, ZELK_JSON_MODULE, "zelk_export").Export(name, file.c_str()), 0);
    const std::string json = bytes_of(file);
    EXPECT_NE(json.find("\"encoding\": \"" + test.encoding + "\""), json.npos) << json;
    EXPECT_NE(json.find("\"comment\": \"" + test.utf8 + "\""), json.npos) << json;
    ZelkImporter importer(manager, ZELK_JSON_MODULE, "zelk_import");
    ASSERT_EQ(importer.Import("back", &name, file.c_str()), 0);
    EXPECT_EQ(manager.GetDatabase(name)->comment, test.bytes);
  }
}

}  // namespace
