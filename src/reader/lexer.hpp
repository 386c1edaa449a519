/// \file
/// The lexer: from the bytes of a DBC file to the tokens of the grammar.
///
///     token  = name | number | string | any other character from "!" to DEL
///     name   = (letter | "_") { letter | digit | "_" }
///     number = digits [ "." [digits] ] [ ("E" | "e") ["+" | "-"] digits ]
///     string = '"' { byte | '\"' } '"'
///
/// Names and numbers have at most 1023 characters; a name is a keyword or a T_IDENT. The escape in
/// a string stands for the double quote. There are no signed numbers at this level.
///
/// Between tokens, bytes up to " ", bytes 0x80 to 0xFE and comments, from "//" to the end of the
/// line, are skipped. A byte 0xFF there ends the input like the end of the file.

#ifndef ZELK_READER_LEXER_HPP
#define ZELK_READER_LEXER_HPP

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "reader/token.hpp"
#include "reader/window.hpp"
#include "text/new_symbols.hpp"

namespace zelk {

/// Detail of a syntax error's report.
inline constexpr std::string_view kSyntaxErrorText = "error: syntax";

class Lexer {
 public:
  explicit Lexer(ByteSource source);

  /// Reads the next token and returns its code: `ZELK_EOF` at the end of the input, `ZELK_error`
  /// for a malformed number, else a code of the grammar. `value` is set as the code wants it.
  ///
  /// @throws ZelkException for errors 1, 16, 24 and 27
  /// @throws std::bad_alloc
  int next(SemanticValue& value);

  /// Announces a name: from now on statements that begin with it are skipped.
  ///
  /// @return false when there is no memory for it
  bool announce(std::string_view name) { return new_symbols_.add(name); }

  /// Count of the line feeds read so far.
  std::int32_t line() const { return line_; }

  /// The texts of all tokens read so far are not needed any more.
  void forget_texts() { window_.forget(); }

  /// Reports an error at the present line, which ends the read.
  [[noreturn]] void fail(std::uint32_t number, std::string_view text) const;

 private:
  int token(SemanticValue& value);
  char* skip_separators();
  int name(char* start, SemanticValue& value);
  [[noreturn]] void fail_in_name(char* start, char* end);
  int number(char* start, SemanticValue& value);
  int real(char* start, char* position, SemanticValue& value);
  int string(char* quote, SemanticValue& value);
  char* skip_plain(char* position) const;
  char* skip_special(char*& start, char* position);
  char* read_on(char*& start, char* position);
  TokenText unescaped(char* start, char* end) const;
  int slash(char* start);
  void skip_through(char last);

  bool more(char*& start, char*& position);
  template <typename Predicate>
  char* scan(char*& start, char* position, Predicate belongs);
  char* skip_digits(char*& start, char* position);

  Window window_;
  NewSymbols new_symbols_;
  std::int32_t line_ = 0;
  std::array<bool, 256> leads_;            ///< first bytes of double-byte characters
  std::array<bool, 256> string_specials_;  ///< bytes that a string does not simply take
};

}  // namespace zelk

#endif
