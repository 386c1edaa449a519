#include "model/symbols.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "zelk/model.h"

namespace {

std::size_t kept_of(std::size_t length, std::size_t room) {
  char name[300];
  zelk_reset_symbols_shortened();
  zelk::copy_symbol(name, room, std::string(length, 'x'));
  EXPECT_EQ(zelk_symbols_shortened(), std::strlen(name) < length) << length << " in " << room;
  return std::strlen(name);
}

TEST(Symbols, AreCutToTheRoomAndTheSymbolLength) {
  EXPECT_EQ(kept_of(32, 32), 32u);
  EXPECT_EQ(kept_of(33, 32), 32u);
  EXPECT_EQ(kept_of(128, 200), 128u);
  EXPECT_EQ(kept_of(129, 200), 128u);
  char text[9] = "abc";
  for (const char* more : {"defg", "hi", "j"}) zelk::append_symbol(text, 8, more);
  EXPECT_STREQ(text, "abcdefgh");
  zelk_reset_symbols_shortened();
}

TEST(SymbolLengthDeathTest, GoesTo32ForGood) {  // in a child process: there is no way back
  const auto switch_twice = [] {
    const bool is_long_before = kept_of(40, 200) == 40;
    zelk_set_symbol_length(64);
    const bool is_32 = kept_of(40, 200) == 32;
    zelk_set_symbol_length(200);
    std::exit(is_long_before && is_32 && kept_of(40, 200) == 32 ? 0 : 1);
  };
  EXPECT_EXIT(switch_twice(), testing::ExitedWithCode(0), "");
}

}  // namespace
