#include "monitor/screen/text.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "base/encoding.hpp"
#include "base/escaping.hpp"

namespace zelk::tool {

namespace {

constexpr std::size_t kMostCombining = 3;  // that curses keeps in any case

/// Invisible characters, and those that turn the direction of writing.
bool is_hidden(char32_t c) {
  struct Range {
    char32_t first, last;
  };
  constexpr std::array kRanges = {
      Range{0xAD, 0xAD},     Range{0x61C, 0x61C},     Range{0x115F, 0x1160},
      Range{0x180B, 0x180F}, Range{0x200B, 0x200F},   Range{0x2028, 0x202E},
      Range{0x2060, 0x206F}, Range{0x3164, 0x3164},   Range{0xFE00, 0xFE0F},
      Range{0xFEFF, 0xFEFF}, Range{0xFFA0, 0xFFA0},   Range{0xFFF9, 0xFFFB},
      Range{0xE000, 0xF8FF}, Range{0x1D173, 0x1D17A}, Range{0xE0000, 0x10FFFF}};
  return std::ranges::any_of(
      kRanges, [c](const Range& range) { return range.first <= c && c <= range.last; });
}

/// Takes a text apart into what is printed for each of its characters.
class Printing {
 public:
  Printing(std::string_view rest, const CharacterSet& characters)
      : rest_(rest), characters_(characters) {}

  bool is_at_end() const { return rest_.empty(); }

  /// What is printed for the next character. Combining ones have no columns of their own.
  FittedText next() {
    const CodePoint point = first_code_point(rest_);
    const std::string_view bytes = rest_.substr(0, std::max<std::size_t>(point.size, 1));
    rest_.remove_prefix(bytes.size());
    const bool is_control =
        point.size > 0 && (point.value < 0x20 || (point.value >= 0x7F && point.value < 0xA0));
    if (is_control) return plain(escaped(bytes));
    if (point.size == 1) return plain(std::string(bytes));
    if (!characters_.is_utf8) return plain("?");
    if (point.size == 0) return plain("\xEF\xBF\xBD");
    return wide(bytes, point.value);
  }

 private:
  /// One column for each byte, or for the one character beyond ASCII.
  FittedText plain(std::string text) {
    combining_ = 0;
    can_combine_ = true;
    const std::size_t columns = static_cast<unsigned char>(text.front()) < 0x80 ? text.size() : 1;
    return {std::move(text), columns};
  }

  FittedText wide(std::string_view bytes, char32_t c) {
    const int width = is_hidden(c) ? -1 : characters_.width(c);
    if (width < 0 || (width == 0 && !can_combine_))
      return plain(fmt::format("\\u{:04X}", static_cast<std::uint32_t>(c)));
    if (width == 0) return {combining_++ < kMostCombining ? std::string(bytes) : "", 0};
    combining_ = 0;
    can_combine_ = true;
    return {std::string(bytes), static_cast<std::size_t>(width)};
  }

  std::string_view rest_;
  const CharacterSet& characters_;
  std::size_t combining_ = 0;  // characters in a row
  bool can_combine_ = false;
};

}  // namespace

FittedText fitted(std::string_view text, std::size_t columns, const CharacterSet& characters) {
  FittedText result;
  Printing printing(text, characters);
  std::size_t cut_bytes = 0;  // what is left of `result` beside an ellipsis
  std::size_t cut_columns = 0;
  while (!printing.is_at_end()) {
    const FittedText next = printing.next();
    if (next.columns > columns - result.columns) {
      result.text.resize(cut_bytes);
      if (columns == 0) return {};
      result.text += characters.sign("…", "~");
      return {std::move(result.text), cut_columns + 1};
    }
    result.text += next.text;
    result.columns += next.columns;
    if (result.columns < columns) {
      cut_columns = result.columns;
      cut_bytes = result.text.size();
    }
  }
  return result;
}

}  // namespace zelk::tool
