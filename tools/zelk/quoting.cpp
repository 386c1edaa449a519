#include "quoting.hpp"

#include <fmt/format.h>

#include <cstddef>
#include <cstdint>

namespace zelk::tool {

namespace {

bool is_continuation(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

/// Bytes of the UTF-8 character at the beginning of `text`; 0 when none is there.
///
/// Lead bytes: 0xxxxxxx alone, 110xxxxx with 1, 1110xxxx with 2, 11110xxx with 3 continuation
/// bytes 10xxxxxx. No character is longer than need be, a surrogate, or above U+10FFFF.
std::size_t character_length(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text.front());
  if (lead < 0x80) return 1;
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || text.size() < length) return 0;
  for (std::size_t i = 1; i < length; ++i)
    if (!is_continuation(text[i])) return 0;
  const auto second = static_cast<unsigned char>(text[1]);
  const bool is_sound = (lead != 0xE0 || second >= 0xA0) && (lead != 0xED || second < 0xA0) &&
                        (lead != 0xF0 || second >= 0x90) && (lead != 0xF4 || second < 0x90);
  return is_sound ? length : 0;
}

}  // namespace

bool is_utf8(std::string_view text) {
  while (!text.empty()) {
    const std::size_t length = character_length(text);
    if (length == 0) return false;
    text.remove_prefix(length);
  }
  return true;
}

// Latin-1 is the first 256 characters; those from 0x80 on take two bytes, 110000xx 10xxxxxx.
std::string utf8(std::string_view text) {
  if (is_utf8(text)) return std::string(text);
  std::string result;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x80) result += static_cast<char>(0xC0 | byte >> 6);
    result += byte >= 0x80 ? static_cast<char>(0x80 | (byte & 0x3F)) : c;
  }
  return result;
}

std::string json_string(std::string_view text) {
  const bool is_latin1 = !is_utf8(text);
  std::string result = "\"";
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      result += '\\';
      result += c;
    } else if (byte < 0x20 || byte == 0x7F || (is_latin1 && byte >= 0x80)) {
      result += fmt::format("\\u{:04X}", byte);
    } else {
      result += c;
    }
  }
  return result + '"';
}

std::string csv_field(std::string_view text) {
  if (text.find_first_of(",\"\r\n") == std::string_view::npos) return std::string(text);
  std::string result = "\"";
  for (const char c : text) {
    if (c == '"') result += '"';
    result += c;
  }
  return result + '"';
}

}  // namespace zelk::tool
