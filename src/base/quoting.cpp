#include "base/quoting.hpp"

#include <array>

#include "base/decimal.hpp"
#include "base/encoding.hpp"
#include "base/escaping.hpp"

namespace zelk {

std::string utf8(std::string_view text) { return to_utf8(text, encoding_of(text)); }

std::string json_string(std::string_view text) {
  std::string result = "\"";
  for (const char c : utf8(text)) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      result += '\\';
      result += c;
    } else if (byte < 0x20 || byte == 0x7F) {
      std::array<char, 4> digits;
      result += "\\u";
      result.append(digits.data(), put_hex(digits.data(), byte, 4));
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

}  // namespace zelk
