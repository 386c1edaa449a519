// Results in words.

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "zelk/types.hpp"

namespace {

TEST(ResultTexts, AreOneForEachResult) {
  std::set<std::string> errors, values;
  for (int number = 0; number <= ZelkErrorLocked; ++number)
    errors.insert(ZelkErrorText(static_cast<ZelkError>(number)));
  for (int number = 0; number <= ZelkSigvalueBufferTooSmall; ++number)
    values.insert(ZelkSigvalueResultText(static_cast<ZelkSigvalueResult>(number)));
  EXPECT_EQ(errors.size(), ZelkErrorLocked + 1U);
  EXPECT_EQ(values.size(), ZelkSigvalueBufferTooSmall + 1U);
  EXPECT_EQ(values.count("unknown result"), 0U);
  EXPECT_STREQ(ZelkErrorText(static_cast<ZelkError>(6)), "unknown error") << "there is no 6";
  EXPECT_STREQ(ZelkSigvalueResultText(static_cast<ZelkSigvalueResult>(99)), "unknown result");
}

}  // namespace
