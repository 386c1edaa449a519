// The module for KCD, as a host uses it: files and databases in, databases and files out.

#include <gmock/gmock.h>

#include <limits>

#include "modules/conversions.hpp"
#include "support/paths.hpp"

namespace {

using testing::AllOf;
using testing::HasSubstr;

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

/// What both formats hold, as each of them is written.
constexpr char kKcd[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<NetworkDefinition xmlns="http://kayak.2codeornot2code.org/1.0">
  <Document version="1.2">&#32;</Document>
  <Node id="1" name="A" />
  <Node id="2" name="B" />
  <Bus name="main" baudrate="500000">
    <Message id="0x1F" name="Plain" length="13" interval="20">
      <Notes>&lt;&#13;ä
&gt;</Notes>
      <Producer>
        <NodeRef id="2" />
        <NodeRef id="1" />
      </Producer>
      <Signal name="Low" offset="6" length="3" />
      <Signal name="High" offset="17" length="11" endianess="big">
        <Consumer>
          <NodeRef id="1" />
        </Consumer>
        <Value type="signed" slope="0.1" intercept="-4" unit="m/s" min="-1" max="1e+20" />
        <LabelSet>
          <Label name="&quot;l&quot;" value="-1" />
        </LabelSet>
      </Signal>
      <Signal name="D" offset="40" length="64">
        <Value type="double" />
      </Signal>
    </Message>
    <Message id="0x1FFFFFFF" name="Muxed" length="8" format="extended">
      <Multiplex name="Mux" offset="0">
        <MuxGroup count="2">
          <Signal name="X" offset="8">
            <LabelSet>
              <Label name="top" value="4294967295" />
            </LabelSet>
          </Signal>
        </MuxGroup>
        <MuxGroup count="3">
          <Signal name="X" offset="8">
            <LabelSet>
              <Label name="top" value="4294967295" />
            </LabelSet>
          </Signal>
          <Signal name="Y" offset="40" />
        </MuxGroup>
        <MuxGroup count="9">
          <Signal name="Y" offset="40" />
        </MuxGroup>
      </Multiplex>
    </Message>
  </Bus>
</NetworkDefinition>
)";

constexpr char kDbc[] = R"(BU_: A B
BO_ 31 Plain: 13 B
 SG_ Low : 6|3@1+ (1,0) [0|0] "" Ostrel__XXX
 SG_ High : 17|11@0- (0.1,-4) [-1|1E+20] "m/s"  A
 SG_ D : 40|64@1- (1,0) [0|0] "" Ostrel__XXX
BO_ 2684354559 Muxed: 8 Ostrel__XXX
 SG_ Mux M : 0|1@1+ (1,0) [0|0] "" Ostrel__XXX
 SG_ X m2 : 8|1@1+ (1,0) [0|0] "" Ostrel__XXX
 SG_ Y m3 : 40|1@1+ (1,0) [0|0] "" Ostrel__XXX
BO_TX_BU_ 31 : B,A;
CM_ " ";
CM_ BO_ 31 "<)"
                        "\r\xE4\n"
                        R"(>";
BA_DEF_  "DBName" STRING ;
BA_DEF_  "Baudrate" INT 0 2147483647;
BA_DEF_ BO_  "GenMsgCycleTime" INT 0 2147483647;
BA_DEF_DEF_  "DBName" "";
BA_DEF_DEF_  "Baudrate" 0;
BA_DEF_DEF_  "GenMsgCycleTime" 0;
BA_ "DBName" "main";
BA_ "Baudrate" 500000;
BA_ "GenMsgCycleTime" BO_ 31 20;
VAL_ 31 High -1 "\"l\"" ;
VAL_ 2684354559 X -1 "top" ;
SIG_VALTYPE_ 31 D : 2;
SG_MUL_VAL_ 2684354559 X Mux 2-3;
SG_MUL_VAL_ 2684354559 Y Mux 3-3, 9-9;
)";

TEST(Kcd, ThereAndBack) {
  EXPECT_EQ(imported(kKcd), kDbc);
  EXPECT_EQ(exported(std::string("VERSION \"1.2\"\nBS_:\n") + kDbc), kKcd);
}

