/// \file
/// Changes of a text, gathered by place and then made.

#ifndef ZELK_CHECK_PATCH_SPLICES_HPP
#define ZELK_CHECK_PATCH_SPLICES_HPP

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "check/findings/finding.hpp"
#include "check/statements/document.hpp"
#include "check/statements/edits.hpp"

namespace zelk::check {

/// A text in the place of another, and where they differ.
struct Patched {
  std::string text;
  std::vector<Splice> splices;  ///< in order; only where something changed
};

/// Changes of a document's text, made in its own style: line ends, indentation, blank lines.
class Splices {
 public:
  /// @param document  must outlive the object
  explicit Splices(const Document& document);

  /// The text in place of [`begin`, `end`). Of changes that overlap, the one that begins first
  /// counts, then the first given; statements that are removed go with all changes in them.
  void replace(std::uint32_t begin, std::uint32_t end, std::string text);

  /// Takes a statement out: with its line, and a comment behind it there, when it stands there
  /// alone. Where whole lines between two empty ones go, one of these goes as well.
  void remove(std::uint32_t statement);

  /// Puts a statement behind another one, also behind one that is removed. Those that are put at
  /// the same place stand there in the order of the calls.
  ///
  /// @param anchor     index of the statement; `Statement::kNone` for the beginning of the text
  /// @param statement  its text, with the line ends of the document
  /// @param is_block   it gets an empty line in front where there is one behind the anchor
  void insert(std::uint32_t anchor, std::string_view statement, bool is_block);

  /// Blanks in front of a statement that begins a line.
  std::string indentation_at(std::uint32_t statement) const;

  /// A text with the line ends of the document.
  std::string with_line_ends(std::string_view text) const;

  /// Makes the changes. A text without a line end at its end stays one.
  Patched apply();

 private:
  struct Insertion {
    std::uint32_t place;
    std::string text;
  };
  /// Behind the blanks, and a comment, from `offset` on: the next line, the end of the text, or a
  /// token.
  struct Rest {
    bool is_empty;  ///< of the line
    std::uint32_t end;
  };

  Rest rest_of_line(std::uint32_t offset) const;
  bool is_blank_line(std::uint32_t begin) const;
  std::uint32_t line_begin_if_first(std::uint32_t offset) const;
  std::uint32_t behind_gap(std::uint32_t begin) const;
  void close_gaps();
  void join_removals();
  void take_blanks(Span& removal) const;
  void place(Insertion& insertion);
  bool is_end_open() const;
  void keep_open_end(Patched& patched) const;

  const Document& document_;
  const Source& source_;
  std::string_view line_end_;
  Edits edits_;
  std::vector<Span> lines_;     ///< removed, whole ones
  std::vector<Span> removals_;  ///< all others; `apply` adds the lines
  std::vector<Insertion> insertions_;
};

}  // namespace zelk::check

#endif
