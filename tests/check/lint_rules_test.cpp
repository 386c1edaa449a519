// Each rule of lint with what it finds, and where, and with what looks like that and is right.

#include <gtest/gtest.h>

#include <span>
#include <string>
#include <string_view>

#include "check/lint/lint.hpp"

namespace zelk::check {
namespace {

/// Three lines, then the text of a case. Apostrophes stand for quotes.
constexpr std::string_view kHead = "NS_:\nBS_:\nBU_: A B C\n";

std::string text_of(std::string_view statements) {
  std::string text(kHead);
  for (const char c : statements) text += c == '\'' ? '"' : c;
  return text;
}

/// "LINE:COLUMN" of each finding of the rule, parted by blanks.
std::string places(std::string_view rule, const std::string& text) {
  const StrictReading reading(text);
  EXPECT_TRUE(reading.is_accepted()) << text;
  LintSettings settings;
  for (const Rule* const other : all_rules()) settings.set_on(*other, other->name == rule);
  const Document document = read_document(Source("x.dbc", text));
  const Names names(document);
  std::string all;
  for (const Finding& finding : lint(document, names, reading.view(), settings, 0).findings.list) {
    const auto [line, column] = document.source.position(finding.span.begin);
    EXPECT_LT(finding.span.begin, finding.span.end) << finding.message;
    all += (all.empty() ? "" : " ") + std::to_string(line) + ':' + std::to_string(column);
  }
  return all;
}

struct Case {
  const char* rule;
  std::string wrong;
  const char* places;  ///< in `wrong`
  std::string right;   ///< where the rule finds nothing
};

void check(std::span<const Case> cases) {
  for (const Case& c : cases) {
    ASSERT_NE(find_rule(c.rule), nullptr) << c.rule;
    EXPECT_EQ(places(c.rule, text_of(c.wrong)), c.places) << c.rule << '\n' << c.wrong;
    EXPECT_EQ(places(c.rule, text_of(c.right)), "") << c.rule << '\n' << c.right;
  }
}

const std::string kM = "BO_ 256 M: 8 A\n";

/// @param name  with its indicator
std::string sg(const std::string& name, const std::string& layout,
               const std::string& scale = "(1,0) [0|0]", const std::string& unit = "",
               const std::string& receivers = "B") {
  return " SG_ " + name + " : " + layout + ' ' + scale + " '" + unit + "' " + receivers + '\n';
}

std::string ev(const std::string& name, int id, const std::string& range = "[0|1]") {
  return "EV_ " + name + ": 0 " + range + " '' 0 " + std::to_string(id) +
         " DUMMY_NODE_OSTREL0 A;\n";
}

const std::string kFormats =
    "BA_DEF_ BO_ 'VFrameFormat' ENUM 'StandardCAN','ExtendedCAN','J1939PG','StandardCAN_FD';\n"
    "BA_DEF_DEF_ 'VFrameFormat' 'StandardCAN';\n";
const std::string kJ1939 =
    "BA_DEF_ 'ProtocolType' STRING ;\nBA_DEF_ BU_ 'NmStationAddress' INT 0 254;\n"
    "BA_DEF_DEF_ 'ProtocolType' 'J1939';\nBA_DEF_DEF_ 'NmStationAddress' 254;\n";
const std::string kCycles =
    "BA_DEF_ BO_ 'GenMsgSendType' ENUM 'Cyclic','event','cyclicIfActive';\n"
    "BA_DEF_ BO_ 'GenMsgCycleTime' INT 0 0;\nBA_DEF_DEF_ 'GenMsgSendType' 'Cyclic';\n"
    "BA_DEF_DEF_ 'GenMsgCycleTime' 0;\n";

TEST(LintRules, OfMessages) {
  const Case cases[] = {
      {"identifier-range", "BO_ 2048 M: 8 A\nBO_ 1073741825 N: 8 A\n", "4:5 5:5",
       "BO_ 2047 M: 8 A\n"},
      {"identifier-range", "BO_ 2684354560 M: 8 A\n", "4:5",
       "BO_ 2684354559 M: 8 A\nBO_ 1073741824 N: 0 A\nBO_ 3221225472 O: 0 A\n"},
      {"doubled-identifier", kM + "BO_ 256 N: 8 A\n", "5:5", kM + "BO_ 2147483904 N: 8 A\n"},
      {"frame-length", "BO_ 256 M: 9 A\nBO_ 257 N: 63 A\nBO_ 258 O: 65 A\n", "4:12 5:12 6:12",
       "BO_ 256 M: 0 A\nBO_ 257 N: 12 A\nBO_ 258 O: 64 A\n"},
      {"frame-length", "BO_ 2147483904 M: 1786 A\n" + kJ1939, "4:19",
       "BO_ 2147483904 M: 1785 A\n" + kJ1939},
      // The network is J1939, but frames of 11 bits have no transport protocol.
      {"frame-length", "BO_ 256 M: 100 A\n" + kJ1939, "4:12",
       "BO_ 256 M: 100 A\n" + kFormats + "BA_ 'VFrameFormat' BO_ 256 2;\n"},
      {"frame-format",
       kM + "BO_ 2147483905 N: 8 A\n" + kFormats +
           "BA_ 'VFrameFormat' BO_ 256 1;\nBA_ 'VFrameFormat' BO_ 2147483905 0;\n",
       "4:5 5:5", kM + "BO_ 2147483905 N: 8 A\n" + kFormats + "BA_ 'VFrameFormat' BO_ 256 0;\n"},
      {"frame-format", "BO_ 256 M: 12 A\n" + kFormats + "BA_ 'VFrameFormat' BO_ 256 0;\n", "4:5",
       "BO_ 256 M: 12 A\nBO_ 257 N: 12 A\n" + kFormats +
           "BA_ 'VFrameFormat' BO_ 256 3;\nBA_ 'VFrameFormat' BO_ 257 9;\n"},
      {"cycle-time-zero", kM + kCycles + "BA_ 'GenMsgSendType' BO_ 256 0;\n", "4:9",
       kM + kCycles + "BA_ 'GenMsgSendType' BO_ 256 2;\n"},
      {"cycle-time-zero", kM + kCycles + "BA_ 'GenMsgCycleTime' BO_ 256 0;\n", "4:9",
       kM + "BO_ 257 N: 8 A\n" + kCycles + "BA_ 'GenMsgCycleTime' BO_ 256 1;\n"},
  };
  check(cases);
}

TEST(LintRules, OfBits) {
  const std::string two = "BO_ 256 M: 2 A\n", big = "BO_ 256 M: 64 A\n";
  const Case cases[] = {
      {"signal-outside-frame", two + sg("P", "9|8@1+"), "5:10", two + sg("P", "8|8@1+")},
      {"signal-outside-frame", two + sg("P", "6|16@0+"), "5:10", two + sg("P", "7|16@0+")},
      {"signal-outside-frame", "BO_ 256 M: 0 A\n" + sg("P", "0|1@1+"), "5:10",
       "BO_ 3221225472 M: 0 A\n" + sg("P", "0|1@1+")},
      {"long-signal", big + sg("P", "0|65@1+"), "5:12", big + sg("P", "0|64@1+")},
      {"float-length", kM + sg("P", "0|32@1-") + "SIG_VALTYPE_ 256 P : 2;\n", "5:12",
       kM + sg("P", "0|32@1-") + "SIG_VALTYPE_ 256 P : 1;\n"},
      {"float-length", kM + sg("P", "0|64@1-") + "SIG_VALTYPE_ 256 P : 1;\n", "5:12",
       kM + sg("P", "0|64@1-") + "SIG_VALTYPE_ 256 P : 2;\n"},
      {"signed-bit", kM + sg("P", "0|1@1-"), "5:15", kM + sg("P", "0|1@1+") + sg("Q", "1|2@1-")},
      {"overlapping-signals", kM + sg("P", "0|8@1+") + sg("Q", "7|8@1+"), "6:10",
       kM + sg("P", "0|8@1+") + sg("Q", "8|8@1+")},
      {"overlapping-signals", kM + sg("P", "0|8@1+") + sg("Q", "7|8@0+"), "6:10",
       kM + sg("P", "0|8@1+") + sg("Q", "15|8@0+")},
      // Across words of 64 bits, in both directions.
      {"overlapping-signals", big + sg("P", "60|8@1+") + sg("Q", "67|8@1+"), "6:10",
       big + sg("P", "60|8@1+") + sg("Q", "68|8@1+")},
      {"overlapping-signals", big + sg("P", "59|8@0+") + sg("Q", "68|5@0+"), "6:10",
       big + sg("P", "59|8@0+") + sg("Q", "67|4@0+")},
      {"nested-signals",
       kM + sg("P", "0|16@1+") + sg("Q", "15|1@1+") + sg("R", "0|1@1+") + sg("S", "1|1@1+") +
           sg("T", "2|1@1+"),
       "5:10", kM + sg("P", "0|16@1+") + sg("Q", "16|1@1+")},
  };
  check(cases);
}

TEST(LintRules, OfMultiplexors) {
  const std::string x = sg("X M", "0|2@1+"), p = sg("P m0", "8|8@1+");
  const Case cases[] = {
      {"missing-multiplexor", kM + p, "5:8", kM + p + x},
      {"missing-multiplexor", kM + x + sg("Y M", "2|2@1+") + p, "7:8",
       kM + x + sg("Y M", "2|2@1+") + p + "SG_MUL_VAL_ 256 P Y 0-0;\n"},
      {"unused-multiplexor", kM + x + sg("P", "8|8@1+"), "5:8", kM + x + p},
      // With two of them in a message, only SG_MUL_VAL_ tells which one selects.
      {"unused-multiplexor", kM + x + p + sg("Y m1M", "16|2@1+"), "5:8 7:8",
       kM + x + p + sg("Y m1", "16|2@1+")},
      {"multiplexor-value", kM + x + sg("P m4", "8|8@1+"), "6:8", kM + x + sg("P m3", "8|8@1+")},
      {"multiplexor-value", kM + x + p + "SG_MUL_VAL_ 256 P X 4-7;\n", "6:8",
       kM + x + p + "SG_MUL_VAL_ 256 P X 3-7;\n"},
      {"unused-multiplexor-value", kM + x + p + "VAL_ 256 X 0 'a' 1 'b' ;\n", "5:6",
       kM + x + p + "VAL_ 256 X 0 'a' 1 'b' 2 'c' ;\nSG_MUL_VAL_ 256 P X 0-0, 1-2;\n"},
      // A negative value is given as 32 bits.
      {"multiplexor-value", kM + sg("X M", "0|4@1-") + sg("P m4294967287", "8|8@1+"), "6:8",
       kM + sg("X M", "0|4@1-") + sg("P m4294967288", "8|8@1+")},
      // One range within another, and one that goes on where another ends.
      {"unused-multiplexor-value",
       kM + sg("X M", "0|4@1+") + p +
           "VAL_ 256 X 8 'a' 9 'b' 10 'c' 11 'd' 12 'e' 13 'f' ;\nSG_MUL_VAL_ 256 P X 0-5, 9-8;\n",
       "5:6",
       kM + sg("X M", "0|4@1+") + p +
           "VAL_ 256 X 0 'a' 4 'b' 7 'c' ;\nSG_MUL_VAL_ 256 P X 0-5, 1-2, 5-7;\n"},
      {"unusable-multiplexor", kM + sg("X M", "0|33@1+") + sg("P m0", "40|8@1+"), "5:8",
       kM + sg("X M", "0|32@1+") + sg("P m0", "40|8@1+")},
      {"unusable-multiplexor",
       kM + sg("X M", "0|32@1-") + sg("P m0", "40|8@1+") + "SIG_VALTYPE_ 256 X : 1;\n", "5:8",
       kM + sg("X M", "0|32@1-") + sg("P m0", "40|8@1+") + "SIG_VALTYPE_ 256 P : 1;\n"},
  };
  check(cases);
}

TEST(LintRules, OfValues) {
  const auto of = [](const char* layout, const char* scale) { return kM + sg("P", layout, scale); };
  const std::string gear = kM + sg("P", "0|3@1+"), turn = kM + sg("P", "0|3@1-");
  const Case cases[] = {
      {"minimum-over-maximum", of("0|8@1+", "(1,0) [1|0]"), "5:24", of("0|8@1+", "(1,0) [1|1]")},
      {"minimum-over-maximum", ev("v", 1, "[5|-5]"), "4:11", ev("v", 1, "[-5|5]")},
      {"minimum-over-maximum", "BA_DEF_ 'n' FLOAT 5 1.5;\n", "4:19", "BA_DEF_ 'n' FLOAT 5 5;\n"},
      {"unreachable-range", of("0|8@1+", "(1,0) [0|259]"), "5:24", of("0|8@1+", "(1,0) [0|258]")},
      {"unreachable-range", of("0|8@1-", "(1,0) [-133|0]"), "5:24",
       of("0|8@1-", "(1,0) [-128|127]")},
      // The largest raw value is the smallest physical one.
      {"unreachable-range", of("0|8@1+", "(-1,0) [-259|0]"), "5:25",
       of("0|8@1+", "(-1,0) [-255|0]")},
      {"impossible-range", of("0|8@1+", "(1,-40) [300|400]"), "5:26",
       of("0|8@1+", "(1,-40) [200|400]")},
      {"narrow-range", of("0|16@1+", "(1,0) [0|655]"), "5:25", of("0|16@1+", "(1,0) [0|656]")},
      {"narrow-range", of("0|16@1+", "(0.1,0) [0|2]"), "5:27",
       of("0|16@1+", "(0.1,0) [0|2]") + "VAL_ 256 P 0 'off' ;\n"},
      {"narrow-range", of("0|16@1+", "(1,0) [0|2]"), "5:25", of("0|16@1+", "(1,0) [0|1]")},
      {"factor-zero", of("0|8@1+", "(0.0,0) [0|0]"), "5:18", of("0|8@1+", "(1E-9,0) [0|0]")},
      {"description-range", gear + "VAL_ 256 P 8 'a' ;\n", "6:12", gear + "VAL_ 256 P 7 'a' ;\n"},
      {"description-range", turn + "VAL_ 256 P 4 'a' 0 'b' ;\n", "6:12",
       turn + "VAL_ 256 P 3 'a' -4 'b' ;\n"},
      {"doubled-description", gear + "VAL_ 256 P 1 'a' 0 'b' 1 'c' ;\n", "6:24",
       gear + "VAL_ 256 P 1 'a' 0 'b' -1 'a' ;\n"},
      {"doubled-description", "VAL_TABLE_ t 0 'a' 0 'b' ;\n", "4:20",
       "VAL_TABLE_ t 0 'a' 1 'a' ;\nVAL_TABLE_ u 0 'a' ;\n"},
      {"attribute-range", "BA_DEF_ 'n' INT 0 10;\nBA_DEF_ 'm' INT 1 10;\nBA_ 'n' 11;\nBA_ 'm' 0;\n",
       "6:9 7:9", "BA_DEF_ 'n' INT 0 10;\nBA_DEF_ 'm' HEX 0 0;\nBA_ 'n' 10;\nBA_ 'm' 255;\n"},
      {"attribute-range", "BA_DEF_ 'n' INT 0 10;\nBA_ 'n' 1.5;\n", "5:9",
       "BA_DEF_ 'n' FLOAT 0 10;\nBA_ 'n' 1.5;\n"},
      {"attribute-range",
       "BA_DEF_ 'e' ENUM 'a','b';\nBA_DEF_ 'f' ENUM 'a';\nBA_ 'e' 2;\nBA_ 'f' -1;\n", "6:9 7:9",
       "BA_DEF_ 'e' ENUM 'a','b';\nBA_ 'e' 1;\n"},
      // Of two attributes of a name the one for the object counts.
      {"attribute-range",
       kM + "BA_DEF_ 'n' INT 0 10;\nBA_DEF_ BO_ 'n' INT 0 20;\nBA_ 'n' BO_ 256 21;\n", "7:17",
       kM + "BA_DEF_ 'n' INT 0 10;\nBA_DEF_ BO_ 'n' INT 0 20;\nBA_ 'n' BO_ 256 20;\n"},
      {"doubled-statement", kM + "CM_ BO_ 256 'a';\nCM_ BO_ 256 'a';\n", "6:1",
       kM + "CM_ BO_ 256 'a';\nCM_ 'a';\nCM_ BU_ A 'a';\n"},
      {"doubled-statement",
       kM + "BA_DEF_ BO_ 'n' INT 0 1;\nBA_ 'n' BO_ 256 0;\nBA_ 'n' BO_ 256 1;\n", "7:1",
       kM + "BA_DEF_ BO_ 'n' INT 0 1;\nBA_DEF_ BO_ 'm' INT 0 1;\nBA_ 'n' BO_ 256 1;\n"
            "BA_ 'm' BO_ 256 1;\n"},
  };
  check(cases);
}

TEST(LintRules, OfNodes) {
  const std::string n = "BO_ 257 N: 8 A\n", p = sg("P", "0|8@1+");
  const std::string own = sg("P", "0|8@1+", "(1,0) [0|0]", "", "B,A");
  const Case cases[] = {
      {"unused-node", kM + p, "3:10", kM + p + "BO_TX_BU_ 256 : A,C;\n"},
      {"unlisted-node", "BO_ 256 M: 8 D\n", "4:14", "BO_ 256 M: 8 Ostrel__XXX\n"},
      {"message-without-sender", kM + "BO_ 257 N: 8 Ostrel__XXX\n", "5:14",
       kM + "BO_ 257 N: 8 Ostrel__XXX\nBO_TX_BU_ 257 : C;\n"},
      // Once for all.
      {"message-without-sender", "BO_ 256 M: 8 Ostrel__XXX\nBO_ 257 N: 8 Ostrel__XXX\n", "4:14",
       kM + "BO_ 3221225472 N: 0 Ostrel__XXX\n"},
      {"sender-receives", kM + own, "5:34", kM + p},
      {"sender-receives", kM + own + n + own, "3:6", kM + p + n + p},
      {"sender-list", kM + "BO_TX_BU_ 256 : B,C;\n", "4:14", kM + "BO_TX_BU_ 256 : B,A;\n"},
  };
  check(cases);
}

// 0x98F00400 is a group of engines with priority 6, sent by address 0.
TEST(LintRules, OfJ1939) {
  const std::string group_numbers = "BA_DEF_ 'IsNMEA' INT 0 1;\nBA_DEF_DEF_ 'IsNMEA' 1;\n";
  const std::string station = "BA_ 'NmStationAddress' BU_ A ";
  const Case cases[] = {
      {"j1939-identifier", kM + kFormats + "BA_ 'VFrameFormat' BO_ 256 2;\n", "4:5", kM + kJ1939},
      {"j1939-identifier", "BO_ 2599420928 M: 8 A\n" + kJ1939, "4:5",
       "BO_ 2565866496 M: 8 A\nBO_ 2582643712 N: 8 A\n" + kJ1939},
      {"j1939-priority", "BO_ 2163213312 M: 8 A\n" + kJ1939, "4:5",
       "BO_ 2565866496 M: 8 A\n" + kJ1939},
      // Request: 6. Transport: 7.
      {"j1939-priority", "BO_ 2364210944 M: 8 A\nBO_ 2565668608 N: 8 A\n" + kJ1939, "4:5 5:5",
       "BO_ 2565537536 M: 8 A\nBO_ 2632777472 N: 8 A\n" + kJ1939},
      {"j1939-address", "BO_ 2565866751 M: 8 A\n" + kJ1939, "4:5",
       "BO_ 2565866750 M: 8 A\nBO_ 2565866496 N: 8 A\n" + kJ1939 + station + "254;\n"},
      {"j1939-address", "BO_ 2565866496 M: 8 A\n" + kJ1939 + station + "3;\n", "4:5",
       "BO_ 2565866496 M: 8 A\n" + kJ1939 + station + "0;\n"},
      {"j1939-doubled-address", kJ1939 + station + "3;\nBA_ 'NmStationAddress' BU_ C 3;\n", "3:10",
       kJ1939 + station + "254;\nBA_ 'NmStationAddress' BU_ C 254;\n"},
      {"j1939-doubled-group", "BO_ 2565866496 M: 8 A\nBO_ 2364539904 N: 8 A\n" + kJ1939, "5:5",
       "BO_ 2565866496 M: 8 A\nBO_ 2364539905 N: 8 A\n" + kJ1939},
      {"j1939-priority", "BO_ 2163213312 M: 8 A\n" + kJ1939, "4:5",
       "BO_ 2163213312 M: 8 A\n" + kJ1939.substr(0, kJ1939.find("BA_DEF_DEF_")) + group_numbers +
           kJ1939.substr(kJ1939.find("BA_DEF_DEF_"))},
  };
  check(cases);
}

TEST(LintRules, OfNamesAndTexts) {
  const std::string n(31, 'n');
  const auto unit = [](const char* name, const char* layout, const char* text) {
    return sg(name, layout, "(1,0) [0|0]", text);
  };
  const Case cases[] = {
      {"doubled-signal", kM + sg("P", "0|8@1+") + sg("P", "8|8@1+"), "6:6",
       kM + sg("P", "0|8@1+") + "BO_ 257 N: 8 A\n" + sg("P", "8|8@1+")},
      {"doubled-name", kM + "BO_ 257 M: 8 A\n", "5:9", "BO_ 256 A: 8 A\n" + sg("A", "0|8@1+")},
      {"doubled-name", "VAL_TABLE_ t 0 'a' ;\nVAL_TABLE_ t 0 'b' ;\n", "5:12",
       "VAL_TABLE_ t 0 'a' ;\nVAL_TABLE_ u 0 'a' ;\nBO_ 256 t: 8 A\n"},
      {"doubled-name", "BA_DEF_ BO_ 'n' INT 0 1;\nBA_DEF_ BO_ 'n' INT 0 1;\n", "5:13",
       "BA_DEF_ BO_ 'n' INT 0 1;\nBA_DEF_ SG_ 'n' INT 0 1;\nBA_DEF_ 'n' INT 0 1;\n"},
      {"names-differ-in-case", kM + sg("Pa", "0|8@1+") + sg("PA", "8|8@1+"), "6:6",
       kM + sg("Pa", "0|8@1+") + sg("P_A", "8|8@1+")},
      {"doubled-name", ev("v", 1) + ev("w", 2) + ev("v", 3), "6:5", ev("v", 1) + ev("w", 2)},
      {"names-differ-in-case", "BO_ 256 v: 8 A\n" + ev("w", 1) + ev("V", 2) + ev("W", 3), "7:5",
       "BO_ 256 v: 8 A\n" + ev("w", 1) + ev("V", 2)},
      {"names-differ-in-case", "BO_ 256 a: 8 b\n", "4:14", "BO_ 256 a: 8 B\n"},
      {"long-name", "BO_ 256 " + n + "12: 8 A\n", "4:9", "BO_ 256 " + n + "1: 8 A\n"},
      {"long-name-collision", "BO_ 256 " + n + "12: 8 A\nBO_ 257 " + n + "13: 8 A\n", "5:9",
       "BO_ 256 " + n + "12: 8 A\nBO_ 257 " + n + "22: 8 A\nBO_ 258 " + n + "22: 8 A\n"},
      {"unit-spellings",
       kM + unit("P", "0|8@1+", "kmh") + unit("Q", "8|8@1+", "km/h") + unit("R", "16|8@1+", "km/h"),
       "5:29", kM + unit("P", "0|8@1+", "ms") + unit("Q", "8|8@1+", "Ms")},
      {"mixed-encoding", kM + "CM_ '\xC3\xB6';\nCM_ BU_ A '\xC3\xB6';\nCM_ BO_ 256 '\xF6';\n",
       "7:13", kM + "CM_ '\xFC';\nCM_ BO_ 256 '\xF6';\n"},
      {"mixed-encoding", "CM_ '\xF6';\nCM_ BU_ A '\xF6';\nCM_ BU_ B '\xC3\xB6';\n", "6:11", ""},
  };
  check(cases);
}

}  // namespace
}  // namespace zelk::check
