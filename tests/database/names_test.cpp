// What a database can be called, and the texts that it has by itself.

#include <tuple>
#include <utility>

#include "database/own_database.hpp"
#include "model/memory.hpp"
#include "support/failing.hpp"
#include "zelk/database.hpp"

namespace {

TEST(DatabaseNames, AreVerified) {
  const struct {
    const char* text;
    bool is_valid;
  } cases[] = {{"_1", true},
               {"abcdefghijklmnopqrstuvwxyz012345", true},
               {"abcdefghijklmnopqrstuvwxyz0123456", false},
               {"", false},
               {nullptr, false},
               {"1abc", false},
               {"a\xE4", false}};
  for (const auto& c : cases) {
    EXPECT_EQ(ZelkVerifyDatabaseName(c.text), c.is_valid) << (c.text ? c.text : "null");
  }
}

TEST(DatabaseNames, AreSplitFromObjects) {
  const struct {
    const char* text;
    bool is_split;
    const char *db, *object;
  } cases[] = {{"a::b::c", true, "a", "b::c"}, {"::", true, "", ""},
               {"a:::b", true, "a", ":b"},     {"", false, "", nullptr},
               {":", false, ":", nullptr},     {"a:b::c", false, "a:b::c", nullptr}};
  for (const auto& c : cases) {
    std::string text = c.text;
    const char* db = nullptr;
    const char* object = "untouched";
    EXPECT_EQ(ZelkSplitQualifiedName(text.data(), &db, &object), c.is_split) << c.text;
    EXPECT_EQ(db, text.data()) << c.text;
    EXPECT_STREQ(db, c.db) << c.text;
    EXPECT_STREQ(object, c.object) << c.text;
  }
  char whole[] = "A::B";
  const char* untouched = nullptr;
  EXPECT_TRUE(ZelkSplitQualifiedName(whole, nullptr, &untouched));
  EXPECT_FALSE(ZelkSplitQualifiedName(nullptr, &untouched, nullptr));
  EXPECT_STREQ(whole, "A::B");
}

using Texts = DatabaseTest;

TEST_F(Texts, AreCopiedAndReplaced) {
  OwnDatabase d;
  d.SetComment("one");
  d.SetUserData("1");
  d.SetComment(d.comment + 1);
  d.SetUserData(d.user_data);
  EXPECT_EQ(describe(d), "version \"1\"\ncomment \"ne\"\n");
  d.SetComment(nullptr);
  d.SetUserData(nullptr);
  EXPECT_EQ(d.comment, nullptr);
  EXPECT_STREQ(d.user_data, "");
}

std::string default_name(const ZelkDatabase& database) {
  return zelk::OwnedText(database.GetDefaultName()).get();
}

TEST_F(Texts, DefaultNameIsThatOfTheAttributeOrTheFile) {
  const std::string text = "BA_DEF_ \"DBName\" STRING ;\n";
  const std::string with_default = text + "BA_DEF_DEF_ \"DBName\" \"De fault\";\n";
  const std::string of_item = "BA_DEF_ \"DBName\" ENUM \"a\";\nBA_ \"DBName\" 0;\n";
  const std::tuple<const char*, std::string, std::string> cases[] = {
      {"1-My Net.dbc", "", "__MyNet"},
      {"folder.d/Net.old.2.dbc", "", "Netold2"},
      {"C:\\a.b\\Net", "", "Net"},
      {".dbc", "", ""},
      {"\xC3\x84.dbc", "", "__"},
      {"7777777777777777777777777777777777777777a", "", std::string(32, '_')},
      {"value", with_default + "BA_ \"DBName\" \"1 My-Net\";\n", "__MyNet"},
      {"default", with_default, "Default"},
      {"empty_value", with_default + "BA_ \"DBName\" \"\";\n", ""},
      {"of_a_message", "BA_DEF_ BO_ \"DBName\" STRING ;\n", "of_a_message"},
      {"of_an_item", of_item, "of_an_item"}};
  for (const auto& [path, statements, expected] : cases) {
    OwnDatabase d(folder_.write("file.dbc", "BS_:\nBU_:\n" + statements));
    set(d.path, path);
    EXPECT_EQ(default_name(d), expected) << path;
    if (path != std::string_view("value")) continue;
    zelk_mfree(std::exchange(d.attr_values->value.text, nullptr));
    EXPECT_EQ(default_name(d), "Default") << "of a value without a text";
  }
  const OwnDatabase none;
  EXPECT_EQ(default_name(none), "");
  const FailingCalloc failure(0);
  EXPECT_EQ(none.GetDefaultName(), nullptr);
}

}  // namespace
