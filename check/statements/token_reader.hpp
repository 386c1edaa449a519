/// \file
/// Takes the tokens of a statement one after the other.

#ifndef ZELK_CHECK_STATEMENTS_TOKEN_READER_HPP
#define ZELK_CHECK_STATEMENTS_TOKEN_READER_HPP

#include <cstdint>
#include <string_view>

#include "check/statements/document.hpp"

namespace zelk::check {

/// What each operation takes gets its role; what is not there, or is there in a form that leaves no
/// doubt, is a fault, and the reading goes on. Otherwise the statement is not readable, and all
/// further operations of it do nothing.
///
/// Each statement is read exactly at first, token by token as the reader takes them: "node-1" is a
/// name and a number where the form wants these. Only a statement with faults is read again, as it
/// may be meant: there, "node-1" can be one odd name.
///
/// `expected` says what must stand there, in the words of a complaint: "the message's name".
class TokenReader {
 public:
  explicit TokenReader(Document& document) : document_(document), tokens_(document.tokens) {}

  // --- Where the reader is ---

  std::uint32_t at() const { return at_; }
  bool at_end() const { return at_ == tokens_.size(); }
  bool at_mark(char mark) const { return !at_end() && tokens_[at_].is_mark(mark); }
  bool at_kind(TokenKind kind) const { return !at_end() && tokens_[at_].kind == kind; }
  bool at_word(Word word) const { return !at_end() && tokens_[at_].is(word); }
  bool at_text() const { return at_kind(TokenKind::kText) || at_kind(TokenKind::kOpenText); }
  bool at_number() const;
  /// A name, or what can only be meant for one.
  bool at_name() const;
  /// A keyword that begins a statement: the first token of a line, or followed as a statement is.
  bool at_statement() const;
  bool is_readable() const { return is_readable_; }
  /// Whether the name that was taken last seems to go on: "-1" behind "node".
  bool is_within_name() const;
  const Token* peek(std::uint32_t ahead) const;
  /// Whether a token stands on the line of the one before it.
  bool is_on_line_of_previous(std::uint32_t token) const;

  // --- Taking ---

  /// A statement begins here, and is read exactly: with its first fault it becomes unreadable, and
  /// the fault is not kept.
  void begin(std::uint32_t statement);
  /// Goes back to `first`, where the statement began, to read it with its faults.
  void begin_again(std::uint32_t first);
  void take(Role role = Role::kNone);
  void mark(char mark, std::string_view expected);
  void keyword(Word word, std::string_view expected);
  void name(Role role, std::string_view expected);
  /// A name that this statement introduces, which ends at `:` where it has blanks.
  void new_name(Role role, std::string_view expected);
  /// A text; a missing one is taken for an empty one.
  void text(Role role, std::string_view expected);
  /// A word that stands for a text.
  ///
  /// @param may_be_name  whether the reader takes a name there, too
  void word(Role role, bool may_be_name);
  /// A count from 0 to 32767.
  void count(Role role, std::string_view expected);
  /// A whole number.
  void whole(Role role, std::string_view expected);
  void signed_whole(Role role, std::string_view expected);
  /// Any number, with an optional sign.
  ///
  /// @param behind  mark behind the number, up to which a comma counts as a decimal one; 0 for none
  void real(Role role, std::string_view expected, char behind = 0);
  /// The `;` that ends a statement, with all that stands in front of it on the line.
  void semicolon(std::string_view expected);
  void comma_names(Role role, std::string_view expected);
  void blank_names(Role role);

  // --- Faults ---

  void fault(FaultKind kind, std::uint32_t token, std::uint32_t token_end,
             std::string_view expected, std::string_view remedy = {});
  void missing(std::string_view expected, std::string_view remedy);
  /// The statement cannot be read from here on.
  void unreadable(std::string_view expected);
  /// Passes over the rest of an unreadable statement: up to and including the next `;`, or up to a
  /// statement.
  void skip_rest();
  /// Passes over what begins no statement.
  void skip_to_statement();

 private:
  bool touches_next(std::uint32_t token) const;
  bool is_broken_exponent(std::uint32_t number) const;
  void merge(std::uint32_t last, TokenKind kind);
  void take_name(Role role, std::string_view expected);
  std::uint32_t odd_name_end(std::uint32_t first) const;
  std::uint32_t odd_number_end() const;
  using IsRight = bool (*)(const Document&, const Token&);
  void number(Role role, std::string_view expected, IsRight is_right);

  /// Whether a search for the end of a statement has passed the token, and found none.
  bool is_without_semicolon(std::uint32_t token) const {
    return token >= without_semicolon_.first && token < without_semicolon_.second;
  }

  Document& document_;
  std::vector<Token>& tokens_;
  std::uint32_t at_ = 0;
  /// The tokens that the last vain search has passed: it would find nothing from any of them, and
  /// many statements may stand on one line.
  std::pair<std::uint32_t, std::uint32_t> without_semicolon_{0, 0};
  std::uint32_t statement_ = 0;
  bool is_readable_ = true;
  bool is_exact_ = false;
};

}  // namespace zelk::check

#endif
