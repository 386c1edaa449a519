// What is said of faults, and what mends and edits make of a text. In the tables a text stands
// behind ">", with apostrophes for quotes, "~" for line feeds, "#" and "^" for the bytes 0xFF and
// 0xA0 and "$" for NUL, and below it what comes of it. Those of faults and mends stand behind
// `kHead`, but for those with "!".

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <string_view>

#include "check/faults/diagnose.hpp"
#include "check/includes/mend.hpp"
#include "check/patch/patch.hpp"

namespace zelk::check {
namespace {

/// Six lines.
const std::string kHead =
    "BS_:~BU_: Engine B~BO_ 1 M: 8 B~ SG_ s : 0|8@1+ (1,0) [0|1] '' B~"
    " SG_ mux M : 8|8@1+ (1,0) [0|1] '' B~BO_ 2 N: 8 B~";
constexpr std::string_view kSigns = "'~#^$", kMeant{"\"\n\xFF\xA0\0", 5};

std::string decoded(std::string text) {
  for (char& c : text)
    if (const std::size_t sign = kSigns.find(c); sign != kSigns.npos) c = kMeant[sign];
  return text;
}

std::string encoded(std::string text) {
  for (char& c : text)
    if (const std::size_t sign = kMeant.find(c); sign != kMeant.npos) c = kSigns[sign];
  return text + '\n';
}

/// Line and column, and where it is more than one character the last of its columns.
std::string place_of(const Source& source, Span span) {
  const auto [line, column] = source.position(span.begin);
  const std::uint32_t last = source.position(span.end).column - 1;
  return std::to_string(line) + ':' + std::to_string(column) +
         (last > column ? '-' + std::to_string(last) : "");
}

std::string said_of(const Source& source, const Finding& finding) {
  std::string text = place_of(source, finding.span) + ' ' + std::string(finding.rule);
  if (finding.severity != Severity::kError) text += '?';
  text += ": " + finding.message;
  if (!finding.cause.empty()) text += "; " + finding.cause;
  if (!finding.statement.empty()) text += " (" + finding.statement + ')';
  for (const RelatedPlace& place : finding.related)
    text += ", " + place_of(source, place.span) + ' ' + place.message;
  return encoded(text);
}

/// What is wrong with each text.
std::string faults_of(const std::string& text) {
  const Source source("t.dbc", text);
  std::string all;
  for (const Finding& finding : diagnose(read_document(Source("t.dbc", text)), 0).list)
    all += said_of(source, finding);
  return all;
}

/// What is left of a text, without its head, and needs no further mend; nothing of one that cannot
/// be mended.
std::string mended(const std::string& text) {
  const std::string left = mend(Source("t.dbc", text), {}).text, head = decoded(kHead);
  EXPECT_TRUE(left.empty() || mend(Source("t.dbc", left), {}).outcome == Outcome::kUnneeded);
  return left.empty() ? "" : encoded(left.substr(left.starts_with(head) ? head.size() : 0));
}

void check(std::string_view table, std::string (*outcome)(const std::string&)) {
  std::istringstream lines{std::string(table.substr(1))};
  std::string line;
  for (std::getline(lines, line); lines;) {
    const bool is_alone = line[1] == '!';
    const std::string text = (is_alone ? "" : kHead) + line.substr(is_alone ? 2 : 1);
    std::string expected;
    while (std::getline(lines, line) && line[0] != '>') expected += line + '\n';
    EXPECT_EQ(outcome(decoded(text)), expected) << text;
  }
}

TEST(FaultWords, SayWhatIsWrong) {
  check(R"(
>CM_ BO_ 1 'a$b' 7 'y z012345678901234567890123456789012345678901234567890123456789';;~$ CM_ 'x' 'z'~;~#~// x
7:13 nul-byte?: the text is cut at its NUL byte (comment of message 1), 8:1 and here
7:17-83 surplus: expected ';' behind the comment, found '7 'y z012345678901234567890123456789012345678901234567890123...' too many (comment of message 1)
7:85 surplus: expected the next statement, found ';' too many (comment of message 1)
8:11-13 surplus: expected ';' behind the comment, found the text 'z' too many (comment of the database)
10:1 end-byte: the byte 0xFF ends the file for the reader; nothing behind it is read
9:2 final-line-feed: the file does not end in a line feed; a name or comment must not end with the file
>CM_ 'a~BO_ 3 O: 8 B~
7:1-3 order: 'CM_' is out of order; statements 'CM_' must stand behind 'BO_'; this one stands in front of line 8 (comment of the database), 8:1-3 message 3 O is here
7:5 open-text: the text has no second quote (comment of the database)
7:7 missing: expected ';' behind the comment, found 'BO_' (comment of the database)
>CM_ BU_ B 'x';~CM_ 'x'
7:9 odd-space: a blank outside ASCII directly behind a name (comment of node B)
8:8 missing: expected ';' behind the comment, found the end of the file (comment of the database)
>COMM_ 'x';~
7:1-10 stray: expected a statement, found 'COMM_ 'x';'; did you mean 'CM_'?
>!? x~
1:1-3 stray: expected a statement, found '? x'; no statement of a database is in the file
>BO_ 3 üO: 8 B~ SG_ SG_ : 0|8@1+ (1,0) [0|1] '' B~BO_ 4 2nd: 8 B~
7:7-8 odd-name?: 'üO' is no name; bytes outside ASCII are blanks, and only what follows is the name (message 3 üO)
8:6-8 keyword-name: the keyword 'SG_' cannot be a name (signal SG_ of message 3)
9:7-9 odd-name: '2nd' is no name; names consist of ASCII letters, digits and '_', and begin with no digit (message 4 2nd)
>BO_ 0x3 O: 0x8 B~ SG_ t : 0|0x8@1+ (1x,0) [0|1] '' B~
7:5-7 odd-number: expected the message's identifier, found '0x3'; it is a whole number from 0 to 4294967295 (message 0x3 O)
7:12-14 odd-number: expected the message's length in bytes, found '0x8'; it is a whole number from 0 to 32767 (message 0x3 O)
8:12-14 odd-number: expected the length in bits, found '0x8'; it is a whole number from 1 to 32767 (signal t of message 0x3)
8:20-21 odd-number: expected the factor, found '1x'; numbers are spelled like 5, -0.25 or 1E-3 (signal t of message 0x3)
>CM_ 1 s 'x';~CM_ BU_ ;~VAL_ 1 s 0 off ;~
7:5-7 comment-object: expected the kind of the object: 'BU_', 'BO_', 'SG_' or 'EV_', found '1 s'; did you mean 'SG_ 1'? (comment of signal s of message 1)
8:9 unreadable: expected the object's name, found ';' (comment of the database)
9:12-14 unquoted-text: expected a text between quotes, found 'off' (value descriptions of signal s of message 1)
>!NS_: NEW~BS_:~BU_: A~NEW x;~NEW y~NEW z~
4:1-3 skipped?: statements that begin with 'NEW' are skipped; the list 'NS_' announces the name (statement 'NEW')
5:5 unreadable: expected ';' behind what the reader skips, outside of texts and comments, found 'y' (statement 'NEW')
6:5 unreadable: expected ';' behind what the reader skips, outside of texts and comments, found 'z' (statement 'NEW')
>CM_ 'x';~CM_ 'y';~BO_ 3 O: 8 B~
9:1-3 order: 'BO_' is out of order; statements 'BO_' must stand in front of 'CM_'; this one stands behind line 7 (message 3 O), 7:1-3 comment of the database is here
>!VERSION ''~ SG_ t : 0|8@1+ (1,0) [0|1] '' A~ SG_~
2:2-4 order: 'SG_' is out of order; a signal belongs behind its message, 'BO_' (signal t), 3:2-4 and here
4:1 unreadable: expected the signal's name, found the end of the file (signal)
3:5 missing-bs: the file has no section 'BS_:'; every file has one, if empty, in front of 'BU_:'
3:5 missing-bu: the file has no section 'BU_:'; every file has one, if empty, behind 'BS_:'
>!BS_: 1 : 256,1~BU_: A~BU_: B~
1:10-12 wrong-value?: expected a bit timing register, 0 to 255, found '256'; its low 8 bits are kept (statement 'BS_')
3:1-3 doubled-section: second section 'BU_' (statement 'BU_'), 2:1-3 the first one is here
>CM_ BO_ 2147483649 '';~CM_ SG_ 30 s '';~CM_ SG_ 1 mus '';~CM_ SG_ 2 s '';~CM_ SG_ 2 t '';~
7:9-18 unknown-message: message 2147483649 is not defined; with the other frame format, there is message 1 M (comment of message 2147483649)
8:9-10 unknown-message: message 30 is not defined; a signal of this name is in message 1 M (comment of signal s of message 30)
9:11-13 unknown-signal: message 1 M has no signal mus; did you mean mux? (comment of signal mus of message 1), 3:1-3 message 1 M is here
10:11 unknown-signal: message 2 N has no signal s; a signal of this name is in message 1 M (comment of signal s of message 2), 6:1-3 message 2 N is here
11:11 unknown-signal: message 2 N has no signal t (comment of signal t of message 2), 6:1-3 message 2 N is here
>CM_ BU_ Engin '';~CM_ EV_ v '';~CM_ SGTYPE_ t '';~BA_ 'f' 1;~CAT_ BU_ B -7;~
7:9-13 unknown-node: node Engin is not defined; did you mean Engine? (comment of node Engin)
8:9 unknown-variable: environment variable v is not defined (comment of environment variable v)
9:13 unknown-type: signal type t is not defined (comment of signal type t)
10:5-7 unknown-attribute: attribute 'f' is not defined (value of attribute 'f' for the database)
11:13 unknown-category: category -7 is not defined (category of node B)
>SGTYPE_ t : 8@1+ (1,0) [0|1] '' 0 tab ;~BA_DEF_REL_ 'r' INT 0 1;~BA_DEF_DEF_REL_ BU_SG_REL_ 'r' 1;~BA_REL_ 'r' BU_SG_REL_ Engine SG_ 1 s 1;~
7:35-37 unknown-table: value table tab is not defined (signal type t)
10:24-29 unknown-link?: the relation is to node Engine, which is not linked to the object; the value is dropped (value of attribute 'r' for signal s of message 1)
>BA_DEF_ 'e' ENUM 'abc','abd~';~BA_DEF_ 'q\'' INT 0 1;~BA_DEF_DEF_ 'e' -1;~BA_DEF_DEF_ 'e' 0;~BA_ 'e' 'abx';~BA_ 'q\'' 'x';~
7:24 wrong-value?: an item with a line end; it becomes a blank (definition of attribute 'e')
10:18 wrong-value: '-1' is no item of attribute 'e' (default of attribute 'e'), 7:1-7 definition of attribute 'e' is here
12:9-13 wrong-value: 'abx' is no item of attribute 'e'; did you mean abc? (value of attribute 'e' for the database), 7:1-7 definition of attribute 'e' is here
13:11-13 wrong-value: 'x' is no number, which attribute 'q\'' wants (value of attribute 'q\'' for the database), 9:1-7 definition of attribute 'q\'' is here
>BA_DEF_ BO_ 'SystemMessageLongSymbol' STRING ;~BA_ 'SystemMessageLongSymbol' BO_ 1 '1 2';~
8:37-41 wrong-value?: '1 2' cannot be the name of the object; the value is dropped (value of attribute 'SystemMessageLongSymbol' for message 1)
>ENVVAR_DATA_ w : 4;~EV_ v: 7 [0|1] '' 0 1 DUMMY_NODE_OSTRELx B;~CAT_DEF_ 1 c 70000;~FILTER 1 CAT_ BU_ 'x' ;~
7:1-12 order: 'ENVVAR_DATA_' is out of order; statements 'ENVVAR_DATA_' must stand behind 'EV_'; this one stands in front of line 8 (statement 'ENVVAR_DATA_'), 8:1-3 environment variable v is here
7:14 unknown-variable?: environment variable w is not defined (statement 'ENVVAR_DATA_')
8:8 wrong-value: expected a type from 0 to 3, found '7' (environment variable v)
8:23-40 access-code?: expected 'DUMMY_NODE_OSTREL' and a hexadecimal code, found 'DUMMY_NODE_OSTRELx'; the code is taken to be 0 (environment variable v)
9:14-18 wrong-value: expected a level, 0 to 65535, found '70000' (statement 'CAT_DEF_')
10:19-21 wrong-value: expected '<<none>>', found the text 'x' (statement 'FILTER')
>BO_ 1 O: 8 B~ SG_ t k : 0|8@9+ (1,0) [0|1] '' B~ SG_ t x : 0|0@1+ (1,0) [0|1] '' B~
7:5 doubled-message?: another message with identifier 1 (message 1 O), 3:1-3 the first one is here
8:16 segments: wrong byte order 9; signals have up to two segments, each of 1 bit or more and byte order 0 to 4 (signal t of message 1)
9:6 doubled-signal?: another signal t of the message (signal t of message 1), 8:2-4 the first one is here
9:8 indicator: wrong multiplexor indicator 'x'; 'M' marks a multiplexor, 'm3' a signal for its value 3, 'm3M' both; one letter in a message (signal t of message 1)
9:14 segments: wrong length of 0 bits; signals have up to two segments, each of 1 bit or more and byte order 0 to 4 (signal t of message 1)
>BO_ 3 O: 8 B~ SG_ a m1 : 0|1@1+ (1,0) [0|1] '' B~SG_MUL_VAL_ 1 s mux 1-1;~SG_MUL_VAL_ 1 mux s 1-1;~
4:6 circle: multiplexor s selects itself (signal s of message 1), 5:2-4 signal mux of message 1 selects it
8:8-9 multiplexors?: nothing says which multiplexor selects the signal; the message needs one multiplexor, or 'SG_MUL_VAL_' for each signal (signal a of message 3), 7:1-3 message 3 O is here
>!B$S$_$:$~$
1:1 utf-16: the file is in UTF-16; save it in UTF-8, or convert it: iconv -f UTF-16 -t UTF-8
)",
        faults_of);
}

TEST(Mends, LeaveTheseTexts) {
  check(R"(
>BO_ 10 ? a b-c: 8 B~BO_ 3 O ? 4 B~BO_ 4 ?~BO_ 5 : ? 'x'~BO_ 6.0 P: 8e9 B~BO_ 7 2#b: 8 B~BO_ 8 N-1: 8 B~BO_ 9
BO_ 10 a_b_c: 8 B~BO_ 3 O: 4 B~BO_ 4 Message_4: 8 Ostrel__XXX~BO_ 5 Message_5: 8 Ostrel__XXX~BO_ 6 P: 32767 B~BO_ 7 _2yb: 8 B~BO_ 8 N_1: 8 B~BO_ 9 Message_9: 8 Ostrel__XXX~CM_ BO_ 7 'Original name: 2#b';~CM_ BO_ 8 'Original name: N-1';~CM_ BO_ 10 'Original name: a b-c';~
> SG_~ SG_ a : 8|8 ? (2,1) [-3|+1] 'V' B A~ SG_ b : 8|8@1 ? - (2,1) 'V~ SG_ c : 8|8@1+ ? (2,1 [0|1] '' B~ SG_ d : 8|8@1+ ? (2,1) [0|] ''~ SG_ e : 8|8 ?~ SG_ f : 8|8@1+ ? (2,1) [0|
 SG_ a : 8|8@1+ (2,1) [-3|+1] 'V' B,A~ SG_ b : 8|8@1- (2,1) [0|0] 'V' Ostrel__XXX~ SG_ c : 8|8@1+ (2,1) [0|1] '' B~ SG_ d : 8|8@1+ (2,1) [0|0] '' Ostrel__XXX~ SG_ e : 8|8@1+ (1,0) [0|0] '' Ostrel__XXX~ SG_ f : 8|8@1+ (2,1) [0|0] '' Ostrel__XXX~
> SG_ a : 0.0|8.6@1.0+ (.5,1x) [0x10|1e] '' B~ SG_ b : 8|8@1:8@1:8@1+ (1,0) [0|1] '' B~ SG_ c : 8|8@1:8:8+ (1,0) [0|1] '' B~ SG_ t m-3M 0|8@1+ (1,0) [0|1] '' B~ SG_ my own : 0|8@1+ (1,0) [0|1] '' B~CM_ SG_ 2 my own 'x\'';~VAL_ 2 my own 0 'y' ;~
 SG_ a : 0|9@1+ (0.5,1) [16|1] '' B~ SG_ b : 8|8@1:8@1+ (1,0) [0|1] '' B~ SG_ c : 8|8@1:8+ (1,0) [0|1] '' B~ SG_ t_m_3M: 0|8@1+ (1,0) [0|1] '' B~ SG_ my_own : 0|8@1+ (1,0) [0|1] '' B~CM_ SG_ 2 my_own 'x\'~Original name: my own';~CM_ SG_ 2 t_m_3M 'Original name: t m-3M';~VAL_ 2 my_own 0 'y' ;~
> SG_ a : 8|8@1+ (2;1) [0|1] '' B~
> SG_ a : 8|8@1+ ? 2,1) [0|1] '' B~
 SG_ a : 8|8@1+ (2,1) [0|1] '' B~
> SG_ a : 8|8@1+ ? (2,x) [0|1] '' B~
> SG_ ? : 8|8@1+ (1,0) [0|1] '' B~
>BO_ x O: 8 B~
>BO_ 99999999999 ?: 8 B~
>BO_ 5000000000 O: 8 B~
> SG_ t m99999999999 : 0|8@1+ (1,0) [0|1] '' B~ SG_ u X : 0|8@1+ (1,0) [0|1] '' B~BO_ 3 O: 8 B~ SG_ t _ : 0|8@1+ (1,0) [0|1] '' B~
 SG_ t m4294967295 : 0|8@1+ (1,0) [0|1] '' B~ SG_ u M : 0|8@1+ (1,0) [0|1] '' B~BO_ 3 O: 8 B~ SG_ t M : 0|8@1+ (1,0) [0|1] '' B~
>BO_ 3 O: 8 B~ SG_ a m0M : 8|8@1+ (1,0) [0|1] '' B~BO_ 4 P: 8 B~ SG_ c M : 8|8@1+ (1,0) [0|1] '' B~ SG_ d M : 8|8@1+ (1,0) [0|1] '' B~
BO_ 3 O: 8 B~ SG_ a M : 8|8@1+ (1,0) [0|1] '' B~BO_ 4 P: 8 B~ SG_ c M : 8|8@1+ (1,0) [0|1] '' B~ SG_ d M : 8|8@1+ (1,0) [0|1] '' B~
>!BS_: 500 : x,2~BS_: 250 : 1,2~BU_: A~VAL_TABLE_ : t 0 'x' ;~BO_ 1 M: 8 A~ SG_ s : 0|8@1+ (1,0) [0|1] '' A~VAL_ 1 s 'x' 0 ? -1 'y~VAL_ ? ;~
BS_: 250 : 1,2~BU_: A~VAL_TABLE_ t 0 'x' ;~BO_ 1 M: 8 A~ SG_ s : 0|8@1+ (1,0) [0|1] '' A~VAL_ 1 s -1 'y' ;~
>CM_ BU_ ;~CM_ BO_ 1 x 'z';x;~CM_ BO_ 1 a b' ;~CM_ BO_ 1 'a'b'c;~CM_ 'x'7;~
CM_ BO_ 1 'z';~CM_ BO_ 1 'a b' ;~CM_ BO_ 1 'a';~CM_ 'x';~
>CM_ BO_ 2147483649 'x';~CM_ BO_ x 'y';~CM_ BO_ 5000000000 'z';~CM_ SG_ 2 t 'x';~
CM_ BO_ 1 'x';~
>BA_DEF_ 'e' ENUM 'a' 'b',;~BA_DEF_ 'f' ENUM ;~BA_DEF_ 'n' INT -0x10 0x10;~BA_DEF_DEF_ 'e' 9;~BA_ 'f' 'x';~BA_ 'f' 'x';~BA_ 'n' NaN;~BA_ 'n' ? ;~BA_ 'n' '1,5';~BA_ 'n' '0XfF';~BA_ 'n' ' ';~BA_ 'n' '5 V';~BA_ 'n' '+5';~BA_ 'n' '-0x5';~BA_ 'n' '0xg';~BA_ 'n' '-1,5';~BA_ 'n' '+2,5';~BA_ 'n' '.5';~BA_ 'n' '+';~BA_ 'e' b-c;~
BA_DEF_ 'e' ENUM 'a', 'b','b-c';~BA_DEF_ 'f' ENUM 'x' ;~BA_DEF_ 'n' INT -16 16;~BA_ 'f' 'x';~BA_ 'n' 1.5;~BA_ 'n' 255;~BA_ 'n' '+5';~BA_ 'n' -5;~BA_ 'n' -1.5;~BA_ 'n' 2.5;~BA_ 'n' '.5';~BA_ 'e' 'b-c';~
>EV_ v-1: 9 [0|1] '' NaN 1 DUMMY-NODE B;~EV_ v_1: 0 [0|1] '' 0 2 DUMMY_NODE_OSTREL0 B;~VAL_ v-1 0 'x' ;~VAL_ w-1 0 'x' ;~VAL_ 1 s 0 on-line 1 x ;~SG_MUL_VAL_ 1 s-1 mux 1-1;~
EV_ v_1_2: 0 [0|1] '' 0 1 DUMMY_NODE B;~EV_ v_1: 0 [0|1] '' 0 2 DUMMY_NODE_OSTREL0 B;~CM_ EV_ v_1_2 'Original name: v-1';~VAL_ v_1_2 0 'x' ;~VAL_ 1 s 0 'on-line' 1 'x' ;~
>CAT_DEF_ 1 c-1 70000;~CAT_DEF_ 70000 d 0;~FILTER 1 CAT_ 7 -8 +1 BU_ '<<none>>' C;~
BS_:~BU_: Engine B C~BO_ 1 M: 8 B~ SG_ s : 0|8@1+ (1,0) [0|1] '' B~ SG_ mux M : 8|8@1+ (1,0) [0|1] '' B~BO_ 2 N: 8 B~CAT_DEF_ 1 c_1 65535;~FILTER 1 CAT_ +1 BU_ '<<none>>' C;~
>FILTER 99999999999 CAT_ BU_ ;~SIG_GROUP_ 1 g-1 1 : s t;~SIG_GROUP_ 1 g.1 1 : s;~SIG_GROUP_ 1 h 1 : s 5 s~
SIG_GROUP_ 1 g_1 1 : s;~SIG_GROUP_ 1 g_1_2 1 : s;~SIG_GROUP_ 1 h 1 : s s;~
>!BS_:~BU_: A~VAL_TABLE_ t-1 0 'a' ;~VAL_TABLE_ t_1 0 'a' ;~SGTYPE_ y-1 : 8@9+ (1,0) [0|1] '' 0 t-1 ;~SGTYPE_ y_1 : 8@1+ (1,0) [0|1] '' 0 u ;~
BS_:~BU_: A~VAL_TABLE_ t_1_2 0 'a' ;~VAL_TABLE_ t_1 0 'a' ;~SGTYPE_ y_1_2 : 8@1+ (1,0) [0|1] '' 0 t_1_2 ;~SGTYPE_ y_1 : 8@1+ (1,0) [0|1] '' 0 ;~CM_ SGTYPE_ y_1_2 'Original name: y-1';~
>BO_ 3 O+%&: 8 B~BO_ 4 x°²³µΩ×€y: 8 B~BO_ 5 x\: 8 B~CM_ BO_ 3 'y
BO_ 3 Opluspctand: 8 B~BO_ 4 xdeg23uOhm_y: 8 B~BO_ 5 x: 8 B~CM_ BO_ 3 'y~Original name: O+%&';~CM_ BO_ 4 'Original name: x°²³µΩ×€y';~CM_ BO_ 5 'Original name: x\ ';~
>SGTYPE_ t : 8@1+ (1,0) [0|1] '' ;~BA_ 'n' -3;~BA_ 'n' 9999999999;~BA_SGTYPE_ 'q' SGTYPE_ t 5;~BA_REL_ 'r' BU_SG_REL_ B SG_ 1 s 5;~BA_ 'p' 'a'b';~
SGTYPE_ t : 8@1+ (1,0) [0|1] '' ;~BA_DEF_ 'n' FLOAT -3 9999999999;~BA_DEF_ 'p' STRING;~BA_DEF_ SG_ 'q' INT 5 5;~BA_DEF_REL_ BU_SG_REL_ 'r' INT 5 5;~BA_DEF_SGTYPE_ 'q';~BA_ 'n' -3;~BA_ 'n' 9999999999;~BA_SGTYPE_ 'q' SGTYPE_ t 5;~BA_REL_ 'r' BU_SG_REL_ B SG_ 1 s 5;~BA_ 'p' 'a\'b';~
>BA_DEF_SGTYPE_ 'q';~BA_DEF_DEF_REL_ 'r' 1;~CM_ 'x'; CM_ 'y'; BO_ 3 O: 8 B~VERSION 'x'~BS_: 5 : 1,2~
VERSION 'x'~BS_: 5 : 1,2~BU_: Engine B~BO_ 1 M: 8 B~ SG_ s : 0|8@1+ (1,0) [0|1] '' B~ SG_ mux M : 8|8@1+ (1,0) [0|1] '' B~BO_ 2 N: 8 B~ BO_ 3 O: 8 B~CM_ 'x'; CM_ 'y';
>!BU_ ? A / B 5 'x' F~EV_ v: 0 [0|1] '' 0 1 DUMMY_NODE_OSTREL0 C,D;~CM_ BU_ X-1 'x';~
BS_:~~BU_: A B F X_1~EV_ v: 0 [0|1] '' 0 1 DUMMY_NODE_OSTREL0 C,D;~CM_ BU_ X_1 'x~Original name: X-1';~
>!EV_ v: 0 [0|1] '' 0 1 DUMMY_NODE_OSTREL0 C,D;~CM_ BU_ E 'x';~
BS_:~~BU_: C D E~~EV_ v: 0 [0|1] '' 0 1 DUMMY_NODE_OSTREL0 C,D;~CM_ BU_ E 'x';~
>!NS_ : CM_ BA_~BS_: 0x1F4 : 1.0,0x2 BU_: A BO_ 1 M: 8 A SG_ s : 0|8@1+ (1,0) [0|1] '' A EV_ v: 0 [0|1] '' 0 1 DUMMY_NODE_OSTREL0 A; CM_ EV_ v 'x'; CM_ BU_ A 'y' BA_DEF_ BO_ 'n' INT 0 1; VAL_TABLE_ t 0 'a' ;~
NS_ : CM_ BA_~BS_: 500 : 1,2 BU_: A~ VAL_TABLE_ t 0 'a' ;~ BO_ 1 M: 8 A SG_ s : 0|8@1+ (1,0) [0|1] '' A EV_ v: 0 [0|1] '' 0 1 DUMMY_NODE_OSTREL0 A; CM_ EV_ v 'x'; CM_ BU_ A 'y'; BA_DEF_ BO_ 'n' INT 0 1;
>!// x~
// x~BS_:~~BU_:~~
>!BS_:~BU_: A~ SG_ t X : 0|8@1+ (1,0) [0|1] '' A~BO_ 3221225472 M: 8 A~SGTYPE_ y : 8@1+ (1,0) [0|1] '' +5 ;~VAL_ 3221225472 s 0 'x'~SG_MUL_VAL_ 3221225472 s s 1-1~
BS_:~BU_: A~ BO_ 3221225471 Signals_without_message: 0 Ostrel__XXX~ SG_ t X : 0|8@1+ (1,0) [0|1] '' A~BO_ 3221225472 M: 8 A~SGTYPE_ y : 8@1+ (1,0) [0|1] '' +5 ;~
>BO_ 3 5: 8 B~BO_ 4 5 x: 8 B~BO_ 5 a/b: 8 B~BO_ 6 O: 8 Bä~ SG_ t : 8|8@1+ (1,x) [0|.] '' B/~
BO_ 3 _5: 8 B~BO_ 4 _5_x: 8 B~BO_ 5 a_b: 8 B~BO_ 6 O: 8 Bae~ SG_ t : 8|8@1+ (1,0) [0|0] '' B~CM_ BO_ 3 'Original name: 5';~CM_ BO_ 4 'Original name: 5 x';~CM_ BO_ 5 'Original name: a/b';~CM_ BU_ Bae 'Original name: Bä';~
>BO_ 6 O: 8 B~ SG_ t : 8|8@1+ (1e,0) [0|1e+] '' B~CM_ 'a~	BO_ 3 P: 8 B~CM_ 'a~BU_: x' ;~CM_ 'b~BU_ x' , 'c~CM_'~CM_ BU_ B 'x' /
BO_ 6 O: 8 B~ SG_ t : 8|8@1+ (1,0) [0|1] '' B~	BO_ 3 P: 8 B~CM_ 'a';~CM_ 'a~BU_: x' ;~CM_ 'b~BU_ x'; ~CM_'';~CM_ BU_ B 'x'; 
)",
        mended);
}

