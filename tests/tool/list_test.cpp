#include <gtest/gtest.h>

#include <string>

#include "tool_case.hpp"

namespace {

/// Units are in Windows-1252; the identifiers are 0x98FEF1FE and 0x8CEB0021.
constexpr const char* kNetwork =
    "BS_:\n\nBU_: Engine Dash\n\nVAL_TABLE_ Switch 1 \"on, \\\"air\\\"\" 0 \"off\" ;\n"
    "BO_ 2566844926 Broadcast: 8 Engine\n\nBO_ 2364211233 Addressed: 8 Ostrel__XXX\n\n"
    "BO_ 100 Motion: 2 Dash\n"
    " SG_ Page M : 0|4@1+ (1,0) [0|15] \"\" Ostrel__XXX\n"
    " SG_ Oil m1 : 7|8@0- (0.5,-40) [-40|2E+20] \"\xB0\x43\" Engine,Dash\n"
    " SG_ Air m2 : 8|8@1+ (1,0) [0|255] \"\x80\" Engine\n\n"
    "EV_ Lid: 0 [0|1] \"\" 0.5 7 DUMMY_NODE_OSTREL3 Dash;\n\n"
    "CM_ BO_ 100 \"two\nlines, \x1B[31m\";\n"
    "BA_DEF_ BO_ \"VFrameFormat\" ENUM \"Standard\",\"J1939PG\";\n"
    "BA_DEF_ BO_ \"Cycle\" INT 0 1000;\nBA_DEF_ SG_ \"Mask\" HEX 0 255;\n"
    "BA_DEF_REL_ BU_SG_REL_ \"Timeout\" INT 0 9;\n"
    "BA_DEF_DEF_ \"VFrameFormat\" \"J1939PG\";\nBA_DEF_DEF_ \"Cycle\" 50;\n"
    "BA_DEF_DEF_ \"Mask\" 255;\nBA_DEF_DEF_REL_ \"Timeout\" 0;\n"
    "BA_ \"VFrameFormat\" BO_ 100 0;\nBA_ \"Cycle\" BO_ 100 20;\nBA_ \"Mask\" SG_ 100 Oil 31;\n"
    "BA_REL_ \"Timeout\" BU_SG_REL_ Dash SG_ 100 Oil 5;\nVAL_ Lid 1 \"open\" ;\n"
    "SIG_GROUP_ 100 Air 1 : Oil Page;\n";

TEST(List, Tables) {
  write_file("n.dbc", kNetwork);
  const ToolCase cases[] = {
      {"list nodes n.dbc", 0, "name    category\nEngine  -\nDash    -\n"},
      {"list messages n.dbc --attribute Cycle --attribute VFrameFormat --where *o*", 0,
       "name               id  format  dlc  signals  category  transmitters  Cycle  VFrameFormat\n"
       "Broadcast  0x18FEF1FE  29-bit    8        0  -         Engine           50  J1939PG\n"
       "Motion          0x064  11-bit    2        3  -         Dash             20  Standard\n"},
      {"list signals n.dbc --attribute Mask --where \"M*.?i?\"", 0,
       "message  name  start  length  order     type      factor  offset  min    max  unit  "
       "multiplexor  selected_by  selected_for  receivers     signal_type  Mask\n"
       "Motion   Oil       7       8  Motorola  signed       0.5     -40  -40  2e+20  \u00B0C    "
       "no           Page         1             Engine, Dash  -            0x1F\n"
       "Motion   Air       8       8  Intel     unsigned       1       0    0    255  \u20AC     "
       "no           Page         2             Engine        -            0xFF\n"},
      {"list tables n.dbc", 0, "name    values\nSwitch  1=\"on, \\\"air\\\"\", 0=\"off\"\n"},
      {"list groups n.dbc", 0,
       "message  name  repetitions  signals\nMotion   Air             1  Oil, Page\n"},
      {"list variables n.dbc", 0,
       "name  id  type     min  max  initial  unit  bytes  access  category  nodes\n"
       "Lid    7  integer    0    1      0.5  -     -         0x3  -         Dash\n"},
      {"list descriptions n.dbc", 0, "message  name  value  text\n-        Lid       1  open\n"},
      {"list values n.dbc --where Mask --where Time*", 0,
       "name     value  type                      message  object  node\n"
       "Mask      0x1F  signal                    Motion   Oil     -\n"
       "Timeout      5  node and received signal  Motion   Oil     Dash\n"},
      {"list attributes n.dbc -i --where MASK --where vframe*", 0,
       "name          object   type  min  max  default  items\n"
       "VFrameFormat  message  ENUM    -    -  J1939PG  Standard, J1939PG\n"
       "Mask          signal   HEX     0  255  0xFF     -\n"},
      {"list attributes n.dbc --where MASK --count", 0, "0\n"},
  };
  for (const ToolCase& c : cases) check(c);
}

TEST(List, FormsForPrograms) {
  write_file("n.dbc", kNetwork);
  const ToolCase cases[] = {
      {"list signals n.dbc --json --where Oil", 0,
       "[\n"
       R"({"message":"Motion","name":"Oil","start":7,"length":8,"order":"Motorola",)"
       R"("type":"signed","factor":0.5,"offset":-40,"min":-40,"max":2e+20,"unit":")"
       "\u00B0C\","
       R"("multiplexor":false,"selected_by":"Page","selected_for":"1",)"
       R"("receivers":["Engine","Dash"],"signal_type":null})"
       "\n]\n"},
      {"list messages n.dbc --json --comments --where Mot*", 0,
       "[\n"
       R"({"name":"Motion","id":100,"format":"11-bit","dlc":2,"signals":3,"category":null,)"
       R"("transmitters":["Dash"],"comment":"two\nlines, \u001b[31m"})"
       "\n]\n"},
      {"list tables n.dbc --json", 0,
       "[\n"
       R"({"name":"Switch","values":[{"value":1,"text":"on, \"air\""},)"
       R"({"value":0,"text":"off"}]})"
       "\n]\n"},
      {"list categories n.dbc --json", 0, "[]\n"},
      {"list messages n.dbc --csv --comments --where Mot*", 0,
       "name,id,format,dlc,signals,category,transmitters,comment\r\n"
       "Motion,0x064,11-bit,2,3,,Dash,\"two\nlines, \\x1B[31m\"\r\n"},
      {"list tables n.dbc --csv", 0,
       "name,values\r\nSwitch,\"1=\"\"on, \\\"\"air\\\"\"\"\", 0=\"\"off\"\"\"\r\n"},
      {"find Lid n.dbc --json", 0,
       "[\n"
       R"({"database":"n","kind":"environment variable","name":"Lid","id":7,)"
       R"("type":"integer","min":0,"max":1,"initial":0.5,"unit":"","bytes":null,"access":3,)"
       R"("category":null,"nodes":["Dash"]})"
       "\n]\n"},
  };
  for (const ToolCase& c : cases) check(c);
}

