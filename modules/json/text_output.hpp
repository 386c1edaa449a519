/// \file
/// The text of a document that is written.

#ifndef ZELK_MODULES_JSON_TEXT_OUTPUT_HPP
#define ZELK_MODULES_JSON_TEXT_OUTPUT_HPP

#include <string>
#include <string_view>

namespace zelk::modules::json {

/// Writes values in the order of the document, every element and member in a line of its own,
/// indented by two blanks. Callers write one value for every key.
class TextOutput {
 public:
  /// Begins an object with '{', an array with '['.
  void open(char bracket);
  void close(char bracket);
  /// Begins an element of an array, whose value comes next.
  void element();
  /// Begins a member of an object, whose value comes next.
  void key(std::string_view key);
  /// A string. Bytes from 0x80 on stay as they are, whatever encoding they have.
  void string(std::string_view text);
  /// A value in the spelling of the document: a number, true, false or null.
  void literal(std::string_view spelling) { text_ += spelling; }

  const std::string& text() const { return text_; }

 private:
  void new_line();

  std::string text_;
  std::size_t depth_ = 0;
  bool is_empty_ = true;  ///< whether the innermost open array or object is
};

}  // namespace zelk::modules::json

#endif