TEST(Kcd, ImportsWhatItCanSay) {
  const auto notes = [](const std::string& text) {
    return with_message("<Notes>" + text + "</Notes>");
  };
  const struct {
    std::string content, statement;
  } cases[] = {
      {with_message("", "id='0x1F' name='M' triggered='false'"), "BU_: A\nBO_ 31 M: 0 Ostrel"},
      {with_message("", "id='1' name='M' remote='true'"), "left out: 1 remote attribute of Mess"},
      {with_message("<VAR/><VAR/>"), "left out: 2 VAR elements in Message\n"},
      {with_message("text"), "left out: 1 text in Message\n"},
      {with_message("<Multiplex name='X' offset='0'><MuxGroup count='1'/></Multiplex>"),
       "left out: 1 MuxGroup element without signals\n"},
      {with_message("", "id='0X1f' name='M' xml:lang='en' xsi:a='b' xmlns:q='r'"), "BO_ 31 M: 0"},
      {with_signal("offset='0'", "<Value max='+1' min=' -1 '/>"), "(1,0) [-1|1]"},
      {with_signal("offset='17' length=' 3 '"), "M: 3 Ostrel__XXX\n SG_ S : 17|3@1+"},
      {with_signal("offset='0'", "<Value type='single' slope='+2.5e-1'/>"), "@1- (0.25,0) [0|0]"},
      {with_signal("offset='0'", "<LabelSet><LabelGroup name='g' from='2' to='3'/></LabelSet>"),
       "VAL_ 1 S 2 \"g\" 3 \"g\" ;"},
      // Texts are Windows-1252 where they can be and would be taken for that again, else UTF-8.
      {notes("a &amp; <![CDATA[<b>]]>&#228;&#xe4;&#xE4;"), " BO_ 1 \"a & <b>\xE4\xE4\xE4\";"},
      {notes("\u03B1"), " BO_ 1 \"\u03B1\";"},
      {notes("\u00C3\u00A4"), " BO_ 1 \"\u00C3\u00A4\";"},
      {"<?xml version='1.0' encoding='ISO-8859-1'?>" + notes("\xE4"), " BO_ 1 \"\xE4\";"},
      // Only texts and values have references.
      {"<?r &#0; ?><!-- &#0; >\" --><!---->" + notes("<![CDATA[&#0;]]><!--&#0;--><![CDATA[]]>"),
       " BO_ 1 \"&#0;\";"},
  };
  for (const auto& c : cases) EXPECT_THAT(imported(c.content), HasSubstr(c.statement));
  std::string kinds;
  for (int i = 0; i < 120; ++i) kinds += "<a" + std::to_string(i) + "/>";
  EXPECT_THAT(imported(with_message(kinds)), HasSubstr("left out: 20 things besides\n"));
}

/// In units of so many bytes, each "@" as characters of one, two, three and four bytes in UTF-8.
std::string encoded(const std::string& text, std::size_t size, bool is_big) {
  std::u32string characters(1, U'\uFEFF');
  for (const char c : text) {
    if (c == '@') {
      characters += U"a\u00E4\u20AC\U0001F600";
    } else {
      characters += static_cast<unsigned char>(c);
    }
  }
  std::string bytes;
  const auto put = [&](std::uint32_t unit) {
    for (std::size_t i = 0; i < size; ++i)
      bytes += static_cast<char>(unit >> (8 * (is_big ? size - 1 - i : i)));
  };
  for (const std::uint32_t c : characters) {
    const bool is_pair = size == 2 && c > 0xFFFF;
    if (is_pair) put(0xD7C0 + (c >> 10));
    put(is_pair ? 0xDC00 + (c & 0x3FF) : c);
  }
  return bytes;
}

// Offsets of the parser are those of the file in UTF-8.
TEST(Kcd, TellsLinesInAllEncodings) {
  std::string notes = "<Notes>";
  for (int i = 0; i < 100; ++i) notes += '@';
  notes += "</Notes>\n";
  const std::string missing = with_message(notes + "<Signal/>\n\n\n\n");
  const std::string damaged = with_message(notes + "</Signal>\n\n\n\n");
  const std::string reference = with_message(notes + "&#x0;\n\n\n\n");
  for (const std::size_t size : {2, 4}) {
    for (const bool is_big : {false, true}) {
      EXPECT_THAT(imported(encoded(missing, size, is_big)), HasSubstr("line 5, Signal in Message"));
      EXPECT_THAT(imported(encoded(damaged, size, is_big)),
                  HasSubstr("line 5, no well-formed XML"));
      EXPECT_THAT(imported(encoded(reference, size, is_big)), HasSubstr("line 5, no well-formed"));
    }
  }
  const std::string latin =
      "<?xml version='1.0' encoding='ISO-8859-1'?>" +
      with_message("<Notes>" + std::string(100, '\xE4') + "</Notes>\n<Signal/>\n\n\n\n");
  EXPECT_THAT(imported(latin), HasSubstr("line 5, Signal in Message"));
}