TEST(List, SeveralDatabases) {
  const std::string small = "BS_:\n\nBU_: Engine\n\nBO_ 7 Small: 1 Engine\n\n";
  const std::string longest(32, 'n');
  write_file("n.dbc", small);
  std::filesystem::create_directories(write_file("m.dbc", small).parent_path() / "sub");
  write_file("sub/n.dbc", small);
  write_file(longest + "a.dbc", small);
  write_file(longest + "b.dbc", small);
  write_file("bad.dbc", "BS_:\nBU_: A\nBO_ nonsense\n");
  write_file("defines.dbc", "BS_:\nBU_:\nBA_DEF_ BU_ \"Rack\" INT 0 9;\nBA_DEF_DEF_ \"Rack\" 3;\n");
  const ToolCase cases[] = {
      {"list nodes n.dbc sub/n.dbc --csv", 0,
       "database,name,category\r\nn,Engine,\r\nn_2,Engine,\r\n"},
      {"list nodes " + longest + "a.dbc " + longest + "b.dbc --csv", 0,
       "database,name,category\r\n" + longest + ",Engine,\r\n" + longest.substr(2) +
           "_2,Engine,\r\n"},
      {"list nodes bad.dbc missing.dbc m.dbc --csv", 1, "database,name,category\r\nm,Engine,\r\n",
       "bad.dbc, line 2, error"},
      {"list nodes m.dbc m.dbc --count", 0, "1\n", "m.dbc: warning: named twice\n"},
      {"list nodes m.dbc defines.dbc --attribute Rack --csv", 0,
       "database,name,category,Rack\r\nm,Engine,,\r\n"},
      {"find Engine bad.dbc m.dbc n.dbc", 1, "m: node Engine\nn: node Engine\n", "bad.dbc, line 2"},
      {"list nodes bad.dbc --json", 1, "", "bad.dbc, line 2, error"},
  };
  for (const ToolCase& c : cases) check(c);
}

