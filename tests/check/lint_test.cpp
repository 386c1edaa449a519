#include "check/lint/lint.hpp"

#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>

#include "check/statements/token.hpp"

namespace zelk::check {
namespace {

/// "RULE LINE" of each finding but those of the disabled rules, with a blank behind each.
std::string found(const std::string& text, std::initializer_list<const char*> disabled = {},
                  std::uint64_t limit = 0) {
  const StrictReading reading(text);
  EXPECT_TRUE(reading.is_accepted()) << text;
  LintSettings settings;
  for (const char* const rule : disabled) settings.set_on(*find_rule(rule), false);
  const Document document = read_document(Source("x.dbc", text));
  std::ostringstream all;
  const Names names(document);
  for (const Finding& finding :
       lint(document, names, reading.view(), settings, limit).findings.list)
    all << finding.rule << ' ' << document.source.position(finding.span.begin).line << ' ';
  return all.str();
}

/// An example, with what it needs to be a file, and its statements in their order.
std::string completed(std::string_view example) {
  constexpr std::string_view kSignals =
      " SG_ Page M : 0|8@1+ (1,0) [0|0] \"\" Cluster\n"
      " SG_ Voltage m1 : 8|16@1+ (1,0) [0|0] \"\" Cluster\n"
      " SG_ Gear : 24|3@1+ (1,0) [0|0] \"\" Cluster\n";
  constexpr std::string_view kDefinitions =
      "BA_DEF_ \"ProtocolType\" STRING ;\n"
      "BA_DEF_ BO_ \"VFrameFormat\" ENUM "
      "\"StandardCAN\",\"ExtendedCAN\",\"reserved\",\"J1939PG\";\n"
      "BA_DEF_ BO_ \"GenMsgSendType\" ENUM \"cyclic\",\"event\";\n"
      "BA_DEF_ BO_ \"GenMsgCycleTime\" INT 0 0;\n"
      "BA_DEF_ BU_ \"NmStationAddress\" INT 0 254;\n"
      "BA_DEF_DEF_ \"ProtocolType\" \"J1939\";\n";
  const auto has = [&](std::string_view part) { return example.find(part) != example.npos; };
  std::string text = "VERSION \"\"\nBS_:\n";
  if (!has("BU_: ")) text += "BU_: Cluster Engine Gateway Gearbox Radio\n";
  if (!example.starts_with("BO_")) {
    text += "BO_ 256 Status: 8 Gateway\n";
    if (!example.starts_with(" SG_")) text += kSignals;
  }
  text += example;
  if (!has("BA_DEF_")) text += kDefinitions;
  std::map<int, std::string> places;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    const std::size_t begin = line.find_first_not_of(' ');
    const std::string word = line.substr(begin, line.find_first_of(" :", begin) - begin);
    places[place_of(find_word(word))] += line + '\n';
  }
  std::string sorted;
  for (const auto& [place, statements] : places) sorted += statements;
  return sorted;
}

TEST(Lint, FindsTheExampleOfEachRule) {
  for (const Rule* const rule : all_rules()) {
    if (rule->name == "mixed-encoding") continue;  // shown in one encoding
    const std::string text = completed(rule->example);
    EXPECT_NE(found(text).find(std::string(rule->name) + ' '), std::string::npos)
        << rule->name << ", found: " << found(text) << '\n'
        << text;
  }
}

/// Statements from line 4 of a file on.
struct Case {
  const char* name;
  std::string statements;
  std::string expected;
};

std::string signal(const std::string& name, const std::string& layout) {
  return " SG_ " + name + " : " + layout + " (1,0) [0|0] \"\" B\n";
}

const std::string kMessage = "BO_ 256 M: 8 A\n";

TEST(Lint, TellsFaultsFromWhatLooksLikeThem) {
  const Case cases[] = {
      {"pages of a multiplexor share bits",
       kMessage + signal("X M", "0|2@1+") + signal("P m0", "8|8@1+") + signal("Q m1", "8|8@1+"),
       ""},
      {"but not with what is always there",
       kMessage + signal("X M", "0|2@1+") + signal("P m0", "1|8@1+") + signal("Q m0", "12|4@1+"),
       "overlapping-signals 6 "},
      {"nor within a page",
       kMessage + signal("X M", "0|2@1+") + signal("P m1", "8|8@1+") + signal("Q m0", "12|8@1+") +
           signal("R m1", "10|9@1+"),
       "overlapping-signals 8 "},
      {"nested multiplexors and ranges",
       kMessage + signal("X M", "0|2@1+") + signal("Y m1M", "2|2@1+") + signal("P m0", "8|8@1+") +
           signal("Q m1", "8|8@1+") + signal("R m2", "8|9@1+") + signal("S m2", "12|8@1+") +
           "SG_MUL_VAL_ 256 Y X 1-1;\nSG_MUL_VAL_ 256 P X 0-0,2-2;\nSG_MUL_VAL_ 256 Q Y 1-1;\n"
           "SG_MUL_VAL_ 256 R Y 2-3;\nSG_MUL_VAL_ 256 S X 1-1;\n",
       "overlapping-signals 10 "},
      {"two multiplexors side by side",
       kMessage + signal("X M", "0|2@1+") + signal("Y M", "2|2@1+") + signal("P m0", "8|8@1+") +
           signal("Q m1", "12|8@1+") + "SG_MUL_VAL_ 256 P X 0-0;\nSG_MUL_VAL_ 256 Q Y 1-1;\n",
       "overlapping-signals 8 "},
      {"Intel and Motorola beside each other in a byte",
       kMessage + signal("P", "4|12@0+") + signal("Q", "5|3@1+") + signal("R", "16|8@1+") +
           signal("S", "8|1@1+") + signal("T", "9|1@1+"),
       "nested-signals 5 "},
      {"a Motorola signal that runs out of its frame",
       kMessage + signal("P", "56|9@0+") + signal("Q", "55|8@0+"), "signal-outside-frame 5 "},
      {"the message for signals without one, in which nothing counts",
       "BO_ 3221225472 M: 0 Ostrel__XXX\n" + signal("P", "0|8@1+") + signal("Q", "0|8@1+"),
       "unused-node 3 "},
      {"identifiers at their bounds",
       "BO_ 2047 M: 8 A\n" + signal("P", "0|8@1+") + "BO_ 2684354559 N: 64 A\n" +
           "BO_ 2048 O: 9 A\nBO_ 2684354560 Q: 65 A\n",
       "identifier-range 7 frame-length 7 identifier-range 8 frame-length 8 "},
      {"ranges that are exchanged, or none",
       kMessage + " SG_ P : 0|8@1- (1,0) [5|-5] \"\" B\n SG_ Q : 8|8@1+ (-1,0) [-255|0] \"\" B\n"
                  " SG_ R : 16|8@1+ (0.0,0) [0|0] \"\" B\n SG_ S : 24|8@1+ (1,0) [0|300] \"\" B\n",
       "minimum-over-maximum 5 factor-zero 7 unreachable-range 8 "},
      {"descriptions at the bounds of a signed signal, and one twice",
       kMessage + signal("P", "0|3@1-") + "VAL_ 256 P -4 \"a\" 3 \"b\" 4 \"c\" -4 \"d\" ;\n",
       "description-range 6 doubled-description 6 "},
      {"long names by attributes are found at their short forms",
       kMessage + signal("P", "0|8@1+") + signal("P_0000", "0|4@1+") +
           "BA_DEF_ SG_ \"SystemSignalLongSymbol\" STRING ;\n"
           "BA_ \"SystemSignalLongSymbol\" SG_ 256 P \"AbcdefghijabcdefghijabcdefghijabcX\";\n"
           "BA_ \"SystemSignalLongSymbol\" SG_ 256 P_0000 "
           "\"Abcdefghijabcdefghijabcdefghijabcx\";\n",
       "nested-signals 5 names-differ-in-case 6 long-name-collision 6 "},
      {"what the reader passes over",
       kMessage + signal("P", "0|8@1+") + "Odd_ BO_ 256 M: 8 A;\nCM_ BO_ 256 \"x\";\n", ""},
      {"a byte that ends the text, and what stands behind it",
       kMessage + signal("P", "0|8@1+") + "\xFF\n" + kMessage + signal("P", "0|80@1+"), ""},
      {"texts in two encodings",
       kMessage + signal("P", "0|8@1+") + "CM_ BU_ A \"\xC3\xB6\";\nCM_ BO_ 256 \"\xF6\";\n",
       "mixed-encoding 7 "},
      {"units that differ in case, and are not the same",
       kMessage +
           " SG_ P : 0|8@1+ (1,0) [0|0] \"mV\" B\n SG_ Q : 8|8@1+ (1,0) [0|0] \"MV\" B\n"
           " SG_ R : 16|8@1+ (1,0) [0|0] \"\xB0\" B\n SG_ S : 24|8@1+ (1,0) [0|0] \"deg\" B\n",
       "unit-spellings 8 "},
  };
  for (const Case& c : cases) {
    const std::string text = "NS_: Odd_\nBS_:\nBU_: A B\n" + c.statements;
    EXPECT_EQ(found(text, {"signed-bit"}), c.expected) << c.name;
  }
}

TEST(Lint, KeepsTheFirstFindingsOfTheText) {
  const std::string text = "BS_:\nBU_: A\nBO_ 1 M: 9 B\nBO_ 1 M: 9 B\nBO_ 4096 m: 9 B\n";
  const std::string all = found(text);
  const std::string first = found(text, {}, 3);
  EXPECT_EQ(first, "unused-node 2 frame-length 3 unlisted-node 3 ");
  EXPECT_TRUE(all.starts_with(first)) << all;
}

}  // namespace
}  // namespace zelk::check
