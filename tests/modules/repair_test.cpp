#include <gmock/gmock.h>

#include "modules/conversions.hpp"
#include "support/paths.hpp"

namespace {

const std::string kBroken =
    "CM_ \"IMPORT other\";\nBO_ 100 Motion: 2 Dash\n SG_ Speed : 0|8@1+ (2,0) [0|0] \"\" Dash\n\n";

TEST(RepairModule, Imports) {
  std::string many = "BS_:\nBU_: A\nVAL_TABLE_ " + std::string(33, 't') + " 0 \"\" ;\n";
  for (int i = 0; i < 150; ++i) many += "CM_ BO_ 1 \"x\";\n";
  const struct {
    std::string option;
    std::string content;
    const char* told;      ///< a part of the error text
    const char* has = "";  ///< a part of the file, then written; empty when it is not imported
  } cases[] = {
      {"", kBroken, "format error, line 1, include: the comment names", "BO_ 100 Motion: 2 Dash"},
      {" --keep  include ", kBroken, ", missing-bs: ", "CM_ \"IMPORT other\""},
      {"--include @ --keep order", kBroken, "include: included \"other.dbc\"", "BO_ 7 Other"},
      {"--include nowhere", kBroken, "line 1, include: cannot include \"other\""},
      {"--keep missing-bs", kBroken, "the file cannot be mended"},
      {"--no-node Dash", kBroken, "no-node: node Dash stands for no node", "Motion: 2 Ostrel__XXX"},
      {"", many, "format error, names or units were cut", "BU_: A"},
      {"", many, "and 50 more", "BU_: A"},
      {"--keep none", kBroken, "the option: there is no mend \"none\""},
      {"-v", kBroken, "the option: -v has no value"},
      {"--mend all", kBroken, "the option: \"--mend\" is none of"},
      {"", "BS_:\nBU_: A\n", "", "BU_: A"},
  };
  for (const auto& c : cases) {
    const std::string folder = Folder().path("");
    std::string option = c.option;
    if (const auto at = option.find('@'); at != std::string::npos) option.replace(at, 1, folder);
    Conversions host(ZELK_REPAIR_MODULE, option.c_str());
    host.folder.write("other.dbc", "BO_ 7 Other: 1 Dash\n");
    EXPECT_THAT(host.import(c.content), testing::HasSubstr(c.told)) << c.option;
    ASSERT_EQ(host.name != nullptr, *c.has != '\0') << c.option;
    if (host.name) {
      EXPECT_THAT(host.written(host.name), testing::HasSubstr(c.has));
    }
  }
}

}  // namespace
