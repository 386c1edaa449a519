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

namespace zelk::check {

/// A stretch of the old text, and what stands there in the new one.
struct Splice {
  Span before;
  Span after;
};

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
  /// counts, then the longest one.
  void replace(std::uint32_t begin, std::uint32_t end, std::string text);

  /// Takes a statement out: with its line, and a comment behind it there, when it stands there
  /// alone.
  void remove(std::uint32_t statement);

  /// Puts a statement behind another one. Those that are put at the same place stand there in the
  /// order of the calls.
  ///
  /// @param anchor     index of the statement; `Statement::kNone` for the beginning of the text
  /// @param statement  its text, with the line ends of the document
  /// @param is_block   it gets an empty line in front where there is one behind the anchor
  void insert(std::uint32_t anchor, std::string_view statement, bool is_block);

  /// Blanks in front of a statement that begins a line.
  std::string indentation_at(std::uint32_t statement) const;

  /// A text with the line ends of the document.
  std::string with_line_ends(std::string_view text) const;

  /// Makes the changes.
  Patched apply();

 private:
  struct Change {
    std::uint32_t begin;
    std::uint32_t end;
    std::string text;
    bool is_line;  ///< whole lines are removed
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
  void sort();
  void close_gaps();
  bool is_changed_at(std::uint32_t offset) const;

  const Document& document_;
  const Source& source_;
  std::string_view line_end_;
  std::vector<Change> changes_;
};

}  // namespace zelk::check

#endif
