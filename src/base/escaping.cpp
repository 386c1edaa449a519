#include "base/escaping.hpp"

#include <cstddef>

namespace zelk {

namespace {

bool is_control(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte < 0x20 || byte == 0x7F;
}

/// The control characters U+0080 to U+009F, which terminals obey as they do escape sequences.
bool is_wide_control(std::string_view text, std::size_t at) {
  if (text[at] != '\xC2' || at + 1 == text.size()) return false;
  const auto second = static_cast<unsigned char>(text[at + 1]);
  return second >= 0x80 && second <= 0x9F;
}

void append_control(std::string& result, char c) {
  constexpr std::string_view kNamed = "\n\r\t";
  const std::size_t name = kNamed.find(c);
  if (name == std::string_view::npos) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    const auto byte = static_cast<unsigned char>(c);
    result.append({'\\', 'x', kDigits[byte >> 4], kDigits[byte & 0xF]});
  } else {
    result.append({'\\', "nrt"[name]});
  }
}

/// @param kept  control characters that are not escaped
std::string escape(std::string_view text, std::string_view also_escaped,
                   std::string_view kept = {}) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (is_wide_control(text, i)) {
      append_control(result, text[i]);
      append_control(result, text[++i]);
    } else if (is_control(text[i]) && kept.find(text[i]) == std::string_view::npos) {
      append_control(result, text[i]);
    } else {
      if (also_escaped.find(text[i]) != std::string_view::npos) result += '\\';
      result += text[i];
    }
  }
  return result;
}

}  // namespace

std::string escaped(std::string_view text) { return escape(text, ""); }

std::string escaped_between_lines(std::string_view text) { return escape(text, "", "\t\r\n"); }

std::string in_quotes(std::string_view text) { return '"' + escape(text, "\"\\") + '"'; }

}  // namespace zelk
