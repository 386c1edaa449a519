#include <gtest/gtest.h>

#include <string>

#include "support/files.hpp"
#include "support/paths.hpp"
#include "tools/run_tool.hpp"

namespace {

/// Units are in Windows-1252; the identifiers are 0x98FEF1FE and 0x8CEB0021.
const std::string kNetwork = bytes_of(ZELK_SOURCE_DIR "/tests/tools/list.dbc");

TEST(List, Tables) {
  write_file("n.dbc", kNetwork);
  const ToolCase cases[] = {
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
      {"list variables n.dbc", 0,
       "name  id  type     min  max  initial  unit  bytes  access  category  nodes\n"
       "Lid    7  integer    0    1      0.5  -     -         0x3  -         Dash\n"},
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
      {"list nodes " + longest + "a.dbc " + longest + "b.dbc --csv", 0,
       "database,name,category\r\n" + longest + ",Engine,\r\n" + longest.substr(2) +
           "_2,Engine,\r\n"},
      {"list nodes bad.dbc missing.dbc m.dbc --csv", 1, "database,name,category\r\nm,Engine,\r\n",
       "bad.dbc:3:5: error"},
      {"list nodes m.dbc m.dbc --count", 0, "1\n", "m.dbc: warning: named twice\n"},
      {"list nodes m.dbc defines.dbc --attribute Rack --csv", 0,
       "database,name,category,Rack\r\nm,Engine,,\r\n"},
      {"find Engine bad.dbc m.dbc n.dbc", 1, "m: node Engine\nn: node Engine\n", "bad.dbc:3:5"},
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
      {"find 2566844926 n.dbc", 0, broadcast},
      {"find --pgn 0xFEF1 n.dbc", 0, broadcast},
      {"find --j1939 0x0CEB0021 n.dbc", 0, addressed},
      {"find --pgn 100 n.dbc", 1, "", "zelk: no message is of the parameter group 0x64 (100)\n"},
      {"find --j1939 0x64 n.dbc", 1, "", "zelk: no message is of the J1939 frame 0x64 (100)\n"},
      {"find Motio n.dbc --json", 1, "[]\n",
       "zelk: nothing is named \"Motio\"; did you mean Motion?\n"},
      {"find Motion", 2, "", "FILE"},
      {"find --pgn 0x40000 n.dbc", 2, "", "0x3FFFF"},
      {"find --pgn 1 --j1939 1 n.dbc", 2, "", "excludes"},
      {"list tables n.dbc --comments", 2, "", "tables have no comments"},
      {"list messages n.dbc --attribute Cycel", 1, "",
       "zelk: messages have no attribute \"Cycel\""},
      {"list nodes n.dbc --json --csv", 2, "", "excludes"},
  };
  for (const ToolCase& c : cases) check(c);
}

}  // namespace