TEST(List, Finds) {
  write_file("n.dbc", kNetwork);
  const std::string broadcast =
      "n: message Broadcast: id 0x18FEF1FE, format 29-bit, dlc 8, signals 0, transmitters Engine\n";
  const std::string addressed =
      "n: message Addressed: id 0x0CEB0021, format 29-bit, dlc 8, signals 0\n";
  const ToolCase cases[] = {
      {"find \"Mo*.A?r\" n.dbc", 0,
       "n: signal Air: message Motion, start 8, length 8, order Intel, type unsigned, factor 1, "
       "offset 0, min 0, max 255, unit \u20AC, multiplexor no, selected_by Page, selected_for 2, "
       "receivers Engine\n"
       "n: signal group Air: message Motion, repetitions 1, signals Oil, Page\n"},
      {"find Cycle n.dbc", 0,
       "n: attribute Cycle: object message, type INT, min 0, max 1000, default 50\n"},
      {"find 0x18FEF1FE n.dbc", 0, broadcast},
      {"find 2566844926 n.dbc", 0, broadcast},
      {"find --pgn 0xFEF1 n.dbc", 0, broadcast},
      {"find --pgn 0xEB7F n.dbc", 0, addressed},
      {"find --j1939 0x18FEF133 n.dbc", 0, broadcast},
      {"find --j1939 0x0CEB0021 n.dbc", 0, addressed},
      {"find --pgn 100 n.dbc", 1, "", "zelk: no message is of the parameter group 0x64 (100)\n"},
      {"find --j1939 0x64 n.dbc", 1, "", "zelk: no message is of the J1939 frame 0x64 (100)\n"},
      {"find 101 n.dbc", 1, "", "zelk: no message has the identifier 0x65 (101)\n"},
      {"find Motion.Iol n.dbc", 1, "",
       "nothing is named \"Motion.Iol\"; did you mean Motion.Oil?\n"},
      {"find Motio n.dbc --json", 1, "[]\n",
       "zelk: nothing is named \"Motio\"; did you mean Motion?\n"},
      {"find Motion", 2, "", "FILE"},
      {"find --pgn 0x40000 n.dbc", 2, "", "0x3FFFF"},
      {"find --pgn 1 --j1939 1 n.dbc", 2, "", "excludes"},
      {"list tables n.dbc --attribute Cycle", 2, "", "tables have no attributes"},
      {"list tables n.dbc --comments", 2, "", "tables have no comments"},
      {"list messages n.dbc --attribute Cycel", 1, "",
       "zelk: messages have no attribute \"Cycel\""},
      {"list things n.dbc", 2, "", "things"},
      {"list nodes n.dbc --json --csv", 2, "", "excludes"},
  };
  for (const ToolCase& c : cases) check(c);
}

}  // namespace
