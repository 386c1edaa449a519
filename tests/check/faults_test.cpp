// Faults of files, against the reader: what it refuses has one that says so, what it takes has
// none.

#include "check/faults/find_faults.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "check/faults/diagnose.hpp"
#include "support/lists.hpp"
#include "support/paths.hpp"

using namespace zelk::check;

namespace {

struct Found {
  std::string
      text;  ///< "order 9:1, unknown-node 9:8"; of a fault that the reader accepts "(order 9:1)"
  bool has_error = false;
};

Found find(const std::string& text) {
  const Document document = read_document(Source("t.dbc", text));
  Found found;
  for (const Fault& fault : find_faults(document, Names(document))) {
    const bool is_end = fault.token == document.tokens.size();
    const Position position = document.source.position(is_end ? document.source.size()
                                                              : document.tokens[fault.token].begin);
    std::string line = std::string(name_of(fault.kind)) + ' ' + std::to_string(position.line) +
                       ':' + std::to_string(position.column);
    if (fault.is_accepted) line = '(' + line + ')';
    found.text += (found.text.empty() ? "" : ", ") + line;
    found.has_error |= !fault.is_accepted;
  }
  return found;
}

struct Case {
  const char* text;  ///< behind `kHead`, with apostrophes for quotes
  const char* faults;
};

/// Seven lines, then the text of the case.
constexpr std::string_view kHead =
    "BS_:\nBU_: A B\nBO_ 1 M: 8 A\n SG_ s : 0|8@1+ (1,0) [0|1] '' B\n SG_ x M : 8|8@1+ (1,0) [0|1] "
    "''"
    " B\n SG_ y m1 : 16|8@1+ (1,0) [0|1] '' B\nBO_ 2 N: 8 A\n";

constexpr Case kCases[] = {
    {"", ""},
    // A name touches a number or a mark: the reader takes it where the form wants both.
    {"CM_ SG_ 1s 'x';\nVAL_ 1 s-1 'x' ;", ""},
    {"CM_ SG_ 1e 'x';", "odd-number 8:9, unreadable 8:12"},
    {"CM_ BU_ A\xC2\xA0'x';", "odd-space 8:9"},
    // The smaller set is out of order.
    {"CM_ BU_ A '';\nCM_ BU_ B '';\nBU_: C\nVAL_TABLE_ t 1 'a';",
     "doubled-section 10:1, order 11:1"},
    {"BA_DEF_SGTYPE_ 'q';\nBA_DEF_REL_ 'r' INT 0 1;\nBA_DEF_ 'q' INT 0 1;", "order 10:1"},
    // References, and values that count only where there is an object.
    {"CM_ SG_ 3 s '';\nCM_ SG_ 1 t '';\nCM_ BU_ Ostrel__XXX '';\nCM_ BU_ C '';",
     "unknown-message 8:9, unknown-signal 9:11, unknown-node 11:9"},
    {"BA_DEF_ BU_ 'e' ENUM 'a','ostrel_leerstring';\nBA_DEF_DEF_ 'e' 2;\nBA_ 'e' BU_ A 'b';\n"
     "BA_ 'e' BU_ B 'ostrel_leerstring';\nBA_ 'e' BU_ Ostrel__XXX 'b';\nBA_ 'e' BO_ 2 9;\nBA_ 'f' "
     "1;",
     "wrong-value 9:17, wrong-value 10:15, unknown-attribute 14:5"},
    {"BA_DEF_REL_ BU_SG_REL_ 'r' INT 0 1;\nBA_REL_ 'r' BU_SG_REL_ A SG_ 1 s 'x';\n"
     "BA_REL_ 'r' BU_SG_REL_ B SG_ 1 s 'x';",
     "(unknown-link 9:24), wrong-value 10:34"},
    {"CAT_DEF_ 40000 c 0;\nCAT_ BU_ A -5;\nCAT_ BU_ Ostrel__XXX 7;",
     "wrong-value 8:10, unknown-category 9:13"},
    // Multiplexing: a circle counts only where a message has several multiplexors.
    {"BO_ 3 O: 8 A\n SG_ a m0M : 0|1@1+ (1,0) [0|1] '' B\n", "(circle 9:6)"},
    {"SG_MUL_VAL_ 1 s x 1-1;\nSG_MUL_VAL_ 1 x s 1-1;", "circle 4:6"},
    {"BO_ 3 O: 8 A\n SG_ a m1 : 0|1@1+ (1,0) [0|1] '' B\n", "(multiplexors 9:8)"},
    {"BO_ 1 O: 8 A\n SG_ a m1 : 0|0@1+ (1,0) [0|1] '' B\n SG_ a k : 0|1@7+ (1,0) [0|1] '' B\n",
     "(doubled-message 8:5), segments 9:15, (doubled-signal 10:6), "
     "indicator 10:8, segments 10:16"},
};

/// Those in front of one token are one fault, at the first of them.
TEST(Faults, PlacesOfBytes) {
  using namespace std::string_literals;
  const struct {
    std::string text;
    std::uint32_t place;
  } cases[] = {
      {"BS_:\nBU_: A\0\0\0B\n"s, 11},
      {"BS_: // \0\n  \0 // \0\nBU_:\n"s, 12},
      {"BS_:\nBU_:\nCM_ \"//\0\";\n"s, 17},
      {"BS_:\nBU_:\nCM_ \"\xFF\"; // \xFF\n \xFF\xFF;"s, 25},
      {"BS_:\nBU_:\n\0"s, 10},
  };
  for (const auto& [text, place] : cases) {
    const Findings findings = diagnose(read_document(Source("t.dbc", text)), 0);
    ASSERT_FALSE(findings.list.empty());
    EXPECT_EQ(findings.list[0].span, (Span{place, place + 1})) << text;
    EXPECT_TRUE(findings.list[0].related.empty()) << text;
  }
}

}  // namespace