constexpr char kDatabase[] = R"(BS_:
BU_: A
VAL_TABLE_ T 0 "";
BO_ 2147483650 M: 12 A
 SG_ Plain : 15|16@0- (1,0) [0|1] "" A
 SG_ X m1 : 8|8@1+ (1,0) [0|0] "" Ostrel__XXX
 SG_ Mux M : 0|1@1+ (1,0) [0|0] "" Ostrel__XXX
 SG_ D : 0|64@1- (1,0) [0|0] "" Ostrel__XXX
BO_ 3 N: 1 A
 SG_ Other : 0|8@1+ (1,0) [0|0] "" Ostrel__XXX
EV_ V: 0 [0|0] "" 0 1 DUMMY_NODE_OSTREL0 A;
CM_ "a)"
                             "\x01\xEF\xBF\xBE\xEF\xBF\xBF\xEF\xBF\xBD"
                             R"(b";
CM_ BU_ A "gone";
BA_DEF_ BO_ "GenMsgCycleTime" INT 0 0;
BA_DEF_ "DBName" STRING;
BA_DEF_ "Other" INT 0 0;
BA_DEF_DEF_ "GenMsgCycleTime" 100;
BA_DEF_DEF_ "DBName" "bus";
BA_ "Other" 1;
SG_MUL_VAL_ 2147483650 X Mux 1-2,5-5;
)";

TEST(Kcd, ExportsDefaultsAndNotesLosses) {
  EXPECT_THAT(exported(kDatabase, "other"), HasSubstr("<Bus name=\"other\">"));
  const std::string file = exported(kDatabase);
  for (const char* const part :
       {"1 attribute definition\n", "1 attribute value\n", "1 environment variable\n",
        "1 node comment\n", "1 value table\n", "3 characters that XML forbids\n",
        "<Document>a\xEF\xBF\xBD"
        "b</Document>",
        "<Bus name=\"bus\">", "format=\"extended\" interval=\"100\""}) {
    EXPECT_THAT(file, HasSubstr(part));
  }
}

/// Numbers that KCD does not have, and definitions of another type.
TEST(Kcd, ExportsNoOtherAttributes) {
  const std::string file = exported(R"(BS_:
BU_: A
BO_ 1 M: 8 A
CM_ "aï¿¾b";
BA_DEF_ "DBName" STRING ;
BA_DEF_ "Baudrate" FLOAT 0 0;
BA_DEF_ BO_ "GenMsgCycleTime" INT 0 0;
BA_ "Baudrate" 0.5;
BA_ "GenMsgCycleTime" BO_ 1 -5;
FILTER 1 CAT_ BU_ A ;
)");
  for (const char* const part : {"2 attribute values\n", "1 view filter\n", "<Bus name=\"out\">",
                                 "<Message id=\"0x1\" name=\"M\" length=\"8\">"}) {
    EXPECT_THAT(file, HasSubstr(part));
  }
  EXPECT_THAT(exported("BS_:\nBU_:\nBA_DEF_ \"DBName\" ENUM \"a\";\nBA_ \"DBName\" 0;\n"),
              AllOf(HasSubstr("1 attribute definition\n"), HasSubstr("<Bus name=\"out\"")));
}

