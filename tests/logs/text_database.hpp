/// \file
/// A database from a text.

#ifndef ZELK_TESTS_LOGS_TEXT_DATABASE_HPP
#define ZELK_TESTS_LOGS_TEXT_DATABASE_HPP

#include <gtest/gtest.h>

#include <string>

#include "zelk/database.hpp"
#include "zelk/zelk.h"

/// The text has single quotes for double ones.
struct TextDatabase : ZelkDatabase {
  explicit TextDatabase(std::string text) {
    for (char& c : text) c = c == '\'' ? '"' : c;
    EXPECT_EQ(
        zelk_try_read_text(text.data(), text.size(), &nodes, &messages, &env_vars, &bit_timings,
                           &attr_defs, &attr_values, &categories, &filter, &comment, &user_data,
                           &signal_types, &value_tables, predefined.slots),
        0u)
        << text;
  }
};

#endif
