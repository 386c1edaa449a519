#include <gtest/gtest.h>

#include <string>

#include "zelk/exception.hpp"
#include "zelk/zelk.h"

/// What a host in C does with an accepted and a refused file: reads, looks up, edits, releases.
/// 0, or the line of the first check that failed.
extern "C" int c_host_run(const char* path, const char* refused_path);

namespace {

const std::string kData = ZELK_SOURCE_DIR "/tests/data/";

TEST(Hosts, InC) {
  EXPECT_EQ(c_host_run((kData + "ok_every_statement.dbc").c_str(),
                       (kData + "bad_unknown_message.dbc").c_str()),
            0)
      << "a line of c_host.c";
}

// The exception crosses from the shared library into the host, with its type.
TEST(Hosts, InCpp) {
  const struct {
    std::string path;
    std::string reported;
  } cases[] = {
      {kData + "bad_cycle.dbc",
       "Not allowed: Message contains cyclic dependencies for multiplexor signal "
       "(error-linenumber may ignored), line 7, M::S"},
      {kData + "bad_order.dbc", ", line 3, error: syntax"},
      {"missing.dbc", "database: not found, missing.dbc"},
  };
  for (const auto& c : cases) {
    symblk* nodes = nullptr;
    msgblk* messages = nullptr;
    env_var_blk* variables = nullptr;
    btlblk* timings = nullptr;
    attr_def* definitions = nullptr;
    attr* values = nullptr;
    cat* categories = nullptr;
    filter_t filter = {};
    char *comment = nullptr, *version = nullptr;
    sigtype* types = nullptr;
    valtable* tables = nullptr;
    attr_def* slots[4] = {};
    zelk_clear_error_text();
    zelk_note(26, 1, "earlier");
    try {
      zelk_read(c.path.c_str(), &nodes, &messages, &variables, &timings, &definitions, &values,
                &categories, &filter, &comment, &version, &types, &tables, slots);
      ADD_FAILURE() << c.path << " is accepted";
    } catch (const ZelkException& error) {
      EXPECT_EQ(error.what(), c.reported);
    }
    EXPECT_EQ(zelk_get_error_text(),
              "new symbol not supported, line 1, earlier\n" + c.reported + "\n");
    zelk_free(nodes, messages, variables, timings, definitions, values, categories, &filter,
              comment, version, types, tables);
  }
}

}  // namespace
