#include "term/quoting.hpp"

#include <fmt/format.h>

#include "base/encoding.hpp"
#include "term/text.hpp"

namespace zelk::tool {

std::string utf8(std::string_view text) { return zelk::to_utf8(text, zelk::encoding_of(text)); }

std::string json_string(std::string_view text) {
  std::string result = "\"";
  for (const char c : utf8(text)) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      result += '\\';
      result += c;
    } else if (byte < 0x20 || byte == 0x7F) {
      result += fmt::format("\\u{:04X}", byte);
    } else {
      result += c;
    }
  }
  return result + '"';
}

std::string csv_field(std::string_view text) {
  return csv_quoted(escaped_between_lines(utf8(text)));
}

std::string csv_quoted(std::string_view text) {
  if (text.find_first_of(",\"\r\n") == std::string_view::npos) return std::string(text);
  std::string result = "\"";
  for (const char c : text) {
    if (c == '"') result += '"';
    result += c;
  }
  return result + '"';
}

}  // namespace zelk::tool
