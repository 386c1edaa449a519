/// \file
/// Buffered output of DBC text.

#ifndef ZELK_WRITER_TEXT_OUTPUT_HPP
#define ZELK_WRITER_TEXT_OUTPUT_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string_view>
#include <vector>

namespace zelk {

/// A number with blanks in front, to a width.
struct Padded {
  std::uint32_t number;
  std::size_t width;
};

/// A number in upper-case hexadecimal digits.
struct Hexadecimal {
  std::uint32_t number;
};

class TextOutput {
 public:
  /// @param file  an open stream, which outlives this
  explicit TextOutput(std::FILE* file);
  TextOutput(const TextOutput&) = delete;
  TextOutput& operator=(const TextOutput&) = delete;
  ~TextOutput() { flush(); }

  /// Writes texts, numbers and characters one behind the other. A double is written as "%.14G"
  /// writes it in the C locale.
  template <typename... Items>
  void put(const Items&... items) {
    (put_item(items), ...);
  }

  /// Writes a text in quotes so that it is read back as it is: a double quote behind a backslash,
  /// and a blank where the text would end in a backslash, which would take the closing quote for
  /// its own. Null is the empty text.
  void put_quoted(const char* text) { put_quoted(std::string_view(text ? text : "")); }
  void put_quoted(std::string_view text);

  /// Hands everything to the system.
  ///
  /// @return false when the system did not take all of the output so far
  bool flush();

  /// The system's number (`errno`) of its first refusal; 0 when there was none.
  int error() const { return error_; }

 private:
  void put_item(char character) {
    if (used_ == buffer_.size()) flush();
    buffer_[used_++] = character;
  }
  void put_item(std::string_view text) {
    if (text.size() > buffer_.size() - used_) return put_long(text);
    used_ += text.copy(buffer_.data() + used_, text.size());
  }
  void put_item(const char* text) { put_item(std::string_view(text)); }
  void put_item(std::int32_t number);
  void put_item(std::uint32_t number);
  void put_item(std::uint16_t number) { put_item(std::uint32_t{number}); }
  void put_item(double number);
  void put_item(Padded item);
  void put_item(Hexadecimal item);
  /// A text for which the buffer has no room.
  void put_long(std::string_view text);
  template <typename Integer>
  void put_integer(Integer number);

  void put_escaped(std::string_view text, std::size_t position);
  bool ends_in_lead(std::string_view text) const;
  bool is_lead(char character) const { return leads_[static_cast<unsigned char>(character)]; }

  std::FILE* file_;
  std::array<bool, 256> leads_;  ///< first bytes of double-byte characters
  std::vector<char> buffer_;
  std::size_t used_ = 0;
  int error_ = 0;
};

}  // namespace zelk

#endif
