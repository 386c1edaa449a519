/// \file
/// The bytes of a file, or of several put together, and their lines.

#ifndef ZELK_CHECK_STATEMENTS_SOURCE_HPP
#define ZELK_CHECK_STATEMENTS_SOURCE_HPP

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace zelk::check {

/// A place in a source as people count: both from 1. Columns count characters where the line is
/// UTF-8, else bytes; a tab is one column.
struct Position {
  std::uint32_t line = 1;
  std::uint32_t column = 1;

  bool operator==(const Position&) const = default;
};

/// The text of a file, unchanged, or of a file with others in the places that name them. Places in
/// it are offsets in bytes. Lines end with a line feed, whatever stands before it; in a text
/// without line feeds they end with a carriage return.
class Source {
 public:
  /// A part of a source of several files.
  struct Stretch {
    std::uint32_t file;     ///< index
    std::uint32_t begin;    ///< its place in the file
    std::string_view text;  ///< the file's from there on, or one that stands for what is there
  };

  /// Longest text: offsets have 32 bits.
  static constexpr std::size_t kLongest = 0xFFFFFFF0;

  /// @param path   as it is shown to people
  /// @param bytes  at most `kLongest` of them
  Source(std::string path, std::string bytes) : path_(std::move(path)), text_(std::move(bytes)) {}

  /// @param files      single ones, the main one first
  /// @param stretches  in their order, `kLongest` bytes together
  Source(std::vector<Source> files, std::span<const Stretch> stretches);

  /// Of the main file.
  const std::string& path() const { return path_; }
  std::string_view text() const { return text_; }
  /// The last byte of each line end: a line feed, or a carriage return in a text without any.
  char line_break() const { return text_.find('\n') == std::string::npos ? '\r' : '\n'; }
  /// That of the first line, "\r\n" or "\n", for lines that are added.
  std::string_view line_end() const;
  std::uint32_t size() const { return static_cast<std::uint32_t>(text_.size()); }
  std::string_view text(std::uint32_t begin, std::uint32_t end) const {
    return std::string_view(text_).substr(begin, end - begin);
  }

  // What people see of a place: its file, the line and column there, and the text of that line
  // without its line end.
  //
  // @param offset  up to the size of the text

  const std::string& path_at(std::uint32_t offset) const { return own_place(offset).file.path_; }
  Position position(std::uint32_t offset) const;
  std::string_view line_at(std::uint32_t offset) const;
  /// Of the place in `line_at`, in bytes; up to its size, also for a place in the line end.
  std::uint32_t offset_in_line(std::uint32_t offset) const;
  /// The column in units of UTF-16, from 1.
  std::uint32_t utf16_column(std::uint32_t offset) const;

  /// Where the line around `offset` begins, and where the next one does (or the text ends).
  std::uint32_t line_begin(std::uint32_t offset) const;
  std::uint32_t next_line(std::uint32_t offset) const;
  /// Where the line begins that has so many in front of it; the size when there is none.
  std::uint32_t begin_of_line(std::uint32_t lines_before) const;

 private:
  /// A place in the file that it is in.
  struct OwnPlace {
    const Source& file;
    std::uint32_t offset;
  };
  /// Where a stretch begins here, and in its file.
  struct Piece {
    std::uint32_t begin;
    std::uint32_t file;
    std::uint32_t own_begin;
  };

  /// What stands on a line in front of a place of this file.
  struct Front {
    std::uint32_t line = 0;   ///< index
    std::uint32_t begin = 0;  ///< of the line
    std::uint32_t end = 0;
    std::uint32_t characters = 0;
    std::uint32_t long_characters = 0;  ///< those of two units in UTF-16
    bool is_utf8 = true;

    std::uint32_t columns() const { return is_utf8 ? characters : end - begin; }
  };

  OwnPlace own_place(std::uint32_t offset) const;
  Front front_of(std::uint32_t own_offset) const;
  void extend(Front& front, std::uint32_t end) const;
  const std::vector<Front>& marks_of(std::uint32_t line) const;
  const std::vector<std::uint32_t>& starts() const;
  std::size_t index_of(std::uint32_t offset) const;

  std::string path_;
  std::string text_;
  std::vector<Source> files_;  ///< empty for a single file
  std::vector<Piece> pieces_;  ///< likewise; the first begins at 0, and none is empty
  mutable std::vector<std::uint32_t> starts_;  ///< of all lines; empty before the first question
  /// What stands in front of each 4096 bytes of a long line that was asked for.
  mutable std::unordered_map<std::uint32_t, std::vector<Front>> marks_;
};

/// Whether there is nothing but space and line ends.
inline bool is_blank(std::string_view text) {
  return text.find_first_not_of(" \t\r\n") == text.npos;
}

}  // namespace zelk::check

#endif
