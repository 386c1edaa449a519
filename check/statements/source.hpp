/// \file
/// The bytes of a file, and their lines.

#ifndef ZELK_CHECK_STATEMENTS_SOURCE_HPP
#define ZELK_CHECK_STATEMENTS_SOURCE_HPP

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zelk::check {

/// A place in a source as people count: both from 1. Columns count characters where the line is
/// UTF-8, else bytes; a tab is one column.
struct Position {
  std::uint32_t line = 1;
  std::uint32_t column = 1;

  bool operator==(const Position&) const = default;
};

/// The text of a file, unchanged. Places in it are offsets in bytes. Lines end with a line feed,
/// whatever stands before it; in a text without line feeds they end with a carriage return.
class Source {
 public:
  /// Longest text: offsets have 32 bits.
  static constexpr std::size_t kLongest = 0xFFFFFFF0;

  /// @param path   as it is shown to people
  /// @param bytes  at most `kLongest` of them
  Source(std::string path, std::string bytes) : path_(std::move(path)), text_(std::move(bytes)) {}

  const std::string& path() const { return path_; }
  std::string_view text() const { return text_; }
  std::uint32_t size() const { return static_cast<std::uint32_t>(text_.size()); }
  std::string_view text(std::uint32_t begin, std::uint32_t end) const {
    return std::string_view(text_).substr(begin, end - begin);
  }

  /// @param offset  up to the size of the text
  Position position(std::uint32_t offset) const;

  /// The text of a line without its line end; empty for a line that there is not.
  ///
  /// @param number  from 1
  std::string_view line(std::uint32_t number) const;

  /// Where the line around `offset` begins, and where the next one does (or the text ends).
  std::uint32_t line_begin(std::uint32_t offset) const;
  std::uint32_t next_line(std::uint32_t offset) const;

 private:
  const std::vector<std::uint32_t>& starts() const;
  std::size_t index_of(std::uint32_t offset) const;

  std::string path_;
  std::string text_;
  mutable std::vector<std::uint32_t> starts_;  ///< of all lines; empty before the first question
};

}  // namespace zelk::check

#endif
