#include <gtest/gtest.h>

#include <filesystem>
#include <map>

#include "support/database.hpp"

namespace {

struct Verdict {
  uint32_t number;
  const char* line;  ///< the message line
};

/// Of the files that report something.
const std::map<std::string, Verdict> kVerdicts = {
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
    {"ok_every_statement.dbc", {0, "new symbol not supported, line 20, FOO_"}},
};

TEST(DataFiles, AreReadAsTheirNamesSay) {
  std::size_t telling = 0, silent = 0;
  for (const auto& entry : std::filesystem::directory_iterator(ZELK_SOURCE_DIR "/tests/data")) {
    if (entry.path().extension() != ".dbc") continue;
    const std::string name = entry.path().filename().string();
    const auto verdict = kVerdicts.find(name);
    const bool is_listed = verdict != kVerdicts.end();
    ++(is_listed ? telling : silent);
    Database database;
    EXPECT_EQ(database.read_file(entry.path().string().c_str()),
              is_listed ? verdict->second.number : 0)
        << name;
    EXPECT_EQ(database.reported, is_listed ? verdict->second.line + std::string("\n") : "") << name;
  }
  EXPECT_EQ(telling, kVerdicts.size());
  EXPECT_GE(silent, 3u);
}

}  // namespace