/// The records before and after the edit stand below each text, behind "<" and "=".
TEST(Patch, KeepsToTheText) {
  std::istringstream lines(
      R"(>// c~BS_:~BU_:~BA_DEF_ 'n' INT 0 1 ;~BA_DEF_ 'n' INT 0 02;~BA_DEF_ 'm' INT 0 1 ;~BA_DEF_ 'm' INT 0 02;~
<BS_:~BU_:~BA_DEF_ 'n' INT 0 1;~BA_DEF_ 'n' INT 0 2;~BA_DEF_ 'm' INT 0 1;~BA_DEF_ 'm' INT 0 2;~
=VERSION '1'~NS_ :~BS_:~BU_:~BA_DEF_ 'n' INT 0 1;~BA_DEF_ 'n' INT 0 3;~BA_DEF_ 'm' INT 0 2;~
VERSION '1'~// c~BS_:~BU_:~BA_DEF_ 'n' INT 0 1 ;~BA_DEF_ 'n' INT 0 3;~BA_DEF_ 'm' INT 0 02;~
>BS_:~BU_: A B~BO_ 1 M: 8 A~BO_TX_BU_ 1 : A;~BO_ 2 N: 8 B~	SG_ X M : 0|8@1+ (1,0) [0|1] '' A~	SG_ s m1 : 8|8@1+ (1,0) [0|1] '' A~BO_TX_BU_ 2 : B ;~SG_MUL_VAL_ 2 s X 1-1;~
<BS_:~BU_: A B~BO_ 1 M: 8 A~BO_ 2 N: 8 B~ SG_ X M : 0|8@1+ (1,0) [0|1] '' A~ SG_ s m1 : 8|8@1+ (1,0) [0|1] '' A~
=BS_:~BU_: A B~BO_ 1 M: 8 B~ SG_ t : 0|8@1+ (1,0) [0|1] '' A~BO_ 2 N: 8 Ostrel__XXX~ SG_ X M : 0|8@1+ (1,0) [0|1] '' A~ SG_ s m2 : 8|8@1+ (1,0) [0|1] '' A~
BS_:~BU_: A B~BO_ 1 M: 8 B~	SG_ t : 0|8@1+ (1,0) [0|1] '' A~BO_TX_BU_ 1 : B;~BO_ 2 N: 8 Ostrel__XXX~	SG_ X M : 0|8@1+ (1,0) [0|1] '' A~	SG_ s m2 : 8|8@1+ (1,0) [0|1] '' A~
>BS_: BU_: A BO_ 1 M: 8 A
<BS_:~BU_: A~BO_ 1 M: 8 A~
=BS_:~BU_: A~BO_ 1 M: 8 A~ SG_ t : 0|8@1+ (1,0) [0|1] '' A~
BS_: BU_: A BO_ 1 M: 8 A~ SG_ t : 0|8@1+ (1,0) [0|1] '' A
>BS_:~BU_: A~CM_ 'a\'b'; CM_ BU_ A 'y'; // c~#~BO_ x~
<BS_:~BU_: A~CM_ 'a\'b';~CM_ BU_ A 'y';~
=BS_:~BU_: A~CM_ 'c~d';~
BS_:~BU_: A~CM_ 'c~d'; // c~#~BO_ x~
>BS_:~BU_: A~BO_ 1 M: 8 A~
<BS_:~BU_: A~
=BS_:~BU_: A B~
none
>BS_:~BU_: A B~VAL_TABLE_ t 0 'a' ;~BO_ 2 N: 8 A // n~SGTYPE_ y : 8@1+ (1,0) [0|1] '' 0 t;~FILTER 1 CAT_ BU_ A  B;~
<BS_:~BU_: A B~VAL_TABLE_ t 0 'a' ;~BO_ 2 N: 8 A~SGTYPE_ y : 8@1+ (1,0) [0|1] '' 0 t;~FILTER 1 CAT_ BU_ A B;~
=BS_:~BU_: A B~VAL_TABLE_ v 0 'a' ;~SGTYPE_ y : 8@1+ (1,0) [0|1] '' 0 v;~FILTER 1 CAT_ BU_ B;~
BS_:~BU_: A B~VAL_TABLE_ v 0 'a' ;~SGTYPE_ y : 8@1+ (1,0) [0|1] '' 0 v;~FILTER 1 CAT_ BU_ B;~
)");
  const auto document = [](const std::string& line) {
    return read_document(Source("t.dbc", decoded(line.substr(1))));
  };
  std::string text, before, after, expected;
  while (std::getline(lines, text) && std::getline(lines, before) && std::getline(lines, after) &&
         std::getline(lines, expected)) {
    const auto made = patch(document(text), document(before), document(after), Nodes::kAll);
    EXPECT_EQ(made ? encoded(made->text) : "none\n", expected + '\n') << text;
  }
}

}  // namespace
}  // namespace zelk::check
