#include <gtest/gtest.h>

#include <filesystem>
#include <map>

#include "support/database.hpp"

namespace {

struct Verdict {
  uint32_t number;
  const char* line;  ///< the message line
};

const std::map<std::string, Verdict> kRefused = {
    {"bad_cycle.dbc",
     {31,
      "Not allowed: Message contains cyclic dependencies for multiplexor signal (error-linenumber "
      "may ignored), line 7, M::S"}},
    {"bad_enum_value.dbc", {14, "database: syntax error, line 3, c"}},
    {"bad_letter_in_name.dbc",
     {27, "database: invalid char in symbol, line 2, Geschwindigkeit_ :\xFC"}},
    {"bad_multiplexer_letter.dbc", {11, "database: illegal mode, line 5, T"}},
    {"bad_open_string.dbc", {1, ", line 3, error: syntax"}},
    {"bad_order.dbc", {1, ", line 3, error: syntax"}},
    {"bad_receivers_without_comma.dbc", {1, ", line 3, error: syntax"}},
    {"bad_three_segments.dbc", {12, "database: illegal segmentation description, line 4, S"}},
    {"bad_unknown_message.dbc", {20, "database: unknown symbol newly defined, line 2, msg 100"}},
};

TEST(DataFiles, AreReadAsTheirNamesSay) {
  std::size_t refused = 0, accepted = 0;
  for (const auto& entry : std::filesystem::directory_iterator(ZELK_SOURCE_DIR "/tests/data")) {
    if (entry.path().extension() != ".dbc") continue;
    const std::string name = entry.path().filename().string();
    Database database;
    const uint32_t number = database.read_file(entry.path().string().c_str());
    if (name.starts_with("bad_")) {
      ++refused;
      ASSERT_TRUE(kRefused.contains(name)) << name << " is not listed";
      EXPECT_EQ(number, kRefused.at(name).number) << name;
      EXPECT_EQ(database.reported, std::string(kRefused.at(name).line) + "\n") << name;
    } else {
      ++accepted;
      EXPECT_EQ(number, 0u) << name << ": " << database.reported;
      EXPECT_TRUE(number != 0 || name == "ok_every_statement.dbc" || database.reported.empty())
          << name << ": " << database.reported;
    }
  }
  EXPECT_EQ(refused, kRefused.size());
  EXPECT_GE(accepted, 4u);
}

}  // namespace
