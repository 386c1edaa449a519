#include "json/text_output.hpp"

namespace zelk::modules::json {
namespace {

/// The letter behind the backslash of a short escape; 0 for a character without one.
char short_escape(char character) {
  constexpr std::string_view kCharacters = "\"\\\b\f\n\r\t";
  constexpr std::string_view kLetters = "\"\\bfnrt";
  const std::size_t found = kCharacters.find(character);
  return found == std::string_view::npos ? '\0' : kLetters[found];
}

void append_escaped(std::string& text, char character) {
  const auto byte = static_cast<unsigned char>(character);
  if (const char letter = short_escape(character)) {
    (text += '\\') += letter;
  } else if (byte < 0x20) {
    (text += "\\u00") += static_cast<char>('0' + byte / 16);
    text += "0123456789abcdef"[byte % 16];
  } else {
    text += character;
  }
}

}  // namespace

void TextOutput::open(char bracket) {
  text_ += bracket;
  ++depth_;
  is_empty_ = true;
}

void TextOutput::close(char bracket) {
  --depth_;
  if (!is_empty_) new_line();
  text_ += bracket;
  is_empty_ = false;
}

void TextOutput::element() {
  if (!is_empty_) text_ += ',';
  new_line();
  is_empty_ = false;
}

void TextOutput::key(std::string_view key) {
  element();
  string(key);
  text_ += ": ";
}

void TextOutput::string(std::string_view text) {
  text_ += '"';
  for (const char character : text) append_escaped(text_, character);
  text_ += '"';
}

void TextOutput::new_line() {
  text_ += '\n';
  text_.append(2 * depth_, ' ');
}

}  // namespace zelk::modules::json
