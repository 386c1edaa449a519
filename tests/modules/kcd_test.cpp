// The module for KCD, as a host uses it: files and databases in, databases and files out.

#include <limits>

#include "modules/conversions.hpp"

namespace {

constexpr char kHead[] = R"(<NetworkDefinition xmlns="http://kayak.2codeornot2code.org/1.0">)"
                         "\n";

/// A file with one bus, whose first message stands in line 3 and its content in line 4.
std::string with_message(const std::string& content,
                         const std::string& attributes = R"(id="1" name="M")") {
  return std::string(kHead) + "<Node id=\"1\" name=\"A\"/><Bus name=\"b\">\n<Message " +
         attributes + ">\n" + content + "</Message></Bus></NetworkDefinition>\n";
}

std::string with_signal(const std::string& attributes, const std::string& content = "") {
  return with_message("<Signal name=\"S\" " + attributes + ">" + content + "</Signal>");
}

/// The reported errors, and the statements of a database, from "BU_" on without empty lines.
std::string imported(const std::string& content, const char* option = "") {
  Conversions conversions(ZELK_KCD_MODULE, option);
  const std::string told = conversions.import(content);
  if (!conversions.name) return told;
  std::string text = conversions.written(conversions.name);
  text.erase(0, text.find("BU_:"));
  for (std::size_t at; (at = text.find("\n\n")) != std::string::npos;) text.erase(at, 1);
  return told + text;
}

/// The reported errors and the written file.
std::string exported(const std::string& database, const char* option = "") {
  Conversions conversions(ZELK_KCD_MODULE, option);
  return conversions.exported(conversions.opened(database));
}

TEST(Kcd, ImportsWhatItCanSay) {
  const std::string content = std::string("<?xml version='1.0'?><!DOCTYPE x>") + kHead + R"(
    <Document name="n" version="1.2">text</Document>
    <Node id="7" name="A"><VAR name="v"/></Node><Node id="B" name="B"/>
    <Bus name="main" baudrate="500000">
      <Message id="0x1F" name="Auto" interval="+20" triggered="false">
        <Notes>a &amp; <![CDATA[<b>]]></Notes>
        <Producer><NodeRef id="B"/><NodeRef id="7"/></Producer>
        <Signal name="Low" offset="6" length=" 3 "/>
        <Signal name="High" offset="17" length="11" endianess="big">
          <Consumer><NodeRef id="7"/></Consumer>
          <Value type="signed" slope="2.5e-1" intercept="-4" unit="&#176;C" min="-1" max="9"/>
          <LabelSet><LabelGroup name="g" from="2" to="3"/><Label name="l" value="-1"/></LabelSet>
        </Signal>
      </Message>
      <Message id="536870911" format="extended" name="Muxed" length="8" remote="true">
        <Multiplex name="Mux" offset="0" length="4">
          <LabelSet><Label name="top" value="4294967295"/></LabelSet>
          <MuxGroup count="9"><Signal name="X" offset="8" length="32"><Value type="single"/></Signal>
            </MuxGroup>
          <MuxGroup count="2"><Signal name="X" offset="8" length="32"><Value type="single"/></Signal>
            <Signal name="Y" offset="40"/></MuxGroup>
          <MuxGroup count="3"><Signal name="X" offset="8" length="32"><Value type="single"/></Signal>
            </MuxGroup>
        </Multiplex>
      </Message>
    </Bus></NetworkDefinition>)";
  EXPECT_EQ(imported(content),
            "database: format error, left out: 1 VAR element in Node\n"
            "database: format error, left out: 1 name attribute of Document\n"
            "database: format error, left out: 1 remote attribute of Message\n"
            R"(BU_: A B
BO_ 31 Auto: 5 B
 SG_ Low : 6|3@1+ (1,0) [0|0] "" Ostrel__XXX
 SG_ High : 17|11@0- (0.25,-4) [-1|9] ")"
            "\xB0"
            R"(C"  A
BO_ 2684354559 Muxed: 8 Ostrel__XXX
 SG_ Mux M : 0|4@1+ (1,0) [0|0] "" Ostrel__XXX
 SG_ X m2 : 8|32@1- (1,0) [0|0] "" Ostrel__XXX
 SG_ Y m2 : 40|1@1+ (1,0) [0|0] "" Ostrel__XXX
BO_TX_BU_ 31 : B,A;
CM_ "text";
CM_ BO_ 31 "a & <b>";
BA_DEF_  "DBName" STRING ;
BA_DEF_  "Baudrate" INT 0 2147483647;
BA_DEF_ BO_  "GenMsgCycleTime" INT 0 2147483647;
BA_DEF_DEF_  "DBName" "";
BA_DEF_DEF_  "Baudrate" 0;
BA_DEF_DEF_  "GenMsgCycleTime" 0;
BA_ "DBName" "main";
BA_ "Baudrate" 500000;
BA_ "GenMsgCycleTime" BO_ 31 20;
VAL_ 31 High 2 "g" 3 "g" -1 "l" ;
VAL_ 2684354559 Mux -1 "top" ;
SIG_VALTYPE_ 2684354559 X : 1;
SG_MUL_VAL_ 2684354559 X Mux 2-3, 9-9;
)");
}

