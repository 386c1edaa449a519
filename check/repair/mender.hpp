/// \file
/// What the mends of one text share: the text, the changes, and what is said of them.

#ifndef ZELK_CHECK_REPAIR_MENDER_HPP
#define ZELK_CHECK_REPAIR_MENDER_HPP

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "check/findings/finding.hpp"
#include "check/repair/repair.hpp"
#include "check/statements/document.hpp"
#include "check/statements/edits.hpp"
#include "check/statements/fault.hpp"
#include "check/statements/names.hpp"

namespace zelk::check {

/// A statement that a mend adds, without its line end.
struct Addition {
  int place;  ///< in the order of statements
  std::string text;
};

class Mender {
 public:
  Mender(const Document& read, const Names& introduced, const RepairOptions& chosen)
      : document(read), names(introduced), options(chosen), states_(read.statements.size()) {}

  /// Whether the mend of this fault is not switched off.
  bool is_on(FaultKind kind) const { return !options.kept.contains(name_of(kind)); }
  bool is_dropped(std::uint32_t statement) const { return states_[statement] == State::kDropped; }
  /// Whether the statement is dropped or rewritten, so that there is nothing more to do about it.
  bool is_settled(std::uint32_t statement) const {
    return statement != Fault::kNoStatement && states_[statement] != State::kStays;
  }
  const Statement& statement(std::uint32_t index) const { return document.statements[index]; }
  const Token& token(std::uint32_t index) const { return document.tokens[index]; }
  std::string_view text_of(std::uint32_t token) const {
    return document.text_of(document.tokens[token]);
  }

  /// Says what was done at a stretch of the text.
  void note(FaultKind kind, Span span, std::string message, std::string statement = {});
  /// Says what was done to tokens of a statement, which is described.
  void note(FaultKind kind, std::uint32_t statement, std::uint32_t token, std::uint32_t token_end,
            std::string message);

  /// Takes a statement out and shows it.
  ///
  /// @param why  "there is no such message"
  void drop(FaultKind kind, std::uint32_t index, std::string_view why);
  /// Takes a statement out, which is neither dropped nor rewritten yet, and says nothing.
  void erase(std::uint32_t index);
  /// Puts another text in the place of a statement, which is read in the next round.
  void rewrite(std::uint32_t index, std::string text);
  /// Takes tokens out, with the blanks in front of them.
  void erase_tokens(std::uint32_t first, std::uint32_t end);
  /// With a blank where a word of the text would become one with what stands beside it.
  void replace_token(std::uint32_t token, std::string text);
  /// Likewise, with what stands behind it.
  void insert_behind_token(std::uint32_t token, std::string text);
  void add(int place, std::string text) { additions.push_back({place, std::move(text)}); }

  const Document& document;
  const Names& names;
  const RepairOptions& options;
  Edits edits;
  std::vector<Addition> additions;
  std::vector<Finding> findings;
  bool needs_line_feed = false;     ///< at the end of the text
  bool has_new_statements = false;  ///< the text has to be read again before references are mended

 private:
  enum class State : std::uint8_t { kStays, kRewritten, kDropped };

  std::vector<State> states_;
};

}  // namespace zelk::check

#endif
