#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "support/memory_stream.hpp"

namespace zelk::logs {
namespace {

using testing::ElementsAre;

std::vector<std::string> parsed(const std::string& text, std::size_t most = 1 << 20) {
  return parsed(*open_trc(memory_input(text, most)));
}

struct Case {
  const char* line;
  const char* result;  // "" for no frame, and no fault
};

/// Lines behind the same two lines of a head.
template <std::size_t kCount>
void expect_lines(const std::string& head, const Case (&cases)[kCount]) {
  for (const Case& each : cases) {
    std::vector<std::string> expected;
    if (*each.result) expected.emplace_back(each.result);
    EXPECT_EQ(parsed(head + each.line + "\r\n"), expected) << each.line;
  }
}

TEST(Trc, ReadsVersionsBelow2) {
  constexpr Case kVersion10[] = {
      {"     1)      1841      0001  8  00 08 00 00 19 08 08 FF ",
       "1841000000 1 0 00080000190808FF"},
      {"     2)      1842  1FFFFFFF  0", "1842000000 9FFFFFFF 0"},
      {"     3)      1842      07FF  3  RTR", "1842000000 7FF 8 000000"},
      {"     4)      1842  FFFFFFFF  4  00 00 00 04  BUSLIGHT", ""},
      {"     5)      1842      0800  0", "3:      5)      1842      0800  0"},
      {"     6)    1842,5      0001  0", "3:      6)    1842,5      0001  0"},
      {"     7)      1842       001  0", "3:      7)      1842       001  0"},
      {"     8)      1842      0001  2  00", "3:      8)      1842      0001  2  00"},
      {"     9)      1842      0001  1  00 00", "3:      9)      1842      0001  1  00 00"},
      {"    10)      1842      0001  1  0g", "3:     10)      1842      0001  1  0g"},
      {"    11)      1842      0001", "3:     11)      1842      0001"},
      {" \t", ""},
      {"x)         1      0001  0", "3: x)         1      0001  0"},
      {"1))         1      0001  0", "3: 1))         1      0001  0"},
      {"1) 1234567890123      0001  0", "3: 1) 1234567890123      0001  0"},
      {"1)         1.      0001  0", "3: 1)         1.      0001  0"},
      {"1)         1      00g1  0", "3: 1)         1      00g1  0"},
      {"1)         1      0001  1x FF", "3: 1)         1      0001  1x FF"},
      {"1)         1      0001  1  RTX", "3: 1)         1      0001  1  RTX"},
      {"1)         1      0001  2  00  1", "3: 1)         1      0001  2  00  1"},
      {"1)         1      0001  2  00FF", "3: 1)         1      0001  2  00FF"},
      {"1)         1      0001  2   00\tFF", "1000000 1 0 00FF"},
  };
  expect_lines(";##########\r\n;   a.trc\r\n", kVersion10);
  constexpr Case kVersion11[] = {
      {"1) 1059.9 Rx 0300 2 00 1a", "1059900000 300 0 001A"},
      {"1) 1059.1234567 Tx 00000300 0", "1059123456 80000300 32"},
      {"1) 0.5 Warng FFFFFFFF 4 00 00 00 08 BUSHEAVY", ""},
      {"1) 0.5 Error 0004 4 01 02 03 04", "500000 80000008 16 0000040000000000"},
      {"1) 0.5 Zx 0300 0", "3: 1) 0.5 Zx 0300 0"},
  };
  expect_lines(";$FILEVERSION=1.1\n;\n", kVersion11);
  constexpr Case kVersion12[] = {{"1) 1.000 2 Rx 0300 1 FF", "1000000 300 0 FF 2"},
                                 {"1) 1.000 0 Rx 0300 1 FF", "3: 1) 1.000 0 Rx 0300 1 FF"}};
  expect_lines(";$FILEVERSION=1.2\n;\n", kVersion12);
  constexpr Case kVersion13[] = {{"1) 1.000 16 Tx 0300 - 1 FF", "1000000 300 32 FF 16"}};
  expect_lines(";$FILEVERSION=1.3\n;\n", kVersion13);
}

TEST(Trc, ReadsVersionsFrom2OnByTheirColumns) {
  constexpr Case kBytes[] = {
      {"1 1059.900 DT 0300 Rx 7 01 02 03 04 05 06 07", "1059900000 300 0 01020304050607"},
      {"1 1.0 FD 18FFAA03 Tx 9 01 02 03 04 05 06 07 08 09",
       "1000000 98FFAA03 33 010203040506070809"},
      {"1 1.0 RR 0300 Rx 8", "1000000 300 8 0000000000000000"},
      {"1 1.0 ER          Rx    04 00 02 00 00", "1000000 80000008 16 0000040000000000"},
      {"1 1.0 ER", "1000000 80000008 16 0000000000000000"},
      {"1 1.0 ER Rx 0g 00 02 00 00", "1000000 80000008 16 0000000000000000"},
      {"1 1.0 ER Rxx04 00 02 00 00", "1000000 80000008 16 0000000000000000"},
      {"1 1.0 ER Rx 04x00 02 00 00", "1000000 80000008 16 0000000000000000"},
      {"1 1.0 ST          Rx    00 00 00 08", ""},
      {"1 1.0 EC          Rx    02 02", ""},
      {"1 1.0 EV User-defined text", ""},
      {"1 1.0 DT 18ECFF03 Rx 10 01 02 03 04 05 06 07 08 09 0A",
       "1000000 98ECFF03 0 0102030405060708090A"},
      {"1 1.0 XX 0300 Rx 0", "3: 1 1.0 XX 0300 Rx 0"},
      {"1 1.0 FD 0300 Rx 65", "3: 1 1.0 FD 0300 Rx 65"},
  };
  expect_lines(";$FILEVERSION=2.0\n;$COLUMNS=N,O,T,I,d,l,D\n", kBytes);
  constexpr Case kCodes[] = {
      {"1 1.0 FB 2 0300 Rx - 9 01 02 03 04 05 06 07 08 09 0A 0B 0C",
       "1000000 300 3 0102030405060708090A0B0C 2"},
      {"1 1.0 FE 1 0300 Rx - 0", "1000000 300 5  1"},
      {"1 1.0 BI 1 0300 Rx - 1 FF", "1000000 300 7 FF 1"},
      {"1 1.0 DT 1 0300 Rx - 15 01 02 03 04 05 06 07 08", "1000000 300 0 0102030405060708 1"},
      {"1 1.0 DT 1 0300 Rx - 16", "3: 1 1.0 DT 1 0300 Rx - 16"},
      {"1 1.0 DT 1 0300 Rx - x", "3: 1 1.0 DT 1 0300 Rx - x"},
      {"1 1.0 DT 1 0300 Rx - 1x FF", "3: 1 1.0 DT 1 0300 Rx - 1x FF"},
      {"1 1.0 FDX 1 0300 Rx - 0", "3: 1 1.0 FDX 1 0300 Rx - 0"},
  };
  expect_lines(";$FILEVERSION=2.1\n;$COLUMNS=N,O,T,B,I,d,R,L,D\n", kCodes);
  constexpr Case kFew[] = {{"0300 1 FF", "- 300 0 FF"}};
  expect_lines(";$FILEVERSION=2.1\n;$COLUMNS=I,l,D\n", kFew);
}

TEST(Trc, ReadsHeads) {
  const char* const line = "1) 0.001 Rx 0300 0";
  const struct {
    const char* head;
    const char* result;
  } cases[] = {
      {";$STARTTIME=40477.5", "1288094400000001000 300 0"},  // 2010-10-26 12:00
      {"; $STARTTIME=40477.5", "1000 300 0"},
      {"\t;$STARTTIME=40477.5", "2: \t;$STARTTIME=40477.5"},
      {";$STARTTIME= 25570.000000000012 \r", "86400000002000 300 0"},
      {";$STARTTIME=0", "1000 300 0"},
      {";$STARTTIME=40477,5",
       "log:2: \";$STARTTIME=40477,5\" is no number of days since 1899-12-30"},
      {";$STARTTIME=1e9", "log:2: \";$STARTTIME=1e9\" is no number of days since 1899-12-30"},
      {";$STARTTIME=-1", "log:2: \";$STARTTIME=-1\" is no number of days since 1899-12-30"},
      {";$STARTTIME=118070", "log:2: \";$STARTTIME=118070\" is no number of days since 1899-12-30"},
      {";$STARTTIME=", "log:2: \";$STARTTIME=\" is no number of days since 1899-12-30"},
      {";$STARTTIME", "1000 300 0"},
      {";$OTHER=1", "1000 300 0"},
      {";$COLUMNS=I;l;D", "log:2: \";$COLUMNS=I;l;D\" has an unknown column"},
      {";$COLUMNS=l,D",
       "log:2: \";$COLUMNS=l,D\" lacks the columns of identifier, length and, at its end, data"},
      {";$COLUMNS=I,D,l",
       "log:2: \";$COLUMNS=I,D,l\" lacks the columns of identifier, length and, at its end, data"},
      {";$FILEVERSION=3.0",
       "log:2: \";$FILEVERSION=3.0\" is no known version, 1.0 to 1.3, 2.0 or 2.1"},
      {";$COLUMNS=I,d,D",
       "log:2: \";$COLUMNS=I,d,D\" lacks the columns of identifier, length and, at its end, data"},
      {";$COLUMNS=I,X,l,D", "log:2: \";$COLUMNS=I,X,l,D\" has an unknown column"},
      {";$COLUMNS=I,I,l,D", "log:2: \";$COLUMNS=I,I,l,D\" has an unknown column"},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(parsed(std::string(";$FILEVERSION=1.1\n") + each.head + '\n' + line)[0], each.result);
  }
}

TEST(Trc, ReadsTracesOneBehindTheOther) {
  const std::string text =
      ";$FILEVERSION=1.1\r\n;$STARTTIME=25570\r\n; a\r\n1) 1 Rx 0300 0\r\nx\r\n; b\r\n"
      ";$FILEVERSION=2.1\r\n1 1 DT 1 0301 Rx - 0\r\n;$STARTTIME=25571\r\n1 2 DT 1 0302 Tx - 0\r\ny";
  for (const std::size_t most : {1, 7, 1000}) {
    EXPECT_THAT(parsed(text, most),
                testing::UnorderedElementsAre("86400001000000 300 0", "5: x", "1000000 301 0  1",
                                              "172800002000000 302 32  1", "11: y"));
  }
}

TEST(Trc, TellsLinesWithoutHeads) {
  const struct {
    const char* text;
    std::vector<std::string> frames;  // none: not a trace
  } cases[] = {
      {"     1)      1.8      0001  1  FF \r\n", {"1800000 1 0 FF"}},
      {"\r\n 1) 1.8 Rx 0001 1 FF\r\n", {"1800000 1 0 FF"}},
      {"1) 1.8 2 Rx 0001 1 FF", {"1800000 1 0 FF 2"}},
      {"1) 1.8 2 Rx 0001 - 1 FF", {"1800000 1 0 FF 2"}},
      {"1 1.8 DT 0001 Rx 1 FF", {"1800000 1 0 FF"}},
      {"1 1.8 ST Rx 00 00 00 08\n2 1.9 ER\nx\n3 2.0 DT 1 0001 Rx - 1 FF\n",
       {"1900000 80000008 16 0000000000000000", "2000000 1 0 FF 1", "3: x"}},
      {"1) 1.8 Rx 0001 1 FF\n;$FILEVERSION=1.0\n2) 1.9 0001 1 FF\n",
       {"1800000 1 0 FF", "1900000 1 0 FF"}},
      {"12345678#FF\n", {}},
      {"123#FF\n1) 1.8 0001 1 FF\n", {}},
      {"(1.8) can0 001#FF\n", {}},
      {" can0  001   [1]  FF\n", {}},
      {"1) 1.8 001 1 FF\n", {}},
      {"1 1.8\n", {}},
      {"\n", {}},
      {"", {}},
  };
  for (const auto& each : cases) {
    for (const std::size_t most : {1, 1000}) {
      const LogInput input = memory_input(each.text, most);
      const auto form = std::ranges::find_if(
          forms(), [&](const FormRow& row) { return row.is_form_of(*input.stream); });
      EXPECT_EQ(form->open == open_trc, !each.frames.empty()) << each.text;
      if (!each.frames.empty()) {
        EXPECT_EQ(parsed(each.text), each.frames) << each.text;
      }
    }
  }
  EXPECT_EQ(parsed(";  a.trc\n1) 1.8 Rx 0001 1 FF\n")[0], "1800000 1 0 FF");
}

}  // namespace
}  // namespace zelk::logs
