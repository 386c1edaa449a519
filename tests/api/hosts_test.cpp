#include <gtest/gtest.h>

#include <string>

#include "support/lists.hpp"
#include "zelk/exception.hpp"

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
  Lists lists;
  zelk_clear_error_text();
  zelk_note(26, 1, "earlier");
  try {
    lists.read_by(zelk_read, (kData + "bad_order.dbc").c_str());
    ADD_FAILURE() << "a file out of order is accepted";
  } catch (const ZelkException& error) {
    EXPECT_STREQ(error.what(), ", line 3, error: syntax");
  }
  EXPECT_STREQ(zelk_get_error_text(),
               "new symbol not supported, line 1, earlier\n, line 3, error: syntax\n");
}

}  // namespace
