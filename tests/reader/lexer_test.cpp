#include "reader/lexer.hpp"

#include <gtest/gtest.h>

#include <clocale>

#include "model/errors.hpp"
#include "support/database.hpp"
#include "support/system.hpp"
#include "text/token_codes.hpp"
#include "zelk/exception.hpp"

namespace {

using namespace std::string_literals;
using zelk::SemanticValue;

std::string token_text(int code, const SemanticValue& value) {
  char real[40];
  std::snprintf(real, sizeof real, "%.17g", code == T_DOUBLE ? value.real : 0.0);
  switch (code) {
    case T_SHORT:
      return "S" + std::to_string(value.integer);
    case T_ULONG:
      return "U" + std::to_string(value.integer);
    case T_DOUBLE:
      return "D"s + real;
    case T_IDENT:
      return "I" + std::string(value.text.view());
    case T_STRING:
      return "Q" + std::string(value.text.view());
    default:
      return code > 0 && code < 128 ? std::string(1, static_cast<char>(code))
                                    : "#" + std::to_string(code);
  }
}

/// The tokens up to the end or the first error, each followed by a blank, then "@" and the line.
std::string tokens(std::string_view input) {
  const TemporaryFile file(input);
  zelk::Lexer lexer(zelk::files::open_for_reading(file.path()));
  zelk::error_state().read_error_reported = false;
  std::string result;
  SemanticValue value{};
  int code = 1;
  try {
    while (code != 0 && code != 256) {
      code = lexer.next(value);
      if (code != 0) result += token_text(code, value) + " ";
    }
  } catch (const ZelkException& error) {
    return result + "!" + error.what();
  }
  return result + "@" + std::to_string(lexer.line());
}

struct LexerCase {
  std::string input;
  std::string tokens;
};

void expect_tokens(const std::vector<LexerCase>& cases) {
  for (const LexerCase& c : cases) {
    EXPECT_EQ(tokens(c.input), c.tokens) << c.input.substr(0, 100);
  }
}

TEST(Lexer, NamesAndKeywords) {
  expect_tokens(
      {{"BO_ bo_ BO_x BO BO__ xBO_ ", "#263 Ibo_ IBO_x IBO IBO__ IxBO_ @0"},
       {"EV_DATA_ ENVVAR_DATA_ SG_MUL_VAL_:VERSION INT Int ", "#291 #291 #308 : #273 #281 IInt @0"},
       {"a\x7F"s, "Ia \x7F @0"},
       {"a\0b "s, "Ia Ib @0"},
       {std::string(1023, 'n') + " ", "I" + std::string(1023, 'n') + " @0"},
       {"\n" + std::string(1024, 'n') + " ", "!, line 1, " + std::string(989, 'n')},
       {"\nSpeed\x80 ", "!database: invalid char in symbol, line 1, Speed :\x80"},
       {"last", "!database: invalid char in symbol, last :\xFF"}});
}

TEST(Lexer, Numbers) {
  const std::string zeros(400, '0');
  const std::string largest = "D1.7976931348623157e+308 @0";
  expect_tokens(
      {{"0 32767 32768 4294967295 4294967296 ", "S0 S32767 U32768 U4294967295 D4294967296 @0"},
       {"00 010 09 077777 0100000 00100001 ", "S0 S10 S9 S77777 U32768 U32769 @0"},
       {"037777777777 0xFF -5 +5 12abc 7\xFF", "D37777777777 S0 IxFF - S5 + S5 S12 Iabc S7 @0"},
       {"1.5 12. 1..5 .5 1e3 2E+2 4e-1 1.e2 ",
        "D1.5 D12 D1 . S5 . S5 D1000 D200 "
        "D0.40000000000000002 D100 @0"},
       {"1.5e ", "#256 @0"},
       {"1e999", largest},
       {"1e-999 0e999 1e-99999999999999999999 0." + zeros + "1", "D0 D0 D0 D0 @0"},
       {"0." + zeros + "1e402 1" + zeros + "e-400 1" + zeros + "e-390 ", "D10 D1 D10000000000 @0"},
       {"\n" + std::string(1024, '3'), "!, line 1, " + std::string(989, '3')},
       {"0." + std::string(1022, '3'), "!, 0." + std::string(995, '3')},
       {"1e" + std::string(1022, '0'), "!, 1e" + std::string(995, '0')}});
}

TEST(Lexer, Strings) {
  expect_tokens(
      {{R"("a\"b" "a\b" "\n\t" "" "\\"x" )", R"(Qa"b Qa\b Q\n\t Q Q\"x @0)"},
       {"\"//\" \"a\nb\n\"c", "Q// Qa\nb\n !database: invalid char in symbol, line 2, c :\xFF"},
       {"\"a\xE9\xFF\x01\" \"BO_\"", "Qa\xE9\xFF\x01 QBO_ @0"},
       {"\"open\\", "!, error: syntax"},
       {"\"open\\\"", "!, error: syntax"}});
  zelk_clear_error_text();
  EXPECT_EQ(tokens("\"cut\0off\" 1"s), "Qcut S1 @0");
  EXPECT_STRNE(zelk_get_error_text(), "") << "a text that is cut is reported";
}

TEST(Lexer, SeparatorsAndCharacters) {
  std::string separators;
  for (int byte = 1; byte < 0xFF; ++byte) {
    if (byte <= ' ' || byte >= 0x80) separators += static_cast<char>(byte);
  }
  expect_tokens({{"! # ( ) @ | ~ \x7F ", "! # ( ) @ | ~ \x7F @0"},
                 {"1" + separators + "2" + "\0"s + "3", "S1 S2 S3 @1"},
                 {"/ /* // BO_ \"\n/// \n//\n/", "/ / * / @3"},
                 {"1 // \xFF \x80\n2", "S1 S2 @1"},
                 {"1\n// open", "S1 !, line 1, error: syntax"}});
}

// The file is read in blocks of 64 KiB: every token meets their boundary at every one of its bytes.
TEST(Lexer, TokensAcrossBlocks) {
  constexpr std::size_t kBlock = 65536;
  const std::string sample =
      "name 123 1.5e+3 \"a\\\"b\\\\c\r\nd\re\r\r\nf\"\r\n\r\r\n// x\r\n/ 7.\"\" 2E-1 0 BO_;\r";
  const std::string expected =
      "Iname S123 D1500 Qa\"b\\\\c\nd\re\r\nf / D7 Q D0.20000000000000001 S0 #263 ; @5";
  ASSERT_EQ(tokens(sample), expected);
  for (std::size_t before = kBlock - sample.size() - 4; before < kBlock + 4; ++before) {
    ASSERT_EQ(tokens(std::string(before, ' ') + sample), expected) << before;
    ASSERT_EQ(tokens(std::string(before, '\r') + sample), expected) << before;
  }
  for (const std::size_t base : {kBlock, 2 * kBlock, 4 * kBlock}) {
    for (std::size_t length = base - 6; length < base + 6; ++length) {
      const std::string text(length, 'x');
      ASSERT_EQ(tokens("\"" + text + "\\\"\r\n\"1"), "Q" + text + "\"\n S1 @1") << length;
      ASSERT_EQ(tokens("//" + text + "\r\n1"), "S1 @1") << length;
    }
  }
}

// In Shift-JIS 0x83 0x5C is one character, whose second byte is a backslash elsewhere.
TEST(Lexer, DoubleByteCharacters) {
  if (!enter_double_byte_characters()) GTEST_SKIP() << "not with this system's characters";
  const std::string long_text = std::string(65534, 'x') + "\x83";  // the block ends in the pair
  expect_tokens({{"\"a\x83\x5C\"1", "Qa\x83\x5C S1 @0"},
                 {"\"\x83\x5C\\\"b\"1", "Q\x83\x5C\"b S1 @0"},
                 {"\"\xB1\\\"b\"1", "Q\xB1\"b S1 @0"},
                 {"\"\x83\"1", "Q\x83 S1 @0"},
                 {"\"\x83\n\"1", "Q\x83\n S1 @1"},
                 {"\"" + long_text + "\x5C\"1", "Q" + long_text + "\x5C S1 @0"},
                 {"\"\x83", "!, error: syntax"}});
  std::setlocale(LC_ALL, "C");
}

}  // namespace
