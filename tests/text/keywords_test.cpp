#include "text/keywords.hpp"

#include <gtest/gtest.h>

namespace {

TEST(Keywords, AreFoundByTheirWholeText) {
  const struct {
    const char *text, *description;
  } cases[] = {{"BO_", "Message"},
               {"ENVVAR_DATA_", "Environment variable of type \"DATA\""},
               {"SG_MUL_VAL_", "Multiple multiplexor values for signal"},
               {"bo_", nullptr},
               {"BO", nullptr},
               {"BO__", nullptr},
               {"", nullptr}};
  for (const auto& [text, description] : cases) {
    const char* found = "what was there before";
    EXPECT_EQ(zelk::zelk_keyword_lookup(text, &found), description ? 1 : 0) << text;
    EXPECT_STREQ(found, description) << text;
  }
  for (const zelk::Keyword& keyword : zelk::zelk_keyword)
    EXPECT_EQ(zelk::find_keyword(keyword.text)->text, keyword.text);
}

}  // namespace
