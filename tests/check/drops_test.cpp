// What repair drops although it is no fault: statements that are said twice, and those that the
// reader refuses for a reason that no search for faults knows.

#include <gtest/gtest.h>

#include <algorithm>

#include "check/repair/last_resort.hpp"
#include "check/repair/repair.hpp"
#include "support/quoted.hpp"

using namespace zelk::check;

namespace {

const std::string kSections = "BS_:\nBU_: A B\n";
const std::string kM = "BO_ 1 M: 8 A\n";
const std::string kS = " SG_ s : 0|8@1+ (1,0) [0|1] '' B\n";
const std::string kT = " SG_ t : 8|8@1+ (1,0) [0|1] '' B\n";

struct Case {
  std::string text;    ///< apostrophes stand for quotes
  std::string mended;  ///< empty: as it was
  std::string mends = {};
};

/// The statements behind the sections, in a file that lacks "BS_".
void check(const Case& each) {
  SCOPED_TRACE(each.text);
  const std::string text = quoted("BU_: A B\n" + each.text);
  const Mended mended = repair(Source("t.dbc", text), {});
  const std::string& rest = each.mended.empty() ? each.text : each.mended;
  EXPECT_EQ(mended.text, quoted("BS_:\n\nBU_: A B\n" + rest));
  std::string names;
  for (const Finding& finding : mended.mends.list)
    if (finding.rule != "missing-bs") names.append(" ").append(finding.rule);
  EXPECT_EQ(names, each.mends);
}

TEST(Doubles, GoWhereNothingElseIsLost) {
  const std::string both = kM + kS + kT;
  const std::string x = "BA_DEF_ BO_ 'x' INT 0 1;\n";
  const std::string y = "BA_DEF_ SG_ 'x' INT 0 1;\n";
  const std::string d = "BA_DEF_DEF_ 'x' 1;\n";
  const Case cases[] = {
      {both + "BO_ 2 N: 8 A\n" + both, both + "BO_ 2 N: 8 A\n", " doubled-message"},
      {both + kS + both, both, " doubled-signal doubled-message"},
      {both + kM + kS, ""},  // the second message has other signals
      {both + "BO_ 1 O: 8 A\n" + both, both + "BO_ 1 O: 8 A\n", " doubled-message"},
      {kM + kS + "BO_ 2 M: 8 A\n" + kS, ""},
      {kM + kS + kM + "  SG_ s:0 | 8@1+(1,0)[0|1]'' B // c\n", kM + kS + "  // c\n",
       " doubled-message"},
      {kM + "CM_ BO_ 1 'a';\nCM_ BO_ 1  'a' ;\nCM_ 'a b';\nCM_ 'a  b';\n",
       kM + "CM_ BO_ 1 'a';\nCM_ 'a b';\nCM_ 'a  b';\n", " doubled-statement"},
      // The last of them counts.
      {kM + "CM_ BO_ 1 'a';\nCM_ BO_ 1 'b';\nCM_ BO_ 1 'a';\n", ""},
      {kM + "BO_TX_BU_ 1 : A;\nBO_TX_BU_ 1 : A,B;\nBO_TX_BU_ 1 : A;\n", ""},
      {kM + kS + "VAL_ 1 s 0 'a' ;\nVAL_ 1 s 1 'a' ;\nVAL_ 1 s 1 'a' ;\n",
       kM + kS + "VAL_ 1 s 0 'a' ;\nVAL_ 1 s 1 'a' ;\n", " doubled-statement"},
      {x + x + d + d + "BA_ 'x' 0;\nBA_ 'x' 0;\n", x + d + "BA_ 'x' 0;\n",
       " doubled-statement doubled-statement doubled-statement"},
      // The second default is that of the second definition.
      {x + y + d + d, ""},
      {x + x + d + "BA_DEF_DEF_ 'x' 0;\n", ""},
      {x + x + "BA_DEF_SGTYPE_ 'x';\n", ""},
  };
  for (const Case& each : cases) check(each);
}

TEST(Doubles, StayInFilesThatAreRead) {
  const std::string text = quoted(kSections + kM + kS + kS + "CM_ 'a';\nCM_ 'a';\n");
  EXPECT_EQ(repair(Source("t.dbc", text), {}).text, text);
  const std::string refused = text.substr(text.find("BU_"));
  const Mended kept = repair(Source("t.dbc", refused), {{"doubled-signal", "missing-bs"}, {}});
  EXPECT_EQ(kept.outcome, Outcome::kUnmendable);
  const Mended other = repair(Source("t.dbc", refused), {{"doubled-signal"}, {}});
  EXPECT_EQ(other.text, "BS_:\n\n" + quoted("BU_: A B\n" + kM + kS + kS + "CM_ 'a';\n"));
  const auto& mends = other.mends.list;
  const auto found = std::ranges::find(mends, "doubled-statement", &Finding::rule);
  ASSERT_NE(found, mends.end());
  EXPECT_EQ(found->related.at(0).span.begin, refused.find("CM_"));  // the one that stays
}

/// In its place in front of all, the list would hide what uses its names.
TEST(Doubles, NewSymbolsThatStandTooLate) {
  const std::string text = "BS_:\nBU_: A\nBO_ 1 M: 8 A\nNS_ : M BA_ F_\nBO_ 2 N: 8 A\n";
  EXPECT_EQ(repair(Source("t.dbc", text), {}).text,
            "NS_ : BA_ F_\nBS_:\nBU_: A\nBO_ 1 M: 8 A\nBO_ 2 N: 8 A\n");
  // The reader takes the first result, and skips all behind the second "F_".
  const std::string twice = "BO_ 1 M: 8 A\nNS_ : F_ F_)\nBS_:\nBU_: A\nCM_ 'x';\n";
  const Mended mended = repair(Source("t.dbc", quoted(twice)), {});
  EXPECT_EQ(repair(Source("t.dbc", mended.text), {}).outcome, Outcome::kUnneeded) << mended.text;
  const std::string odd = "NS_ : _2M\nBS_:\nBU_: A\nBO_ 1 2M: 8 A\n";
  EXPECT_EQ(repair(Source("t.dbc", odd), {}).text,
            quoted("NS_ : _2M\nBS_:\nBU_: A\nBO_ 1 _2M_2: 8 A\nCM_ BO_ 1 'Original name: 2M';\n"));
}

/// Behind sections, a message and its signals; "!" marks what is dropped.
TEST(LastResort, DropsTheStatementThatIsRefused) {
  const std::string circle =
      " SG_ a m0M : 0|8@1+ (1,0) [0|1] '' B\n SG_ b m1M : 8|8@1+ (1,0) [0|1] '' B\n";
  const char* const cases[] = {
      "CM_ 'a';\nCM_ 'b';\n!CM_ BO_ 2 'c';\nCM_ 'd';\nCM_ BO_ 3 'e';\n",
      "CM_ 'a'; CM_ 'b'; CM_ 'c'; CM_ 'd'; !CM_ BO_ 2 'e'; CM_ 'f'; CM_ 'g';",
      "!CM_ BO_ 2 '\n\n';CM_ 'f';",
      "CM_ 'a';\rCM_ 'b';\r!CM_ BO_ 2 'c';\r",
      "SG_MUL_VAL_ 1 a b 1-1;\n!SG_MUL_VAL_ 1 b a 1-1;\n",
      "!BA_ 'x' 1;\n",
      "SG_ c : 0|8@9+ (1,0) [0|1] '' B\nCM_ 'a';\n",         // a signal is not dropped
      "BO_ 2 N: 99999 A\nCM_ 'a';\n",                        // nor is a message
      "CM_ 'a';\nCM_ 'b';\nBO_ 3 N: 1 A\nCM_ BO_ 4 'c';\n",  // here, too, the message is refused
  };
  const std::string head = kSections + kM + circle;
  for (const std::string each : cases) {
    SCOPED_TRACE(each);
    std::string text = quoted(head + each);
    const std::size_t mark = text.find('!');
    if (mark != std::string::npos) text.erase(mark, 1);
    const Document document = read_document(Source("t.dbc", text));
    const Names names(document);
    const RepairOptions options;
    Mender mender(document, names, options);
    const bool is_dropped = drop_refused(mender, judge(text));
    EXPECT_EQ(is_dropped, mark != std::string::npos);
    ASSERT_EQ(mender.findings.size(), is_dropped ? 1u : 0u);
    if (is_dropped) {
      EXPECT_EQ(mender.findings[0].span.begin, mark);
    }
  }
}

TEST(LastResort, LeavesSectionsAndWhatIsKept) {
  for (const std::string text : {"BU_: A\nCM_ 'a';\n", "BS_:\nBU_: A\nCM_ BO_ 1 'x';\n"}) {
    const Document document = read_document(Source("t.dbc", quoted(text)));
    const Names names(document);
    const RepairOptions options{{"refused"}, {}};
    const RepairOptions none;
    Mender mender(document, names, text[1] == 'U' ? none : options);
    EXPECT_FALSE(drop_refused(mender, judge(quoted(text)))) << text;
  }
}

}  // namespace
