#include "writer/text_output.hpp"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <utility>

#include "base/characters.hpp"
#include "base/numbers.hpp"
#include "platform/platform.hpp"

namespace zelk {
namespace {

constexpr std::size_t kBufferSize = 65536;
constexpr std::size_t kIntegerMax = 11;  // characters of a 32-bit integer with its sign

}  // namespace

TextOutput::TextOutput(std::FILE* file)
    : file_(file), leads_(platform::lead_bytes()), buffer_(kBufferSize) {}

bool TextOutput::flush() {
  const std::size_t written = std::fwrite(buffer_.data(), 1, used_, file_);
  const bool has_failed = written != std::exchange(used_, 0);
  if (has_failed && error_ == 0) error_ = errno != 0 ? errno : EIO;
  return error_ == 0;
}

void TextOutput::put_long(std::string_view text) {
  while (!text.empty()) {
    if (used_ == buffer_.size()) flush();
    const std::size_t count = text.copy(buffer_.data() + used_, buffer_.size() - used_);
    used_ += count;
    text.remove_prefix(count);
  }
}

template <typename Integer>
void TextOutput::put_integer(Integer number) {
  if (buffer_.size() - used_ < kIntegerMax) flush();
  char* const start = buffer_.data() + used_;
  used_ += static_cast<std::size_t>(std::to_chars(start, start + kIntegerMax, number).ptr - start);
}

void TextOutput::put_item(std::int32_t number) { put_integer(number); }
void TextOutput::put_item(std::uint32_t number) { put_integer(number); }
void TextOutput::put_item(Padded item) {
  std::array<char, kIntegerMax> digits{};
  auto* const end = std::to_chars(digits.data(), digits.data() + digits.size(), item.number).ptr;
  const auto size = static_cast<std::size_t>(end - digits.data());
  for (std::size_t blanks = size; blanks < item.width; ++blanks) put_item(' ');
  put_item(std::string_view(digits.data(), size));
}

void TextOutput::put_item(Hexadecimal item) {
  std::array<char, kIntegerMax> digits{};
  auto* const end =
      std::to_chars(digits.data(), digits.data() + digits.size(), item.number, 16).ptr;
  std::transform(digits.data(), end, digits.data(), to_upper);
  put_item(std::string_view(digits.data(), static_cast<std::size_t>(end - digits.data())));
}

void TextOutput::put_item(double number) { put_item(NumberText(number).view()); }

void TextOutput::put_quoted(std::string_view text) {
  const std::size_t quote = text.find('"');
  const std::size_t special = std::min(quote, text.find('\\'));
  put('"', text.substr(0, special));
  if (special < text.size()) put_escaped(text, special);
  put('"');
}

/// Writes `text` from `position` on, at its first double quote or backslash.
///
/// Behind the first byte of a double-byte character a backslash is that character's second byte. A
/// quote there is no second byte: it gets a blank in front, so that its backslash is not taken for
/// one.
void TextOutput::put_escaped(std::string_view text, std::size_t position) {
  bool is_behind_lead = ends_in_lead(text.substr(0, position));
  bool is_backslash = false;
  for (const char character : text.substr(position)) {
    if (character == '"') put(is_behind_lead ? " \\" : "\\");
    put(character);
    is_backslash = character == '\\' && !is_behind_lead;
    is_behind_lead = !(is_behind_lead && is_trail_byte(character)) && is_lead(character);
  }
  if (is_backslash) put(' ');
}

/// Whether the last byte of `text` begins a double-byte character.
bool TextOutput::ends_in_lead(std::string_view text) const {
  bool is_behind_lead = false;
  for (const char character : text) {
    is_behind_lead = !(is_behind_lead && is_trail_byte(character)) && is_lead(character);
  }
  return is_behind_lead;
}

}  // namespace zelk
