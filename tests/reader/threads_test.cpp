#include <gtest/gtest.h>

#include <thread>

#include "support/building.hpp"
#include "support/paths.hpp"
#include "support/threads.hpp"
#include "text/new_symbols.hpp"

// What threads do with databases of their own, 8 at a time. The thread sanitizer finds what they
// share.

namespace {

TEST(CoreThreads, ReadAndWriteDatabasesOfTheirOwn) {
  run_in_threads([](int thread, int) {
    const std::string number = std::to_string(thread), symbol = "SYMBOL_" + number;
    const std::string path = "CoreThreads" + number + ".dbc",
                      node(40, static_cast<char>('a' + thread));
    std::ofstream(path, std::ios::binary)
        << "NS_ : " << symbol << "\nBS_: BU_: " << node << "\nBO_ 1 M: 8 " << node
        << "\n SG_ S : 0|8@1+ (1,0) [0|0] \"" << (thread % 2 == 0 ? "V" : node) << "\" " << node
        << "\n"
        << symbol << " x ;\n";
    zelk_reset_symbols_shortened();
    Database database;
    EXPECT_EQ(database.try_read(path.c_str()), 0u);
    EXPECT_EQ(zelk_symbols_shortened(), thread % 2);
    EXPECT_EQ(zelk::last_new_symbols(), std::vector{symbol});
    ASSERT_EQ(write_to(path.c_str(), database), 0u);
    EXPECT_NE(content_of(path).find("\t" + symbol + "\n\nBS_:"), std::string::npos);
    EXPECT_NE(content_of(path).find(" BU_ " + node.substr(0, 32) + " \"" + node + "\""),
              std::string::npos);
    Database copy;
    EXPECT_EQ(copy.try_read(path.c_str()), 0u);
    EXPECT_EQ(describe(copy), describe(database));
    std::remove(path.c_str());
  });
}

TEST(CoreThreads, TellTheirErrorsApart) {
  zelk_clear_error_text();
  zelk_note(ZELK_ERR_FORMAT, 0, "main");
  run_in_threads([](int thread, int) {
    const std::string missing = "missing" + std::to_string(thread) + ".dbc";
    const std::string line = "database: not found, " + missing;
    zelk_clear_error_text();
    Database database;
    EXPECT_EQ(database.try_read(missing.c_str()), 16u);
    EXPECT_EQ(zelk_get_thread_error_text(), line + "\n");
    EXPECT_EQ(zelk_format_error(ZELK_ERR_NOT_FOUND, 0, missing.c_str()), line);
    const std::string all = zelk_get_error_text();  // another thread may have cleared it
    EXPECT_TRUE(all.empty() || all.ends_with(".dbc\n")) << all;
  });
  EXPECT_STREQ(zelk_get_thread_error_text(), "database: format error, main\n");
  zelk_clear_error_text();
  std::thread([] { zelk_note(ZELK_ERR_FORMAT, 0, "other"); }).join();
  EXPECT_STREQ(zelk_get_error_text(), "database: format error, other\n");
  EXPECT_STREQ(zelk_get_thread_error_text(), "");
}

TEST(CoreThreads, WriteOneDatabaseAndRegisterFunctions) {
  Database database;
  ASSERT_EQ(database.read_file(ZELK_SOURCE_DIR "/examples/powertrain.dbc"), 0u);
  const std::string whole = written(database);
  run_in_threads([&](int thread, int) {
    const std::string path = "CoreThreadsShared" + std::to_string(thread) + ".dbc";
    EXPECT_EQ(write_to(path.c_str(), database), 0u);
    EXPECT_EQ(content_of(path), whole);
    EXPECT_STREQ(zelk_get_message_n(database.messages, 2)->name, database.messages->next->name);
    zelk_set_message_box(nullptr, nullptr);
    zelk_set_notification_sink(nullptr, nullptr);
    zelk_set_symbol_length(32);
    std::remove(path.c_str());
  });
}

}  // namespace