TEST(Kcd, RefusesFaultyFiles) {
  const std::string kGroups = R"(<Multiplex name="X" offset="0"><MuxGroup count="1">)";
  const std::string kAgain = R"(</MuxGroup><MuxGroup count="1">)";
  const std::string kEnd = "</MuxGroup></Multiplex>";
  const std::string kS = R"(<Signal name="S" offset="1"/>)";
  const auto with_nodes = [](const std::string& nodes) {
    return kHead + nodes + "<Bus name='b'/></NetworkDefinition>";
  };
  const struct {
    std::string content;
    const char* error;  ///< behind "database: "
  } cases[] = {
      {"<a/>", "line 1, a: the root is not NetworkDefinition"},
      {"<NetworkDefinition xmlns='a'/>", "NetworkDefinition: xmlns=\"a\" is not \"http://"},
      {"<NetworkDefinition/>", "NetworkDefinition: there is no Bus"},
      {with_nodes("<Node id='1' name='A'/><Node id='1' name='B'/>"),
       "another node has the id \"1\""},
      {with_nodes("<Node id='1' name='A'/><Node id='2' name='A'/>"), "another node has this name"},
      {with_message(std::string(1, '\0')), "no well-formed XML"},
      {with_message("") + '\0', "line 5, no well-formed XML: a NUL character"},
      {with_message("&#1-;"), "line 4, no well-formed XML: a reference to no character"},
      {"<!DOCTYPE a [<!ENTITY b \"c\">]><a/>", "a DOCTYPE with declarations"},
      {with_message("") + "<b/>", "line 5, no well-formed XML: b is a second root"},
      {with_message("\n&#0;"), "line 5, no well-formed XML: a reference to no character"},
      {with_signal("a='>\"<!--' offset='&#1114112;'"), "line 4, no well-formed XML: a reference"},
      {"<!---->" + with_message("<a b=\">'<![CDATA[\"/>&#x;"), "line 4, no well-formed XML: a ref"},
      {with_message("<Notes>\xE4</Notes>"), "line 4, a text of Notes is no UTF-8"},
      {with_message("<V\xE4/>"), "line 4, a name is no UTF-8"},
      {with_message("<V \xE4='1'/>"), "line 4, a name is no UTF-8"},
      {"<!DOCTYPE \xE4>" + with_message(""), "line 1, a text is no UTF-8"},
      {with_message("", R"(id="0x800" name="M")"), "line 3, Message \"M\": id=\"0x800\" is no"},
      {with_message("", R"(id="1" name="INT")"),
       "line 3, Message \"INT\": name=\"INT\" is no name"},
      {with_message("<Producer><NodeRef id='2'/></Producer>"), "no node has the id \"2\""},
      {with_message("", "id='1' name='M' format='long'"),
       "format=\"long\" is neither standard nor"},
      {with_message("", "id='1' id='2' name='M'"), "attribute \"id\" comes twice"},
      {with_message("", "id='1' name='M' length='65'"),
       "length=\"65\" is no whole number from 0 to"},
      {with_message("<Notes/><Notes/>"), "Message \"M\": Notes comes twice"},
      {with_message("</Message><Message id='0x1' name='N'>"), "another message has this id"},
      {with_signal("length='8'"),
       "line 4, Signal \"S\" in Message \"M\": attribute \"offset\" is missing"},
      {with_signal("offset='0x'"), "offset=\"0x\" is no whole number from 0 to 511"},
      {with_signal("offset='0x-1'"), "offset=\"0x-1\" is no whole number"},
      {with_signal("offset='+-1'"), "offset=\"+-1\" is no whole number"},
      {with_signal("offset='1 1'"), "offset=\"1 1\" is no whole number"},
      {with_signal("offset='-1'"), "offset=\"-1\" is no whole number"},
      {with_signal("offset='512'"), "offset=\"512\" is no whole number"},
      {with_signal("offset='0' length='0'"), "length=\"0\" is no whole number from 1 to 512"},
      {with_signal("offset='0' endianess='middle'"), "\"middle\" is neither little nor big"},
      {with_signal("offset='0'", "<Value type='text'/>"),
       "type=\"text\" is none of unsigned, signed"},
      {with_signal("offset='0'", "<Value slope='nan'/>"), "slope=\"nan\" is no number"},
      {with_signal("offset='0'", "<Value slope='1x'/>"), "slope=\"1x\" is no number"},
      {with_signal("offset='0'", "<Value unit='" + std::string(33, 'u') + "'/>"),
       "has more than 32 characters"},
      {with_signal("offset='504' length='9' endianess='big'"), "ends behind byte 64"},
      {with_signal("offset='0'", "<Value slope='1e999'/>"),
       "Value in Signal \"S\" in Message \"M\": slope=\"1e999\" is no number, or out of range"},
      {with_signal("offset='0'", "<LabelSet><LabelGroup name='' from='0' to='256'/></LabelSet>"),
       "from 0 to 256 are more than 256 values"},
      {with_signal("offset='0'", "<LabelSet><LabelGroup name='' from='2' to='1'/></LabelSet>"),
       "to=\"1\" is no whole number from 2 to 4294967295"},
      {with_message(kS + kGroups + kS + kEnd), "another signal of the message has this name"},
      {with_message(kS + kS), "another signal of the message has this name"},
      {with_message(kGroups + "<Multiplex/>" + kEnd), "a Multiplex in a Multiplex"},
      {with_message(kGroups + kS + kAgain + kS + kEnd), "the signal comes twice for count 1"},
      {with_message(kGroups + kS + kAgain + "<Signal name='S' offset='2'/>" + kEnd),
       "another MuxGroup has this signal with other properties"},
  };
  for (const auto& c : cases) {
    EXPECT_THAT(imported(c.content), HasSubstr(c.error)) << c.content;
  }
  for (const char* const other :
       {"offset='1' length='2'/>", "offset='1' endianess='big'/>",
        "offset='1'><Value type='single'/></Signal>", "offset='1'><Value slope='2'/></Signal>",
        "offset='1'><Value intercept='2'/></Signal>", "offset='1'><Value min='2'/></Signal>",
        "offset='1'><Value max='2'/></Signal>", "offset='1'><Value unit='u'/></Signal>",
        "offset='1'><Notes>n</Notes></Signal>",
        "offset='1'><Consumer><NodeRef id='1'/></Consumer></Signal>",
        "offset='1'><LabelSet><Label name='l' value='1'/></LabelSet></Signal>"}) {
    EXPECT_THAT(imported(with_message(kGroups + kS + kAgain + "<Signal name='S' " + other + kEnd)),
                HasSubstr("another MuxGroup has this signal with other properties"));
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
      {[](msgblk& m) { signal_of(m, kX).mux_signal = nullptr; }, "a multiplexor that is not", "X"},
      {[](msgblk& m) { signal_of(m, kX).mux_ranges->low = 9; }, "", ""},  // 5 is left
      {[](msgblk& m) {
         signal_of(m, kX).mux_ranges->low = 9;
         signal_of(m, kX).mux_ranges->next->low = 9;
       },
       "1 signal selected by no value", "X"},
      {[](msgblk& m) { signal_of(m, kPlain).receivers->node = nullptr; }, "1 reference to no node",
       ""},
      {[](msgblk& m) { signal_of(m, kD).value_type = ZELK_VALUE_IEEE_SINGLE; }, "type=\"single\"",
       ""},
      {[](msgblk& m) { signal_of(m, kD).value_type = 7; }, "1 unknown value type", ""},
      {[](msgblk& m) {
         signal_of(m, kD).value_type = ZELK_VALUE_IEEE_DOUBLE;
         signal_of(m, kD).flags = 0;
       },
       "1 plus sign of IEEE signals", ""},
      {[](msgblk& m) { signal_of(m, kX).mux_ranges->high = UINT32_MAX; }, "by more than 256", "X"},
      {[](msgblk& m) { signal_of(m, kMux).mux_signal = &signal_of(m, kD); },
       "1 selection of a multiplexor by another one", ""},
  };
  for (const auto& c : cases) {
    Conversions conversions(ZELK_KCD_MODULE);
    const char* const db = conversions.opened(kDatabase);
    c.change(*conversions.manager.GetDatabase(db)->messages);
    const std::string file = conversions.exported(db);
    EXPECT_THAT(file, HasSubstr(c.left_out));
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
      {buses(m, m).replace(buses(m, m).find("\"b\""), 3, "\"a\""), "a",
       "more than one bus is named \"a\"; the buses are \"a\", \"a\""},
      {buses(m, m), "c", "no bus is named \"c\"; the buses are \"a\", \"b\""},
  };
  for (const auto& c : cases) {
    EXPECT_THAT(imported(c.content, c.option), HasSubstr(c.expected));
  }
}

TEST(Kcd, SurvivesHostileFiles) {
  const std::string whole = with_signal("offset='0'", "<Notes>&#176;</Notes>");
  for (std::size_t size = 0; size + 1 < whole.size(); ++size) {
    EXPECT_THAT(imported(whole.substr(0, size)), HasSubstr("format error in converted")) << size;
  }
  std::string deep;
  for (int i = 0; i < 1000000; ++i) deep += "<a>";
  EXPECT_THAT(imported(deep), HasSubstr("no well-formed XML"));
  for (int i = 0; i < 1000000; ++i) deep += "</a>";
  EXPECT_THAT(imported(with_message(deep)), HasSubstr("left out: 1 a element in Message"));
}

}  // namespace