constexpr char kDatabase[] = R"(VERSION "v"
BS_:
BU_: A B
VAL_TABLE_ T 0 "";
BO_ 2147483650 M: 12 B
 SG_ Plain : 15|16@0- (0.1,-40) [-40|1E+20] "m/s" A,B
 SG_ X m1 : 8|8@1+ (1,0) [0|0] "" Ostrel__XXX
 SG_ Mux M : 0|1@1+ (1,0) [0|0] "" Ostrel__XXX
 SG_ D : 0|64@1- (1,0) [0|0] "" Ostrel__XXX
BO_ 3 N: 1 A
 SG_ Other : 0|8@1+ (1,0) [0|0] "" Ostrel__XXX
EV_ V: 0 [0|0] "" 0 1 DUMMY_NODE_OSTREL0 A;
CM_ " ";
CM_ BU_ A "gone";
CM_ BO_ 2147483650 "<)"
                             "\x01\r\xE4"
                             R"(
>";
BA_DEF_ BO_ "GenMsgCycleTime" INT 0 0;
BA_DEF_ "DBName" STRING;
BA_DEF_ "Other" INT 0 0;
BA_DEF_DEF_ "GenMsgCycleTime" 100;
BA_DEF_DEF_ "DBName" "bus";
BA_ "Other" 1;
VAL_ 2147483650 X 4294967295 "\"top\"" ;
VAL_ 2147483650 Plain -1 "low" ;
SIG_VALTYPE_ 2147483650 D : 2;
SG_MUL_VAL_ 2147483650 X Mux 1-2,5-5;
)";

TEST(Kcd, ExportsWhatItCanHold) {
  std::string groups;
  for (const char* const count : {"1", "2", "5"}) {
    groups += std::string("        <MuxGroup count=\"") + count + R"(">
          <Signal name="X" offset="8" length="8">
            <LabelSet>
              <Label name="&quot;top&quot;" value="4294967295" />
            </LabelSet>
          </Signal>
        </MuxGroup>
)";
  }
  const std::string message =
      R"(    <Message id="0x2" name="M" length="12" format="extended" interval="100">
      <Notes>&lt;&#13;ä
&gt;</Notes>
      <Producer>
        <NodeRef id="2" />
      </Producer>
      <Multiplex name="Mux" offset="0">
)" + groups +
      R"(      </Multiplex>
      <Signal name="Plain" offset="15" length="16" endianess="big">
        <Consumer>
          <NodeRef id="1" />
          <NodeRef id="2" />
        </Consumer>
        <Value type="signed" slope="0.1" intercept="-40" unit="m/s" min="-40" max="1e+20" />
        <LabelSet>
          <Label name="low" value="-1" />
        </LabelSet>
      </Signal>
      <Signal name="D" offset="0" length="64">
        <Value type="double" />
      </Signal>
    </Message>
    <Message id="0x3" name="N" length="1" interval="100">
      <Producer>
        <NodeRef id="1" />
      </Producer>
      <Signal name="Other" offset="0" length="8" />
    </Message>
)";
  const std::string notes = "database: format error, left out: ";
  const std::string expected = notes + "1 attribute definition\n" + notes + "1 attribute value\n" +
                               notes + "1 environment variable\n" + notes + "1 node comment\n" +
                               notes + "1 value table\n" + notes +
                               "1 character that XML forbids\n" +
                               R"(<?xml version="1.0" encoding="UTF-8"?>
<NetworkDefinition xmlns="http://kayak.2codeornot2code.org/1.0">
  <Document version="v">&#32;</Document>
  <Node id="1" name="A" />
  <Node id="2" name="B" />
  <Bus name="bus">
)" + message + "  </Bus>\n</NetworkDefinition>\n";
  EXPECT_EQ(exported(kDatabase), expected);
}

// What was exported comes back the same; only multiplexors have moved to the front.
TEST(Kcd, RoundTrip) {
  const std::string file = exported(kDatabase, "other");
  const std::string back = imported(file.substr(file.find("<?xml")));
  for (const char* const statement :
       {"BU_: A B\n", "BO_ 2147483650 M: 12 B\n", "-40|1E+20] \"m/s\"  A,B\n", "CM_ \" \";\n",
        "CM_ BO_ 2147483650 \"<\r\xE4\n>\";\n", "BA_ \"DBName\" \"other\";\n",
        "BA_ \"GenMsgCycleTime\" BO_ 2147483650 100;\n", "X -1 \"\\\"top\\\"\" ;\n", "D : 2;\n",
        "SG_MUL_VAL_ 2147483650 X Mux 1-2, 5-5;\n"}) {
    EXPECT_NE(back.find(statement), std::string::npos) << statement << back;
  }
}

