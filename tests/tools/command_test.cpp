#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tools/run_tool.hpp"

namespace {

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
  const ToolCase cases[] = {
      {"check good.dbc", 0,
       "good.dbc: ok, 2 nodes, 2 messages, 2 signals, 0 environment variables, 0 value tables, 0 "
       "attribute definitions\n"},
      {"check Gr\u00F6\u00DFe_\u901F\u5EA6.dbc", 0, "Gr\u00F6\u00DFe_\u901F\u5EA6.dbc: ok"},
      {"show good.dbc Motion", 0, "Message Motion, 0x64 (100), 11-bit, 8 bytes\n"},
      {"show good.dbc 0x18FF1100", 0, "Message Lamps, 0x18FF1100 (419369216), 29-bit, 1 byte\n"},
      {"show good.dbc \"Mo*.S?eed\"", 0, "Signal Speed of message Motion, 0x64"},
      {"show good.dbc Motion --svg", 0, "<title>Bit layout of message Motion</title>"},
      {"show good.dbc Speed --svg", 1, "", "good.dbc: no message is named \"Speed\""},
      {"show good.dbc --svg", 2, "", "--svg requires OBJECT"},
      {"show good.dbc Motion.Spede", 1, "", "did you mean Motion.Speed?\n"},
      {"show good.dbc 101", 1, "", "good.dbc: no message has the identifier 0x65 (101)\n"},
      {"rewrite bad.dbc kept.dbc", 1, "", "bad.dbc: cannot be read; zelk repair mends"},
      {"check kept.dbc m\u00E4ngel.dbc", 2, "",
       "kept.dbc: database: not found, kept.dbc\nm\u00E4ngel.dbc: database: not found"},
      {"rewrite good.dbc missing/out.dbc", 1, "", "missing/out.dbc: could not be written"},
      {"", 2, "", "subcommand"},
      {"show good.dbc Motion surplus", 2, "", "surplus"},
      {"rewrite good.dbc out.kcd", 2, "", "OUT: \"out.kcd\" is no DBC file"},
      {"dance", 2, "", "zelk: there is no subcommand \"dance\"\nRun with --help"},
      {"shwo good.dbc", 2, "", "there is no subcommand \"shwo\"; did you mean show?"},
      {"--version", 0, "zelk "},
  };
  for (const ToolCase& c : cases) check_parts(c);
}

TEST(Tool, RewriteLosesNothing) {
  using std::filesystem::perms;
  const std::string unit(32, 'u');
  write_file("good.dbc", kSmall);
  write_file("cut.dbc", "BS_:\nBU_:\nBO_ 1 M: 8 Ostrel__XXX\n SG_ S : 0|8@1+ (1,0) [0|0] \"" +
                            unit + "x\" Ostrel__XXX\n");
  write_file("long.dbc",
             "BS_:\nBU_:\nBO_ 1 M: 8 Ostrel__XXX\n SG_ S : 0|48@1+ (0.1234567890123456,0) "
             "[0|281474976710655] \"\" Ostrel__XXX\n"
             "SGTYPE_ T : 8@1+ (1,1234567890123456) [0|0] \"\" 0;\n");
  const std::filesystem::path fixed = write_file("fixed.dbc", one_message(1, {"Old : 0|8@1+"}));
  std::filesystem::permissions(fixed, perms::owner_write | perms::group_write | perms::others_write,
                               std::filesystem::perm_options::remove);
  const ToolCase cases[] = {
      {"rewrite cut.dbc refused.dbc", 1, "", "refused.dbc: not written: names or units were cut"},
      {"check refused.dbc", 2, "", "not found"},
      {"rewrite --allow-cut cut.dbc out.dbc", 0, "", "cut.dbc: warning: names or units are longer"},
      {"show out.dbc S", 0, "unit \"" + unit + "\""},
      {"rewrite good.dbc fixed.dbc", 1, "", "fixed.dbc: could not be written: "},
      {"show fixed.dbc Old", 0, "Signal Old"},
      {"rewrite long.dbc refused.dbc", 1, "",
       "refused.dbc: signal M.S: factor 0.1234567890123456 would become 0.12345678901235\n"
       "refused.dbc: signal M.S: max 281474976710655 would become 281474976710660\n"
       "refused.dbc: signal type T: offset 1234567890123456 would become 1234567890123500\n"
       "refused.dbc: not written: a file keeps 14 digits"},
      {"check refused.dbc", 2, "", "not found"},
      {"rewrite long.dbc out.dbc --allow-rounding", 0, "",
       "out.dbc: warning: signal M.S: factor 0.1234567890123456 becomes 0.12345678901235\n"},
      {"show out.dbc S", 0, "range 0 to 281474976710660"},
  };
  for (const ToolCase& c : cases) check_parts(c);
  std::filesystem::permissions(fixed, perms::owner_write, std::filesystem::perm_options::add);
}

