#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <random>

#include "support/building.hpp"
#include "support/failing.hpp"
#include "support/paths.hpp"

// Whatever the file holds, a read ends with a number, and what it leaves behind can be walked and
// released, as the sanitizers check.

namespace {

constexpr char kEveryStatement[] = ZELK_SOURCE_DIR "/tests/data/ok_every_statement.dbc";

TEST(HostileFiles, CutShort) {
  const TemporaryFile file(bytes_of(kEveryStatement));
  std::size_t accepted = 0;
  for (auto size = std::filesystem::file_size(file.path()); --size > 1;) {
    std::filesystem::resize_file(file.path(), size);
    Database database;
    const uint32_t number = database.read_file(file.path());
    ASSERT_THAT(number, testing::AnyOf(0, 1, 27)) << size << database.reported;
    accepted += number == 0;
    describe(database);
  }
  EXPECT_GT(accepted, 20u);
}

/// Reads with each allocation failing in turn; returns how many there are.
template <typename Failing>
std::size_t read_without_memory(const std::string& whole) {
  std::size_t calls = 0;
  for (bool has_failed = true; has_failed; ++calls) {
    Database database;
    uint32_t number = 0;
    zelk_clear_error_text();
    has_failed = fails_at<Failing>(calls, [&] { number = database.try_read(kEveryStatement); });
    const std::string reported = zelk_get_error_text();
    const bool ends_silently = number == 1 && reported.empty();  // in an "NS_" list
    EXPECT_TRUE(number == (has_failed ? 24 : 0) || ends_silently) << calls << reported;
    EXPECT_EQ(reported.ends_with("not enough memory\n"), has_failed && !ends_silently) << calls;
    const std::string left = database.version ? describe(database) : "";
    EXPECT_TRUE(has_failed || left == whole) << calls;
  }
  return calls;
}

TEST(HostileFiles, WithoutMemory) {
  // Gives the error text its room: a report that finds none is dropped.
  zelk_note(ZELK_ERR_NEW_SYMBOL, 0, std::string(ZELK_ERROR_LINE_SIZE, 'x').c_str());
  Database complete;
  complete.read_file(kEveryStatement);
  const std::string whole = describe(complete);
  EXPECT_GT(read_without_memory<FailingCalloc>(whole), 100u);
  EXPECT_GT(read_without_memory<FailingNew>(whole), 30u);
}

TEST(HostileFiles, TextInMemory) {
  Database database;
  EXPECT_EQ(database.read_text({}), 0u);  // null, as a null file name
  EXPECT_STREQ(database.version, "");
  EXPECT_EQ(database.read_text({"BS_:BU_: A\nB\0", 14}), 0u);
  EXPECT_EQ(database.read_text(std::string_view("BS_:BU_: C\n;", 11)), 0u);  // no NUL behind it
  EXPECT_THAT(describe(database), testing::HasSubstr("node C"));
}

TEST(HostileFiles, RandomBytesAndTokens) {
  const std::string good = bytes_of(kEveryStatement);
  std::mt19937 random(20240229);
  const auto below = [&](std::size_t limit) { return random() % limit; };
  std::vector<std::string> words;  // the file's own, so that the soup often makes sense
  for (std::size_t at = 0, end; at < good.size(); at = end + 1) {
    end = std::min(good.find_first_of(" \n", at), good.size());
    words.push_back(good.substr(at, end - at));
  }
  std::size_t accepted = 0;
  for (int round = 0; round < 3000; ++round) {
    std::string text = good;
    for (std::size_t changes = 1 + below(4); changes > 0; --changes) {
      const std::size_t at = below(text.size());
      const std::size_t kind = below(5), from = below(text.size());
      if (kind == 0) text[at] = static_cast<char>(random());
      if (kind == 1) text.erase(at, 1 + below(40));
      if (kind == 2) text.insert(at, text.substr(from, below(200)));
      if (kind == 3) text.insert(at, " " + words[below(words.size())] + " ");
      if (kind == 4) text.insert(at, words[below(words.size())]);
    }
    if (round % 10 == 0) {
      text = "BS_: BU_: A BO_ 1 M: 8 A ";
      for (int i = 0; i < 200; ++i) text += words[below(words.size())] + " ";
    }
    Database database;
    const uint32_t number = database.read(text);
    ASSERT_THAT(number, testing::AnyOf(0, 1, 11, 12, 14, 20, 21, 25, 27, 28, 31)) << text;
    ASSERT_TRUE(number == 0 || database.reported.ends_with('\n')) << text;
    Database from_memory;
    ASSERT_EQ(from_memory.read_text(text), number) << text;
    ASSERT_EQ(from_memory.reported, database.reported) << text;
    ASSERT_EQ(describe(from_memory), describe(database)) << text;
    accepted += number == 0;
    if (number != 0 || fault_of(database) != "") continue;
    Database read_back;
    const std::string again = written(database);
    ASSERT_EQ(read_back.read(again), 0u) << text << read_back.reported << again;
    ASSERT_EQ(written(read_back), again) << text;
  }
  EXPECT_GT(accepted, 50u);
}

std::string repeated(const std::string& piece, int count) {
  std::string result;
  for (int i = 0; i < count; ++i) {
    for (const char c : piece) {
      const int number = c == '^' ? i + 1 : i;
      result += c == '#' || c == '^' ? std::to_string(number) : std::string(1, c);
    }
  }
  return with_quotes(result);
}

// In the pieces "#" stands for the number of the repetition, "^" for the next one, an apostrophe
// for a double quote.
TEST(HostileFiles, ManyOfEverything) {
  constexpr int kCount = 20000;
  const std::string message = "BS_:BU_: A BO_ 1 M: 8 A";
  const std::string signal = message + " SG_ S : 0|8 (1,0) [0|0] '' A";
  const std::string many_signals = " SG_ S# m1M : 0|8 (1,0) [0|0] '' A";
  const struct {
    const char* name;
    std::string start, piece, middle, second_piece, end;
    const char* trace;  ///< in the description, once for every repetition
  } cases[] = {
      {"new symbols", "NS_:", " n#", " BS_:BU_:", " x#", "\n", "node x"},
      {"messages", "BS_:BU_:", " BO_ # M: 8 n#", "", " BO_TX_BU_ # : x,y ;", "\n", "[x,y]"},
      {"signals", message, many_signals, "", " CM_ SG_ 1 S# 'c';", "\n", " // "},
      {"chain", message + " SG_ S20000 M : 0|8 (1,0) [0|0] '' A", many_signals, "",
       " SG_MUL_VAL_ 1 S# S^ #-#;", "\n", " by S"},
      {"ranges", signal, "", " SG_MUL_VAL_ 1 S S 0-0", " , #-^", ";", "-"},
      {"receivers", signal, ",r#", " BA_DEF_REL_ 'D' INT;", " BA_REL_ 'D' BU_SG_REL_ r# SG_ 1 S #;",
       "\n", "{D="},
      {"items", "BS_:BU_: BA_DEF_ 'D' ENUM 'a'", ",'i#'", ";", "BA_ 'D' 'i#';", "\n", "D="},
      {"namesakes", "BS_:BU_:", "BA_DEF_ 'D' INT;", "", "BA_DEF_DEF_ 'D' 7;", "\n", "] 7"},
      {"long names",
       message + repeated(many_signals, kCount) + " BA_DEF_ SG_ 'SystemSignalLongSymbol' STRING;",
       "", "", " BA_ 'SystemSignalLongSymbol' SG_ 1 S# 'Long#';", "\n", "signal Long"},
      {"categories", "BS_:BU_:", "CAT_DEF_ 1 K# 1;", "FILTER 1 CAT_", " 1", " BU_ ;", "category"}};
  for (const auto& c : cases) {
    const std::string text = repeated(c.start, 1) + repeated(c.piece, kCount) +
                             repeated(c.middle, 1) + repeated(c.second_piece, kCount) +
                             repeated(c.end, 1);
    Database database, from_memory;
    EXPECT_EQ(database.read(text), 0u) << c.name << database.reported.substr(0, 200);
    const std::string description = describe(database), trace = repeated(c.trace, 1);
    EXPECT_EQ(from_memory.read_text(text), 0u) << c.name;
    EXPECT_TRUE(describe(from_memory) == description) << c.name;
    int found = 0;
    for (auto at = description.find(trace); at != std::string::npos;
         at = description.find(trace, at + 1)) {
      ++found;
    }
    EXPECT_GE(found, kCount) << c.name;
    EXPECT_LE(found, kCount + 2) << c.name;
  }
}

}  // namespace