TEST(Kcd, RefusesFaultyFiles) {
  const std::string kGroups = R"(<Multiplex name="X" offset="0"><MuxGroup count="1">)";
  const std::string kAgain = R"(</MuxGroup><MuxGroup count="1">)";
  const std::string kEnd = "</MuxGroup></Multiplex>";
  const std::string kS = R"(<Signal name="S" offset="1"/>)";
  const struct {
    std::string content;
    const char* error;  ///< behind "database: "
  } cases[] = {
      {"<a/>", "line 1, a: the root is not NetworkDefinition"},
      {"<!DOCTYPE a [<!ENTITY b \"c\">]><a/>", "a DOCTYPE with declarations"},
      {with_message("") + "<b/>", "line 5, no well-formed XML: b is a second root"},
      {with_message("\n&#0;"), "line 5, no well-formed XML: a reference to no character"},
      {with_message("<Notes>\xE4</Notes>"), "line 4, a text of Notes is no UTF-8"},
      {with_message("", R"(id="0x800" name="M")"), "line 3, Message \"M\": id=\"0x800\" is no"},
      {with_message("", R"(id="1" name="INT")"),
       "line 3, Message \"INT\": name=\"INT\" is no name"},
      {with_message("<Producer><NodeRef id='2'/></Producer>"), "no node has the id \"2\""},
      {with_message("</Message><Message id='0x1' name='N'>"), "another message has this id"},
      {with_signal("length='8'"),
       "line 4, Signal \"S\" in Message \"M\": attribute \"offset\" is missing"},
      {with_signal("offset='0' length='abc'"), "length=\"abc\" is no whole number from 1 to 512"},
      {with_signal("offset='505' length='8'"), "ends behind byte 64"},
      {with_signal("offset='504' length='9' endianess='big'"), "ends behind byte 64"},
      {with_signal("offset='0' offset='1'"), "attribute \"offset\" comes twice"},
      {with_signal("offset='0'", "<Value slope='1e999'/>"),
       "Value in Signal \"S\" in Message \"M\": slope=\"1e999\" is no number, or out of range"},
      {with_signal("offset='0'", "<Value/><Value/>"), "Value comes twice"},
      {with_signal("offset='0'", "<LabelSet><LabelGroup name='' from='0' to='256'/></LabelSet>"),
       "from 0 to 256 are more than 256 values"},
      {with_message(kS + kS), "another signal of the message has this name"},
      {with_message(kGroups + "<Multiplex/>" + kEnd), "a Multiplex in a Multiplex"},
      {with_message(kGroups + kS + kAgain + kS + kEnd), "the signal comes twice for count 1"},
      {with_message(kGroups + kS + kAgain + "<Signal name='S' offset='2'/>" + kEnd),
       "another MuxGroup has this signal with other properties"},
  };
  for (const auto& c : cases) {
    EXPECT_NE(imported(c.content).find(c.error), std::string::npos) << c.content << "\n"
                                                                    << imported(c.content);
  }
}

sigblk& signal_of(msgblk& message, int position) {
  sigblk* signal = message.signals;
  while (position-- > 0) signal = signal->next;
  return *signal;
}