/// @param is_1252  texts are in Windows-1252, else in UTF-8
std::string with_umlauts(bool is_1252) {
  const std::string cool = is_1252 ? "k\xFChl" : "k\u00FChl";
  const std::string size = is_1252 ? "Gr\xF6\xDF" : "Gr\u00F6\u00DF";
  return "BS_:\nBU_: N\nBO_ 1 M: 1 N\n SG_ T : 0|8@1+ (1,0) [0|9] \"" +
         std::string(is_1252 ? "\x80" : "\u20AC") + "\" N\nCM_ BO_ 1 \"" + cool +
         "\";\nBA_DEF_ BO_ \"" + size + "\" ENUM \"a\",\"" + cool + "\";\nBA_DEF_DEF_ \"" + size +
         "\" \"a\";\nBA_ \"" + size + "\" BO_ 1 1;\nVAL_ 1 T 1 \"" + cool + "\" ;\n";
}

TEST(Tool, SpeaksUtf8WhateverTheFileHolds) {
  write_file("u.dbc", with_umlauts(false));
  write_file("w.dbc", with_umlauts(true));
  write_file("log", "can0 001#01\n");
  write_file("bad.dbc", "BS_:\nBU_:\nBA_ \"Gr\xF6\xDF\" 1;\n");
  for (const std::string file : {"u.dbc", "w.dbc"}) {
    const ToolCase cases[] = {
        {"show " + file + " Gr\u00F6?", 0,
         "Attribute \"Gr\u00F6\u00DF\" of message: ENUM \"a\", \"k\u00FChl\""},
        {"list messages " + file + " --csv --comments --attribute Gr\u00F6\u00DF", 0,
         ",Gr\u00F6\u00DF,comment\r\nM,0x001,11-bit,1,1,,N,k\u00FChl,k\u00FChl\r\n"},
        {"find Gr\u00F6\u00DFe " + file, 1, "", "did you mean Gr\u00F6\u00DF?"},
        {"diff " + file + " u.dbc --json", 0, "[]\n"},
        {"decode " + file + " --log log", 0, "M T=1 \u20AC \"k\u00FChl\"\n"},
        {"encode " + file + " M T=k\u00FChl", 0, "001#01\n"},
    };
    for (const ToolCase& c : cases) check_parts(c);
  }
  check_parts({"check bad.dbc --verbose", 1, "undefined attribute, line 2, Gr\u00F6\u00DF\n"});
}

TEST(Tool, OutputThatCannotBeWritten) {
  std::string big = "BS_:\n\nBU_:\n\n";
  for (int i = 0; i < 2000; ++i)  // makes more output than a pipe holds
    big += "BO_ " + std::to_string(i) + " Message_" + std::to_string(i) + ": 8 Ostrel__XXX\n\n";
  write_file("big.dbc", big);
  EXPECT_EQ(run_tool("show big.dbc", Output::kClosedPipe).exit_code, 1);
  for (const char* command : {"check big.dbc", "show big.dbc", "--help"})
    check_parts({command, 1, "", "zelk: cannot write the output"},
                run_tool(command, Output::kRefused));
}

