#include <gtest/gtest.h>

#include <algorithm>

#include "support/database.hpp"
#include "text/new_symbols.hpp"

namespace {

using namespace std::string_literals;

struct CoreCase {
  std::string text;
  std::string description;
};

void expect_descriptions(const std::vector<CoreCase>& cases) {
  for (const CoreCase& c : cases) {
    Database database;
    EXPECT_EQ(database.read(c.text), 0u) << c.text << database.reported;
    EXPECT_EQ(describe(database), c.description) << c.text;
    EXPECT_EQ(database.reported, "") << c.text;
  }
}

TEST(CoreReader, Sections) {
  const std::string a40(40, 'a'), a32(32, 'a');
  expect_descriptions({{"BS_:BU_:", ""},
                       {"VERSION \"2.5 \\\"x\\\"\" BS_:BU_:", "version \"2.5 \"x\"\"\n"},
                       {"BS_: 32767:0,0 500:1,2 BU_:", "timing 32767:0,0\ntiming 500:1,2\n"},
                       {"BS_:BU_: A B A Ostrel__XXX a\n", "node A\nnode B\nnode a\n"},
                       {"BS_:BU_: VAL_TABLE_ T 1 \"b\" 0 \"a\\\"\" 1 \"\" ; VAL_TABLE_ T ;",
                        "table T 1\"b\" 0\"a\"\" 1\"\"\ntable T\n"},
                       {"BS_:BU_: VAL_TABLE_ " + a40 + " ;", "table " + a32 + "\n"},
                       {"BS_:BU_:BO_ 0 M:0 Ostrel__XXX BO_ 0100000 M:010 Ostrel__XXX\n",
                        "message 0 M 0 from -[]\nmessage 32768 M 10 from -[]\n"},
                       // A message acts behind its signals.
                       {"BS_:BU_:A\nBO_ 1 M:8 T SG_ S:0|8@1+(1,0)[0|0]\"\"R,Ostrel__XXX,A,R\n",
                        "node A\nnode R\nnode T\nmessage 1 M 8 from T[T]\n"
                        "signal S 0|8 flags 0 (1,0) [0|0] \"\" to [R,A,R]\n"}});
}

TEST(CoreReader, NewSymbols) {
  const std::string rest = " BS_:BU_:\n", a40(40, 'a'), a32(32, 'a');
  Database database;
  zelk_reset_symbols_shortened();
  EXPECT_EQ(database.read("NS_:\n B1_ CM_ A1_ " + a40 + "\nBS_:BU_: N\nB1_ 1 \"x // \xFF\n;\nA1_;" +
                          a32 + " ; CM_ \"c\" ;"),
            0u);
  EXPECT_EQ(describe(database), "comment \"c\"\nnode N\n");
  EXPECT_EQ(database.reported,
            "new symbol not supported, line 3, B1_\nnew symbol not supported, line 5, A1_\n"
            "new symbol not supported, line 5, " +
                a32 + "\n");
  EXPECT_EQ(zelk::last_new_symbols(), (std::vector<std::string>{"B1_", "A1_", a32}));
  EXPECT_EQ(zelk_symbols_shortened(), 1);
  EXPECT_EQ(database.read("NS_: SG_" + rest), 1u) << "no statement that may be new";
  EXPECT_EQ(database.read("NS_:" + a40 + rest + a40 + " ;"), 1u) << "announced cut to 32";
  EXPECT_EQ(database.read("BS_:BU_: B1_\n"), 0u) << "announced in another file";
  EXPECT_TRUE(zelk::last_new_symbols().empty());
  EXPECT_EQ(database.read("NS_: B1_ B1_ CM_ BS_:BU_:; BS_:BU_:"), 0u) << "effect at once";
}

/// Reads a message of these signals; gives the signals' lines, or what was reported.
std::string signals(const std::string& lines) {
  Database database;
  const bool is_read = database.read("BS_:\nBU_:\nBO_ 1 M: 8 A\n" + lines + "\n") == 0;
  const std::string all = describe(database);
  return is_read ? all.substr(std::min(all.find("signal"), all.size())) : database.reported;
}

TEST(CoreReader, SignalLayouts) {
  const struct {
    std::string written, read;
  } cases[] = {{"32767|32767@1-", "32767|32767 flags 2"},
               // orders: 0 Motorola, others Intel; without one the segment's position
               {"3|8@4", "3|8 flags 0"},
               {"3|8:5-", "3|13 flags 2"},
               {"3|8@2:5@2", "3|13 flags 0"},
               {"8|5@0:8", "8|13 flags 0"},
               // two segments in falling order: Motorola, the start bit mirrored within its byte
               {"3|8@2:5@1", "4|13 flags 1"},
               {"16|8@4:5-", "23|13 flags 3"},
               {"23|32767@1:32767@0", "16|65534 flags 1"}};
  for (const auto& c : cases) {
    EXPECT_EQ(signals("SG_ S : " + c.written + " (1,0) [0|0] \"\" A"),
              "signal S " + c.read + " (1,0) [0|0] \"\" to [A]\n");
  }
}

TEST(CoreReader, SignalNumbersAndTexts) {
  const std::string u40(40, 'u'), u32(32, 'u'), n200(200, 'n');
  const struct {
    std::string written, read;
  } cases[] = {
      {"(0.1,-5)[+0|6553.5]\"km/h\"A,B", "(0.1,-5) [0|6553.5] \"km/h\" to [A,B]"},
      {"(+2.5,1E+3) [-1|1e3] \"\\\"\" Ostrel__XXX", "(2.5,1000) [-1|1000] \"\"\" to []"},
      {"(0,5) [10|0] \"\" A", "(1,5) [0|10] \"\" to [A]"},
      {"(-0,-0.5) [5|-5] \"\" A", "(1,-0.5) [-5|5] \"\" to [A]"},
      {"(0.0,4294967296) [40000|0100000] \"\" A", "(1,4294967296) [32768|40000] \"\" to [A]"}};
  zelk_reset_symbols_shortened();
  for (const auto& c : cases) {
    EXPECT_EQ(signals("SG_ " + n200 + " : 0|8@1+" + c.written),
              "signal " + n200 + " 0|8 flags 0 " + c.read + "\n");
  }
  EXPECT_EQ(zelk_symbols_shortened(), 0);
  EXPECT_EQ(signals("SG_ S : 0|8@1+ (1,0) [0|0] \"" + u40 + "\" A"),
            "signal S 0|8 flags 0 (1,0) [0|0] \"" + u32 + "\" to [A]\n");
  EXPECT_EQ(zelk_symbols_shortened(), 1);
  zelk_reset_symbols_shortened();
}

constexpr char kLayout[] = " : 0|8@1+ (1,0) [0|0] \"\" A\n";

std::string signal_line(const char* name, const char* flags, const char* multiplexing) {
  return std::string("signal ") + name + " 0|8 flags " + flags + " (1,0) [0|0] \"\" to [A]" +
         multiplexing + "\n";
}

TEST(CoreReader, MultiplexerIndicators) {
  struct Result {
    const char *flags, *multiplexing;
  };
  const struct {
    std::string s, t;  // indicators of two signals of one message
    Result s_is, t_is;
  } cases[] = {{"M", "m1", {"4", ""}, {"0", " by S 1-1"}},
               {"m7", "M", {"0", " by T 7-7"}, {"4", ""}},
               {"x", "X12", {"4", ""}, {"0", " by S 12-12"}},
               {"M", "m3M", {"4", ""}, {"4", " 3-3"}},
               {"m0M", "m1", {"4", " by S 0-0"}, {"0", " by S 1-1"}},
               {"mm", "", {"4", ""}, {"0", ""}},
               {"M", "m010", {"4", ""}, {"0", " by S 10-10"}},
               {"M", "mq", {"4", ""}, {"0", " by S 0-0"}}};
  for (const auto& c : cases) {
    const std::string text = "SG_ S " + c.s + kLayout + "SG_ T " + c.t + kLayout;
    EXPECT_EQ(signals(text), signal_line("S", c.s_is.flags, c.s_is.multiplexing) +
                                 signal_line("T", c.t_is.flags, c.t_is.multiplexing))
        << text;
    EXPECT_EQ(signals(text + "BO_ 2 N: 8 A SG_ U q1" + kLayout),
              signals(text) + "message 2 N 8 from A[A]\n" + signal_line("U", "0", " 1-1"))
        << "every message chooses its letter";
  }
}

TEST(CoreReader, CyclicMultiplexors) {
  const std::string text = std::string("SG_ A M") + kLayout + "SG_ B m0M" + kLayout + "SG_ C m1M" +
                           kLayout + "SG_ D m2" + kLayout;
  const struct {
    const char *statements, *culprit;
  } cases[] = {{"SG_MUL_VAL_ 1 B A 0-0; SG_MUL_VAL_ 1 C B 1-1; SG_MUL_VAL_ 1 D C 2-2;", ""},
               {"SG_MUL_VAL_ 1 C B 1-1; SG_MUL_VAL_ 1 B C 0-0;", "M::B"},
               {"SG_MUL_VAL_ 1 A B 0-0; SG_MUL_VAL_ 1 B C 0-0; SG_MUL_VAL_ 1 C C 0-0;", "M::A"},
               {"SG_MUL_VAL_ 1 A B 0-0; SG_MUL_VAL_ 1 B D 0-0; SG_MUL_VAL_ 1 D B 0-0;", "M::A"}};
  for (const auto& c : cases) {
    const std::string report =
        "Not allowed: Message contains cyclic dependencies for multiplexor signal "
        "(error-linenumber "
        "may ignored), line 8, ";
    const std::string wanted = *c.culprit ? report + c.culprit + "\n" : "signal A ";
    EXPECT_EQ(signals(text + c.statements).substr(0, wanted.size()), wanted) << c.statements;
  }
  const std::string one = std::string("SG_ A M") + kLayout + "SG_ B" + kLayout;
  EXPECT_EQ(signals(one + "SG_MUL_VAL_ 1 A A 1-2;"),
            signal_line("A", "4", " by A 1-2") + signal_line("B", "0", ""))
      << "looked for with several multiplexors only";
  EXPECT_NE(signals(one + "SG_MUL_VAL_ 1 A B 1-2; SG_MUL_VAL_ 1 B A 1-2;").find("M::A"),
            std::string::npos)
      << "a statement makes the second multiplexor";
}

}  // namespace