TEST(Kcd, LeavesOutWhatItCannotHold) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const std::string kWhole = "M Plain X Mux D";
  enum { kPlain, kX, kMux, kD };  // positions of the signals
  const struct {
    void (*change)(msgblk& message);
    const char* left_out;
    std::string gone;  ///< names of messages and signals
  } cases[] = {
      {[](msgblk& m) { m.id = 0xC0000000; }, "1 message with an identifier of more than 11 bits",
       kWhole},
      {[](msgblk& m) { m.id = 0x800; }, "1 message with an identifier of more than 11 bits",
       kWhole},
      {[](msgblk& m) { m.dlc = 65; }, "1 message of more than 64 data bytes", kWhole},
      {[](msgblk& m) { m.next->id = m.id; }, "1 message with the identifier of another one", "N"},
      {[](msgblk& m) { signal_of(m, kD).length = 0; }, "1 signal without bits", "D"},
      {[](msgblk& m) { signal_of(m, kD).start_bit = 449; }, "1 signal ending behind byte 64", "D"},
      {[](msgblk& m) { signal_of(m, kD).factor = kInfinity; }, "1 signal with a factor or", "D"},
      {[](msgblk& m) { signal_of(m, kPlain).maximum = kInfinity; }, "1 range with a bound", ""},
      {[](msgblk& m) { signal_of(m, kD).name[0] = 'X'; }, "1 signal with the name of another", "D"},
      {[](msgblk& m) { signal_of(m, kMux).length = 0; }, "1 signal with a multiplexor that",
       "X Mux"},
      {[](msgblk& m) { signal_of(m, kX).mux_signal = m.next->signals; }, "a multiplexor that", "X"},
      {[](msgblk& m) { signal_of(m, kX).mux_signal = nullptr; }, "a multiplexor that is not", "X"},
      {[](msgblk& m) { signal_of(m, kX).mux_ranges->low = 9; }, "", ""},  // 5 is left
      {[](msgblk& m) { signal_of(m, kX).mux_ranges->high = 257; }, "1 signal selected by more",
       "X"},
      {[](msgblk& m) { signal_of(m, kX).mux_ranges->high = UINT32_MAX; }, "by more than 256", "X"},
      {[](msgblk& m) { signal_of(m, kMux).mux_signal = &signal_of(m, kD); },
       "1 selection of a multiplexor by another one", ""},
  };
  for (const auto& c : cases) {
    Conversions conversions(ZELK_KCD_MODULE);
    const char* const db = conversions.opened(kDatabase);
    c.change(*conversions.manager.GetDatabase(db)->messages);
    const std::string file = conversions.exported(db);
    EXPECT_NE(file.find(c.left_out), file.npos) << file;
    for (const std::string name : {"M", "N", "Plain", "X", "Mux", "D"}) {
      const bool is_gone = (" " + c.gone + " ").find(" " + name + " ") != std::string::npos;
      EXPECT_EQ(file.find(" name=\"" + name + '"') == file.npos, is_gone) << name << file;
    }
    EXPECT_EQ(conversions.import(file.substr(file.find("<?xml"))), "");
  }
}

TEST(Kcd, ChoosesABus) {
  const auto buses = [](const std::string& a, const std::string& b) {
    return std::string(kHead) + R"(<Node id="1" name="A"/><Node id="2" name="B"/><Bus name="a">)" +
           a + R"(</Bus><Bus name="b">)" + b + "</Bus></NetworkDefinition>";
  };
  const std::string m =
      R"(<Message id="1" name="M"><Producer><NodeRef id="2"/></Producer></Message>)";
  const std::string kTaken = "left out: 1 Node element of other buses\nBU_: B\nBO_ 1 M: 0 B\n";
  const struct {
    std::string content;
    const char* option;
    std::string expected;
  } cases[] = {
      {buses("", m), "", kTaken},
      {buses(m, m), "b", kTaken},
      {buses(m, ""), "b", "left out: 2 Node elements of other buses\nBU_:\nBA_DEF_"},
      {buses(m, m), "", "the option has to name one of the buses \"a\", \"b\""},
      {buses(m, m), "c", "no bus is named \"c\"; the buses are \"a\", \"b\""},
  };
  for (const auto& c : cases) {
    EXPECT_NE(imported(c.content, c.option).find(c.expected), std::string::npos)
        << imported(c.content, c.option);
  }
}

// Texts are Windows-1252 where they can be and would be taken for that again, else UTF-8.
TEST(Kcd, Encodings) {
  const auto notes = [](const std::string& text) {
    return with_message("<Notes>" + text + "</Notes>");
  };
  std::string utf16 = "\xFF\xFE";
  for (const char c : notes("#"))
    utf16 += c == '#' ? std::string("\xB1\x03") : std::string{c, '\0'};
  const struct {
    std::string content, comment;
  } cases[] = {
      {notes("\u00E4"), "\xE4"},
      {notes("\u03B1"), "\u03B1"},
      {notes("\u00C3\u00A4"), "\u00C3\u00A4"},
      {"<?xml version='1.0' encoding='ISO-8859-1'?>" + notes("\xE4"), "\xE4"},
      {utf16, "\u03B1"},
  };
  for (const auto& c : cases) {
    EXPECT_NE(imported(c.content).find("BO_ 1 \"" + c.comment + "\";"), std::string::npos)
        << imported(c.content);
  }
}

TEST(Kcd, SurvivesHostileFiles) {
  const std::string whole = with_signal("offset='0'", "<Notes>&#176;</Notes>");
  for (std::size_t size = 0; size + 1 < whole.size(); ++size) {
    EXPECT_NE(imported(whole.substr(0, size)).find("format error in converted file"),
              std::string::npos)
        << size;
  }
  std::string deep;
  for (int i = 0; i < 1000000; ++i) deep += "<a>";
  EXPECT_NE(imported(deep).find("no well-formed XML"), std::string::npos);
  for (int i = 0; i < 1000000; ++i) deep += "</a>";
  EXPECT_NE(imported(with_message(deep)).find("left out: 1 a element in Message"),
            std::string::npos);
}

}  // namespace
