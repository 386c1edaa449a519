#include <gtest/gtest.h>

#include <string>

#include "run_tool.hpp"

namespace {

bool contains(const std::string& text, const char* part) {
  return text.find(part) != std::string::npos;
}

constexpr const char* kSmall =
    "VERSION \"1\\\"x\"\n\nNS_ :\n\nBS_:\n\nBU_: Engine Dash\n\n"
    "BO_ 100 Motion: 8 Engine\n SG_ Speed : 0|16@1+ (0.01,0) [0|655.35] \"km/h\" Dash\n\n"
    "BO_ 2566852864 Lamps: 1 Dash\n SG_ Left : 0|1@1+ (1,0) [0|1] \"\"  Engine\n\n";

/// A database of one message, whose signals are written as "Name [indicator] : layout".
std::string one_message(int dlc, std::initializer_list<const char*> signals,
                        const std::string& rest = "") {
  std::string text = "BS_:\n\nBU_: N\n\nBO_ 100 M: " + std::to_string(dlc) + " N\n";
  for (const char* signal : signals)
    text += std::string(" SG_ ") + signal + " (1,0) [0|0] \"\" N\n";
  return text + "\n" + rest;
}

TEST(Tool, ExitCodes) {
  write_file("good.dbc", kSmall);
  write_file("Gr\u00F6\u00DFe_\u901F\u5EA6.dbc", kSmall);
  write_file("bad.dbc", "BS_:\nBU_: A\nBO_ nonsense\n");
  const struct {
    const char* arguments;
    int exit_code;
    const char* out;
    const char* err;
  } cases[] = {
      {"check good.dbc", 0,
       "good.dbc: ok, 2 nodes, 2 messages, 2 signals, 0 environment variables, 0 value tables, 0 "
       "attribute definitions\n",
       ""},
      {"check missing.dbc", 1, "", "missing.dbc: database: not found, missing.dbc\n"},
      {"check Gr\u00F6\u00DFe_\u901F\u5EA6.dbc", 0, "Gr\u00F6\u00DFe_\u901F\u5EA6.dbc: ok", ""},
      {"check m\u00E4ngel.dbc", 1, "", "m\u00E4ngel.dbc: database: not found"},
      {"check bad.dbc good.dbc", 1, "good.dbc: ok, 2 nodes", "bad.dbc, line 2, error"},
      {"show bad.dbc", 1, "", "bad.dbc, line 2, error"},
      {"show good.dbc Motion", 0, "Message Motion, 0x64 (100), 11-bit, 8 bytes\n", ""},
      {"show good.dbc 0x64", 0, "Message Motion", ""},
      {"show good.dbc 0x18FF1100", 0, "Message Lamps, 0x18FF1100 (419369216), 29-bit, 1 byte\n",
       ""},
      {"show good.dbc 2566852864", 0, "Message Lamps", ""},
      {"show good.dbc Dash", 0,
       "  sends Lamps, 0x18FF1100 (419369216), 29-bit\n  receives Speed of Motion\n", ""},
      {"show good.dbc speedd", 1, "",
       "good.dbc: nothing is named \"speedd\"; did you mean Speed?\n"},
      {"show good.dbc Zzz", 1, "", "good.dbc: nothing is named \"Zzz\"\n"},
      {"show good.dbc 101", 1, "", "good.dbc: no message has the identifier 0x65 (101)\n"},
      {"rewrite good.dbc rewritten.dbc", 0, "", ""},
      {"show rewritten.dbc Lamps", 0, "Message Lamps, 0x18FF1100 (419369216), 29-bit, 1 byte\n",
       ""},
      {"rewrite bad.dbc kept.dbc", 1, "", "bad.dbc, line 2, error"},
      {"check kept.dbc", 1, "", "kept.dbc: database: not found, kept.dbc\n"},
      {"rewrite good.dbc missing/out.dbc", 1, "", "missing/out.dbc: database: could not write\n"},
      {"rewrite good.dbc", 2, "", "OUT"},
      {"", 2, "", "subcommand"},
      {"check", 2, "", "FILE"},
      {"show good.dbc Motion surplus", 2, "", "surplus"},
      {"dance", 2, "", "dance"},
      {"check --help", 0, "Exit codes:", ""},
      {"--version", 0, "zelk ", ""},
  };
  for (const auto& c : cases) {
    const ToolRun run = run_tool(c.arguments);
    EXPECT_EQ(run.exit_code, c.exit_code) << c.arguments;
    EXPECT_TRUE(contains(run.out, c.out)) << c.arguments << "\n" << run.out;
    EXPECT_TRUE(contains(run.err, c.err)) << c.arguments << "\n" << run.err;
    EXPECT_EQ(run.out.empty(), *c.out == '\0') << c.arguments << "\n" << run.out;
    EXPECT_EQ(run.err.empty(), *c.err == '\0') << c.arguments << "\n" << run.err;
  }
}

TEST(Tool, RewriteLosesNothing) {
  using std::filesystem::perms;
  const std::string unit(32, 'u');
  write_file("good.dbc", kSmall);
  write_file("cut.dbc", "BS_:\nBU_:\nBO_ 1 M: 8 Ostrel__XXX\n SG_ S : 0|8@1+ (1,0) [0|0] \"" +
                            unit + "x\" Ostrel__XXX\n");
  const std::filesystem::path fixed = write_file("fixed.dbc", one_message(1, {"Old : 0|8@1+"}));
  std::filesystem::permissions(fixed, perms::owner_write | perms::group_write | perms::others_write,
                               std::filesystem::perm_options::remove);
  const struct {
    const char* arguments;
    int exit_code;
    std::string told;  // on either stream
  } cases[] = {
      {"rewrite cut.dbc refused.dbc", 1, "refused.dbc: not written: names or units were cut"},
      {"check refused.dbc", 1, "not found"},
      {"rewrite --allow-cut cut.dbc out.dbc", 0, "cut.dbc: warning: names or units are longer"},
      {"show out.dbc S", 0, "unit \"" + unit + "\""},
      {"rewrite good.dbc fixed.dbc", 1, "fixed.dbc: the file is read-only\n"},
      {"show fixed.dbc Old", 0, "Signal Old"},
  };
  for (const auto& c : cases) {
    const ToolRun run = run_tool(c.arguments);
    EXPECT_EQ(run.exit_code, c.exit_code) << c.arguments;
    EXPECT_TRUE(contains(run.out + run.err, c.told.c_str())) << c.arguments << "\n"
                                                             << run.out << run.err;
  }
  std::filesystem::permissions(fixed, perms::owner_write, std::filesystem::perm_options::add);
}

TEST(Tool, OutputThatCannotBeWritten) {
  write_file("good.dbc", kSmall);
  for (const char* command : {"check good.dbc", "show good.dbc", "--help"}) {
    const ToolRun full = run_tool(command, Output::kRefused);
    EXPECT_EQ(full.exit_code, 1) << command;
    EXPECT_TRUE(contains(full.err, "zelk: cannot write the output")) << command;
  }
}

TEST(Tool, ClosedPipe) {
  std::string big = "BS_:\n\nBU_:\n\n";
  for (int i = 0; i < 2000; ++i)  // makes more output than a pipe holds
    big += "BO_ " + std::to_string(i) + " Message_" + std::to_string(i) + ": 8 Ostrel__XXX\n\n";
  write_file("big.dbc", big);
  EXPECT_EQ(run_tool("show big.dbc", Output::kClosedPipe).exit_code, 1);
}

TEST(Tool, BitMatrix) {
  const struct {
    const char* name;
    std::string file;
    const char* drawing;
  } cases[] = {
      {"Intel", one_message(2, {"Speed : 0|12@1+", "Gear : 12|3@1+"}),
       "  Layout:\n"
       "             7   6   5   4   3   2   1   0\n"
       "           +---+---+---+---+---+---+---+---+\n"
       "    byte 0 | A | A | A | A | A | A | A | A]|\n"
       "    byte 1 | . |[B | B | B]|[A | A | A | A |\n"
       "           +---+---+---+---+---+---+---+---+\n"
       "    A  Speed  byte 1 bit 3 to byte 0 bit 0\n"
       "    B  Gear   byte 1 bits 6 to 4\n"},
      {"Motorola with an overlap",
       one_message(2, {"Torque : 7|10@0-", "Ok : 11|4@0+", "Bad : 12|2@0+"}),
       "    byte 0 |[A | A | A | A | A | A | A | A |\n"
       "    byte 1 | A | A]| . |[C |[#]| B | B | B]|\n"
       "           +---+---+---+---+---+---+---+---+\n"
       "    # overlap of B, C in 1 bit\n"},
      {"longer than the frame", one_message(1, {"Wide : 4|8@1+"}),
       "    byte 0 | A | A | A | A]| . | . | . | . |\n"
       "           +---+---+---+---+---+---+---+---+\n"
       "    byte 1 |   |   |   |   |[A | A | A | A |  outside the data length\n"
       "           +---+---+---+---+---+---+---+---+\n"
       "    A  Wide  byte 1 bit 3 to byte 0 bit 4, beyond the data length\n"},
      {"no data", one_message(0, {}), "  Layout:\n    no data\n"},
      {"signal without data", one_message(0, {"Lost : 0|1@1+"}),
       "    byte 0 |   |   |   |   |   |   |   |[A]|  outside the data length\n"},
      {"long data", one_message(32767, {"Far : 56|1@1+", "End : 32767|1@1+"}),
       "    byte 7    | . | . | . | . | . | . | . |[A]|\n"
       "              ...\n"
       "    byte 4095 |[B]|"},
      {"multiplexed",
       one_message(1, {"Mux M : 0|2@1+", "X m1 : 2|4@1+", "Y m2 : 2|2@1+", "Z m1 : 6|2@1+"}),
       "  Layout for Mux = 1:\n"
       "             7   6   5   4   3   2   1   0\n"
       "           +---+---+---+---+---+---+---+---+\n"
       "    byte 0 |[D | D]|[B | B | B | B]|[A | A]|\n"
       "           +---+---+---+---+---+---+---+---+\n"
       "  Layout for Mux = 2:\n"
       "             7   6   5   4   3   2   1   0\n"
       "           +---+---+---+---+---+---+---+---+\n"
       "    byte 0 | . | . | . | . |[C | C]|[A | A]|\n"
       "           +---+---+---+---+---+---+---+---+\n"
       "    A  Mux  byte 0 bits 1 to 0, multiplexor\n"
       "    B  X    byte 0 bits 5 to 2, for Mux = 1\n"},
      {"multiplexor below a multiplexor",
       one_message(1, {"Top M : 0|2@1+", "Sub m3M : 2|2@1+", "Leaf m9 : 4|4@1+"},
                   "SG_MUL_VAL_ 100 Sub Top 3-3, 5-7;\nSG_MUL_VAL_ 100 Leaf Sub 0-1;\n"),
       "  Layout for Top = 3, 5..7, Sub = 0..1:\n"
       "             7   6   5   4   3   2   1   0\n"
       "           +---+---+---+---+---+---+---+---+\n"
       "    byte 0 |[C | C | C | C]|[B | B]|[A | A]|\n"},
      {"multiplexor missing", one_message(1, {"X m4 : 0|1@1+"}),
       "  Layout for (no multiplexor) = 4:\n"},
  };
  for (const auto& c : cases) {
    write_file("case.dbc", c.file);
    const ToolRun run = run_tool("show case.dbc M");
    EXPECT_EQ(run.exit_code, 0) << c.name << run.err;
    EXPECT_TRUE(contains(run.out, c.drawing)) << c.name << "\n" << run.out;
  }
}

TEST(Tool, ShowsWhatTheRecordsHold) {
  write_file("case.dbc", one_message(8, {"S : 0|8@1-"},
                                     "EV_ Lid: 0 [0|1] \"\" 0.5 7 DUMMY_NODE_OSTREL0 N;\n\n"
                                     "CM_ BO_ 100 \"two\nlines \x1B[31m\";\n"
                                     "BA_DEF_ BO_ \"Kind\" ENUM \"cyclic\",\"once\";\n"
                                     "BA_DEF_ BO_ \"VFrameFormat\" ENUM \"Standard\",\"J1939PG\";\n"
                                     "BA_DEF_DEF_ \"Kind\" \"cyclic\";\n"
                                     "BA_DEF_DEF_ \"VFrameFormat\" \"J1939PG\";\n"
                                     "BA_ \"Kind\" BO_ 100 1;\n"
                                     "VAL_ 100 S 1 \"on \\\"air\\\"\" 0 \"off\" ;\n"));
  const ToolRun run = run_tool("show case.dbc");
  EXPECT_EQ(run.exit_code, 0) << run.err;
  for (const char* expected :
       {"    comment: two\n             lines \\x1B[31m\n",
        "    attribute \"Kind\" = \"once\" (1)\n", "      value 1 = \"on \\\"air\\\"\"\n",
        "      layout: start bit 0, 8 bits, Intel, signed\n",
        "    value: initially 0.5, range 0 to 1\n",
        "  Attribute \"Kind\" of message: ENUM \"cyclic\", \"once\", default \"cyclic\"\n"})
    EXPECT_TRUE(contains(run.out, expected)) << expected << "in\n" << run.out;
  EXPECT_FALSE(contains(run.out, "PGN")) << "an 11-bit identifier is no parameter group";
}

TEST(Tool, ParameterGroups) {
  const std::string messages =
      "BS_:\n\nBU_:\n\nBO_ 2566844926 Broadcast: 8 Ostrel__XXX\n\nBO_ 2364211233 Addressed: 8 "
      "Ostrel__XXX\n\n";
  write_file("case.dbc", messages +
                             "BA_DEF_ BO_ \"VFrameFormat\" ENUM \"Standard\",\"J1939PG\";\n"
                             "BA_DEF_DEF_ \"VFrameFormat\" \"J1939PG\";\n");
  const ToolRun run = run_tool("show case.dbc");
  // 0x98FEF1FE and 0x8CEB0021
  EXPECT_TRUE(contains(run.out, "J1939: PGN 0xFEF1 (65265), priority 6, source any\n")) << run.out;
  EXPECT_TRUE(contains(
      run.out, "J1939: PGN 0xEB00 (60160), priority 3, destination 0x00 (0), source 0x21 (33)\n"))
      << run.out;
}

}  // namespace