TEST(Tool, Shows) {
  const std::string group_format =
      "BA_DEF_ BO_ \"VFrameFormat\" ENUM \"Standard\",\"J1939PG\";\n"
      "BA_DEF_DEF_ \"VFrameFormat\" \"J1939PG\";\n";
  const struct {
    std::string file;
    std::vector<const char*> parts;
  } cases[] = {
      {one_message(2, {"Speed : 0|12@1+", "Gear : 12|3@1+"}),
       {"  Layout:\n"
        "             7   6   5   4   3   2   1   0\n"
        "           +---+---+---+---+---+---+---+---+\n"
        "    byte 0 | A | A | A | A | A | A | A | A]|\n"
        "    byte 1 | . |[B | B | B]|[A | A | A | A |\n"
        "           +---+---+---+---+---+---+---+---+\n"
        "    A  Speed  byte 1 bit 3 to byte 0 bit 0\n"
        "    B  Gear   byte 1 bits 6 to 4\n"}},
      {one_message(2, {"Torque : 7|10@0-", "Ok : 11|4@0+", "Bad : 12|2@0+"}),
       {"    byte 0 |[A | A | A | A | A | A | A | A |\n"
        "    byte 1 | A | A]| . |[C |[#]| B | B | B]|\n"
        "           +---+---+---+---+---+---+---+---+\n"
        "    # overlap of B, C in 1 bit\n"}},
      {one_message(1, {"Wide : 4|8@1+"}),
       {"    byte 0 | A | A | A | A]| . | . | . | . |\n",
        "    byte 1 |   |   |   |   |[A | A | A | A |  outside the data length\n",
        "    A  Wide  byte 1 bit 3 to byte 0 bit 4, beyond the data length\n"}},
      {one_message(32767, {"Far : 56|1@1+", "End : 32767|1@1+"}),
       {"    byte 7    | . | . | . | . | . | . | . |[A]|\n              ...\n    byte 4095 |[B]|"}},
      {one_message(1, {"Mux M : 0|2@1+", "X m1 : 2|4@1+", "Y m2 : 2|2@1+", "Z m1 : 6|2@1+"}),
       {"  Layout for Mux = 1:\n", "    byte 0 |[D | D]|[B | B | B | B]|[A | A]|\n",
        "  Layout for Mux = 2:\n", "    byte 0 | . | . | . | . |[C | C]|[A | A]|\n",
        "    A  Mux  byte 0 bits 1 to 0, multiplexor\n    B  X    byte 0 bits 5 to 2, for Mux = "
        "1\n"}},
      {one_message(1, {"Top M : 0|2@1+", "Sub m3M : 2|2@1+", "Leaf m9 : 4|4@1+"},
                   "SG_MUL_VAL_ 100 Sub Top 3-3, 5-7;\nSG_MUL_VAL_ 100 Leaf Sub 0-1;\n"),
       {"  Layout for Top = 3, 5..7, Sub = 0..1:\n",
        "    byte 0 |[C | C | C | C]|[B | B]|[A | A]|\n"}},
      {one_message(8, {"S : 0|8@1-"},
                   "EV_ Lid: 0 [0|1] \"\" 0.5 7 DUMMY_NODE_OSTREL0 N;\n\n"
                   "CM_ BO_ 100 \"two\nlines \x1B[31m\";\n"
                   "BA_DEF_ BO_ \"Kind\" ENUM \"cyclic\",\"once\";\n"
                   "BA_DEF_DEF_ \"Kind\" \"cyclic\";\nBA_ \"Kind\" BO_ 100 1;\n"
                   "VAL_ 100 S 1 \"on \\\"air\\\"\" 0 \"off\" ;\n"),
       {"Message M, 0x64 (100), 11-bit, 8 bytes\n  transmitter: N\n  attribute \"Kind\" = \"once\" "
        "(1)\n  comment: two\n           lines \\x1B[31m\n",
        "  layout: start bit 0, 8 bits, Intel, signed\n", "  value 1 = \"on \\\"air\\\"\"\n",
        "  value: initially 0.5, range 0 to 1\n",
        "Attribute \"Kind\" of message: ENUM \"cyclic\", \"once\", default \"cyclic\"\n"}},
      // 0x98FEF1FE and 0x8CEB0021; an 11-bit identifier is no parameter group
      {"BS_:\n\nBU_:\n\nBO_ 2566844926 Broadcast: 0 Ostrel__XXX\n\nBO_ 2364211233 Addressed: 0 "
       "Ostrel__XXX\n\nBO_ 1 Short: 0 Ostrel__XXX\n\n" +
           group_format,
       {"  J1939: PGN 0xFEF1 (65265), priority 6, source any\n",
        "  J1939: PGN 0xEB00 (60160), priority 3, destination 0x00 (0), source 0x21 (33)\n",
        "Message Short, 0x1 (1), 11-bit, 0 bytes\n  transmitter: none\n"}},
  };
  for (const auto& c : cases) {
    write_file("case.dbc", c.file);
    for (const char* part : c.parts) check_parts({"show case.dbc \"*\"", 0, part});
  }
}

}  // namespace
