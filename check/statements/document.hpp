/// \file
/// A tolerant reading of a file: its statements and their tokens, whatever is wrong with them.

#ifndef ZELK_CHECK_STATEMENTS_DOCUMENT_HPP
#define ZELK_CHECK_STATEMENTS_DOCUMENT_HPP

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "check/statements/fault.hpp"
#include "check/statements/source.hpp"
#include "check/statements/token.hpp"
#include "zelk/records.h"

namespace zelk::check {

struct Statement {
  static constexpr std::uint32_t kNone = Fault::kNoStatement;

  Word kind;
  bool is_readable;     ///< all of it has been read, faults that leave no doubt aside; only then do
                        ///< its tokens have their roles
  std::uint32_t first;  ///< index of its first token, the keyword
  std::uint32_t end;    ///< behind its last token
  std::uint32_t owner = kNone;  ///< statement of the message to which a signal belongs
};

inline constexpr std::uint32_t kNoStatement = Statement::kNone;

/// A text as a sequence of statements. Tokens and statements stand in the order of the text, and
/// every token belongs to one statement. Space and `//` comments between tokens are no tokens.
struct Document {
  Source source;
  std::vector<Token> tokens;
  std::vector<Statement> statements;
  std::vector<Fault> faults;  ///< in characters and forms, in the order of the text

  std::span<const Token> tokens_of(const Statement& statement) const {
    return std::span(tokens).subspan(statement.first, statement.end - statement.first);
  }
  /// As it stands in the file.
  std::string_view text_of(const Token& token) const { return source.text(token.begin, token.end); }
  std::string_view text_of(const Statement& statement) const {
    return source.text(begin_of(statement), end_of(statement));
  }
  std::uint32_t begin_of(const Statement& statement) const { return tokens[statement.first].begin; }
  std::uint32_t end_of(const Statement& statement) const { return tokens[statement.end - 1].end; }
  /// A name that "NS_" announces, as the reader keeps it.
  std::string_view announced_name(const Token& token) const {
    return text_of(token).substr(0, ZELK_INLINE_NAME_MAX);
  }
  /// A text between its quotes, escapes as they stand; other tokens whole.
  std::string_view content_of(const Token& token) const;
  /// First token of the statement with this role; null when it has none.
  const Token* find(const Statement& statement, Role role) const;
  /// Text of the first token with this role; empty when there is none.
  std::string_view text_of(const Statement& statement, Role role) const;
};

/// Reads a text. Never fails but for lack of memory; time and memory are linear in its size.
Document read_document(Source source);

}  // namespace zelk::check

#endif