TEST(Faults, AreFoundWhereTheyAre) {
  for (const Case& each : kCases) {
    std::string text = std::string(kHead) + each.text;
    std::ranges::replace(text, '\'', '"');
    EXPECT_EQ(find(text).text, each.faults) << each.text;
  }
  EXPECT_EQ(find("").text, "missing-bs 1:1, missing-bu 1:1");
  EXPECT_EQ(find("NS_: NEW\nBS_:\nBU_: A\nNEW x \"1;2\";").text, "unreadable 4:7");
}

/// They are counted from marks within the line, in characters and in units of UTF-16.
TEST(Sources, CountTheColumnsOfLongLines) {
  std::string text = "\n";
  for (int i = 0; i < 5000; ++i) text += "\u00E4\u20AC\U0001F600";
  const Source source("t.dbc", text + "\n");
  for (const std::uint32_t i : {0U, 455U, 456U, 4000U, 4999U}) {
    EXPECT_EQ(source.position(1 + 9 * i).column, 3 * i + 1);
    EXPECT_EQ(source.utf16_column(1 + 9 * i), 4 * i + 1);
  }
}

/// Every file that differs by one byte from one with every statement.
TEST(Faults, AgreeWithTheReader) {
  std::ifstream file(ZELK_SOURCE_DIR "/tests/data/ok_every_statement.dbc", std::ios::binary);
  std::stringstream whole;
  whole << file.rdbuf();
  constexpr std::string_view kReplacements = "x1 \";:-\n\xE4";
  for (std::size_t at = 0; at < whole.str().size(); ++at) {
    std::string text = whole.str();
    const std::size_t replacement = at % (kReplacements.size() + 1);
    text.replace(at, 1, kReplacements.substr(replacement, 1));
    Lists lists;
    zelk_clear_error_text();
    const uint32_t error = lists.read_by(zelk_try_read_text, text.data(), text.size());
    const Found found = find(text);
    EXPECT_TRUE(error == 0 || found.has_error) << at;
    const bool is_clean = error == 0 && *zelk_get_thread_error_text() == '\0';
    EXPECT_FALSE(is_clean && found.has_error) << at << ": " << found.text;
  }
}
