#include "findings/excerpt.hpp"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string_view>
#include <utility>

#include "base/encoding.hpp"
#include "base/escaping.hpp"

namespace zelk::tool {

namespace {

constexpr std::size_t kBytesBefore = 60;
constexpr std::size_t kBytesBehind = 100;  // from the place on
constexpr std::string_view kCut = "...";

bool is_later_byte(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

/// The first character of a text in UTF-8 that is not empty.
std::string_view first_character(std::string_view text) {
  std::size_t size = 1;
  while (size < text.size() && is_later_byte(text[size])) ++size;
  return text.substr(0, size);
}

std::uint32_t code_point(std::string_view character) {
  const auto lead = static_cast<unsigned char>(character[0]);
  if (character.size() == 1) return lead;
  std::uint32_t value = lead & (0xFFU >> (character.size() + 1));
  for (const char later : character.substr(1))
    value = value << 6 | (static_cast<unsigned char>(later) & 0x3F);
  return value;
}

using Range = std::pair<std::uint32_t, std::uint32_t>;

template <std::size_t kSize>
bool is_in(const Range (&ranges)[kSize], std::uint32_t value) {
  return std::any_of(std::begin(ranges), std::end(ranges), [value](const Range& range) {
    return range.first <= value && value <= range.second;
  });
}

/// Characters that most terminals show in two columns: those of East Asian scripts, and pictures.
constexpr Range kWide[] = {{0x1100, 0x115F}, {0x2E80, 0xA4CF},   {0xAC00, 0xD7A3},
                           {0xF900, 0xFAFF}, {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},
                           {0xFFE0, 0xFFE6}, {0x1F300, 0x1FAFF}, {0x20000, 0x3FFFD}};
/// Characters that combine with the one before them.
constexpr Range kCombining[] = {{0x300, 0x36F}, {0x20D0, 0x20FF}, {0xFE00, 0xFE0F}};
/// Characters that are not seen, or that make a terminal show others elsewhere.
constexpr Range kUnseen[] = {{0xAD, 0xAD},     {0x200B, 0x200F}, {0x2028, 0x202E},
                             {0x2060, 0x206F}, {0xFEFF, 0xFEFF}, {0xE0000, 0xE007F}};

std::size_t columns_of(std::uint32_t value) {
  if (is_in(kCombining, value)) return 0;
  return is_in(kWide, value) ? 2 : 1;
}

/// The character as it is shown, and its columns. A tab is a blank, so that nothing moves.
std::pair<std::string, std::size_t> shown(std::string_view character) {
  if (character == "\t") return {" ", 1};
  const std::uint32_t value = code_point(character);
  std::string text = escaped(character);
  if (is_in(kUnseen, value)) text = "\xEF\xBF\xBD";  // the replacement character
  return {text, text == character ? columns_of(value) : text.starts_with('\\') ? text.size() : 1};
}

/// The bytes of a line that are shown, and the place in them.
struct Window {
  std::string_view text;
  std::size_t begin;  ///< of what is underlined
  std::size_t end;
  bool is_cut_before;
  bool is_cut_behind;
};

Window window_of(std::string_view line, std::size_t begin, std::size_t end) {
  std::size_t from = begin > kBytesBefore ? begin - kBytesBefore : 0;
  std::size_t to = line.size() - begin > kBytesBehind ? begin + kBytesBehind : line.size();
  while (from < begin && is_later_byte(line[from])) ++from;
  while (to > begin && to != line.size() && is_later_byte(line[to])) --to;
  return {line.substr(from, to - from), begin - from, std::min(end, to) - from, from != 0,
          to != line.size()};
}

}  // namespace

Excerpt excerpt_of(const check::Source& source, const check::Span& span) {
  const std::string_view line = source.line_at(span.begin);
  const std::size_t at = source.offset_in_line(span.begin);
  const std::size_t size = std::min<std::size_t>(span.end - span.begin, line.size() - at);
  const Window window = window_of(line, at, at + size);
  const Encoding encoding = encoding_of(window.text);

  Excerpt excerpt{window.is_cut_before ? std::string(kCut) : "", ""};
  std::size_t column = excerpt.line.size();
  std::size_t from = column;
  std::size_t to = column;
  std::string_view rest = window.text;
  while (!rest.empty()) {
    const std::size_t offset = window.text.size() - rest.size();
    if (offset <= window.begin) from = column;
    if (offset <= window.end) to = column;
    const std::size_t bytes =
        encoding == Encoding::kUtf8 ? first_character(rest).size() : std::size_t{1};
    const auto [text, columns] = shown(to_utf8(rest.substr(0, bytes), encoding));
    excerpt.line += text;
    column += columns;
    rest.remove_prefix(bytes);
  }
  if (window.begin == window.text.size()) from = column;
  if (window.end == window.text.size()) to = column;
  if (window.is_cut_behind) excerpt.line += kCut;
  excerpt.underline.assign(from, ' ').append("^");
  if (to > from + 1) excerpt.underline.append(to - from - 1, '~');
  return excerpt;
}

}  // namespace zelk::tool
