#include "check/includes/includes.hpp"

#include <gtest/gtest.h>

#include "support/folder.hpp"

namespace {

using namespace zelk::check;

/// "FILE:LINE:COLUMN: MESSAGE", without the folder, one line each; then the text.
std::string told(const Included& included, std::string_view folder) {
  std::string told;
  for (const Finding& finding : included.findings.list) {
    const std::string path = included.source.path_at(finding.span.begin);
    const auto [line, column] = included.source.position(finding.span.begin);
    told += (path.starts_with(folder) ? path.substr(folder.size()) : path) + ":" +
            std::to_string(line) + ":" + std::to_string(column) + ": " + finding.message + "\n";
  }
  return told + std::string(included.source.text());
}

TEST(Includes, TakeThePlacesOfTheirComments) {
  const Folder folder;
  folder.write("a.dbc", "BO_ 1 A: 8 X // x");
  folder.write("sub/b.dbc", "CM_ \"IMPORT a\";BO_ 2 B: 8 X\n");
  folder.write("circle.dbc", "CM_ \"IMPORT main\";\nCM_ \"IMPORT circle\" ; BU_: C");
  folder.write("orphan.dbc", "SG_ S : 0|8@1+ (1,0) [0|0] \"\" X");
  folder.write("latin.dbc", "CM_ \"\xE4\";");
  folder.write("utf.dbc", "CM_ \"\xC3\xB6\";");
  folder.write("wide.dbc", std::string("\xFF\xFE"
                                       "B\0U\0_\0:\0W\0",
                                       12));
  const struct {
    std::string text, told;
  } cases[] = {
      {"CM_ BU_ N \"IMPORT a\";\nCM_ \"IMPORTANT\";",
       "CM_ BU_ N \"IMPORT a\";\nCM_ \"IMPORTANT\";"},
      {"CM_ \"IMPORT a\"; CM_ \"IMPORT sub/b.dbc\";\nBO_ 3 C: 8 X",
       "main.dbc:1:1: included \"a.dbc\"\nmain.dbc:1:17: included \"sub/b.dbc\"\n"
       "sub/b.dbc:1:1: \"a\" is included already\n"
       "\nBO_ 1 A: 8 X // x\n \n\nBO_ 2 B: 8 X\n\nBO_ 3 C: 8 X"},
      {"CM_ \"IMPORT circle\";",
       "main.dbc:1:1: included \"circle.dbc\"\n"
       "circle.dbc:1:1: \"main\" includes itself this way\n"
       "circle.dbc:2:1: \"circle\" includes itself this way\n\n\n\n\n BU_: C\n"},
      {"CM_ \"\xC3\xB6 IMPORT a\";\n CM_ \"IMPORT latin\";",
       "main.dbc:2:2: included \"latin.dbc\"\nCM_ \"\xC3\xB6 IMPORT a\";\n \nCM_ \"\xC3\xA4\";\n"},
      {"CM_ \"\xE4\"; CM_ \"IMPORT utf \";",
       "main.dbc:1:10: included \"utf.dbc\"\nCM_ \"\xE4\"; \nCM_ \"\xF6\";\n"},
      {"CM_ \"IMPORT wide\";", "main.dbc:1:1: included \"wide.dbc\"\n\nBU_:W\n"},
      {"\nCM_ \"IMPORT none.DBC\"; CM_ \"IMPORT orphan\";",
       "main.dbc:2:1: cannot include \"none.DBC\": there is no such file\n"
       "main.dbc:2:24: cannot include \"orphan\": it begins with signals of no message\n"
       "\nCM_ \"IMPORT none.DBC\"; CM_ \"IMPORT orphan\";"},
      {"BO_ 1 A: 8 X CM_ \"IMPORT a\"; SG_ S : 0|8@1+ (1,0) [0|0] \"\" X",
       "main.dbc:1:14: cannot include \"a\": the comment stands among the signals of a message\n"
       "BO_ 1 A: 8 X CM_ \"IMPORT a\"; SG_ S : 0|8@1+ (1,0) [0|0] \"\" X"}};
  for (const auto& c : cases) {
    const std::string path = folder.write("./main.dbc", c.text);
    const Included included = include_files({path, c.text}, folder.path("."));
    EXPECT_EQ(told(included, folder.path("./")), c.told) << c.text;
  }
}

TEST(Includes, LeadNowhereElse) {
  const Folder folder;
  const std::string root = folder.path("root");
  std::filesystem::create_directories(root + "/folder");
  folder.write("secret.dbc", "BU_: Secret\n");
  std::error_code error;
  std::filesystem::create_symlink("../secret.dbc", root + "/link.dbc", error);
  std::filesystem::create_directory_symlink("..", root + "/up", error);
  using namespace std::string_literals;
  const std::string absolute = std::filesystem::absolute(folder.path("secret.dbc")).string();
  for (const std::string& name :
       {"../secret.dbc"s, "folder/../../secret"s, "folder/.."s, ".."s, "."s, "folder"s, ""s, " "s,
        "/etc/passwd"s, absolute, "c:secret.dbc"s, "..\\\\secret"s, "\\\\\\\\host\\\\x"s, "a\0b"s,
        "link"s, "up/secret.dbc"s, "\xFF"s, std::string(100000, 'x'), "file:///etc/passwd"s}) {
    const std::string text = "CM_ \"IMPORT " + name + "\";\n";
    const Included included = include_files({root + "/main.dbc", text}, root);
    EXPECT_FALSE(included.is_whole()) << name;
    EXPECT_EQ(included.source.text(), text);
    EXPECT_FALSE(include_files({"main.dbc", "CM_ \"IMPORT secret\";"}, root + "/none").is_whole());
  }
}

}  // namespace
