#include "base/encoding.hpp"

#include <algorithm>
#include <array>
#include <cstdint>

namespace zelk {
namespace {

/// Code points of the bytes 0x80 to 0x9F; from 0xA0 on byte and code point are the same number.
constexpr std::uint32_t kHighFirst = 0x80;
constexpr std::array<std::uint16_t, 32> kHigh = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

std::uint32_t byte_of(char character) { return static_cast<unsigned char>(character); }

/// Bytes of the sequence that `lead` begins; 0 when it begins none.
std::size_t sequence_size(std::uint32_t lead) {
  if (lead < 0x80) return 1;
  if (lead < 0xC2) return 0;  // a later byte, or an overlong sequence of two
  if (lead < 0xE0) return 2;
  if (lead < 0xF0) return 3;
  return lead < 0xF5 ? 4 : 0;
}

bool is_ascii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char each) { return byte_of(each) < 0x80; });
}

/// The Windows-1252 byte of a code point; none for a character that it does not have.
std::optional<char> windows_1252_byte(std::uint32_t code_point) {
  const bool is_same = code_point < kHighFirst || (code_point >= 0xA0 && code_point <= 0xFF);
  if (is_same) return static_cast<char>(code_point);
  const auto* const found = std::find(kHigh.begin(), kHigh.end(), code_point);
  if (found == kHigh.end()) return std::nullopt;
  return static_cast<char>(kHighFirst + static_cast<std::uint32_t>(found - kHigh.begin()));
}

/// `text` with U+FFFD in place of each byte that does not belong to UTF-8.
std::string well_formed(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const std::size_t size = first_code_point(text).size;
    result += size == 0 ? std::string_view("\xEF\xBF\xBD") : text.substr(0, size);
    text.remove_prefix(size == 0 ? 1 : size);
  }
  return result;
}

}  // namespace

CodePoint first_code_point(std::string_view text) {
  constexpr std::array<std::uint32_t, 5> kLeadMask = {0, 0x7F, 0x1F, 0x0F, 0x07};
  constexpr std::array<std::uint32_t, 5> kSmallest = {0, 0, 0x80, 0x800, 0x10000};
  const std::size_t size = sequence_size(byte_of(text[0]));
  if (size == 0 || size > text.size()) return {0, 0};
  std::uint32_t value = byte_of(text[0]) & kLeadMask[size];
  for (const char later : text.substr(1, size - 1)) {
    if ((byte_of(later) & 0xC0) != 0x80) return {0, 0};
    value = value << 6 | (byte_of(later) & 0x3F);
  }
  const bool is_surrogate = value >= 0xD800 && value <= 0xDFFF;
  if (value < kSmallest[size] || value > 0x10FFFF || is_surrogate) return {0, 0};
  return {value, size};
}

void append_utf8(std::string& text, std::uint32_t code_point) {
  const auto put = [&text](std::uint32_t byte) { text += static_cast<char>(byte); };
  const auto put_rest = [&put](std::uint32_t bits) { put(0x80 | (bits & 0x3F)); };
  if (code_point < 0x80) return put(code_point);
  if (code_point < 0x800) {
    put(0xC0 | code_point >> 6);
  } else if (code_point < 0x10000) {
    put(0xE0 | code_point >> 12);
    put_rest(code_point >> 6);
  } else {
    put(0xF0 | code_point >> 18);
    put_rest(code_point >> 12);
    put_rest(code_point >> 6);
  }
  put_rest(code_point);
}

bool is_utf8(std::string_view text) {
  while (!text.empty()) {
    const std::size_t size = first_code_point(text).size;
    if (size == 0) return false;
    text.remove_prefix(size);
  }
  return true;
}

Encoding encoding_of(std::string_view text) {
  return is_utf8(text) ? Encoding::kUtf8 : Encoding::kWindows1252;
}

std::string to_utf8(std::string_view bytes, Encoding encoding) {
  if (encoding == Encoding::kUtf8) return well_formed(bytes);
  if (is_ascii(bytes)) return std::string(bytes);
  std::string text;
  text.reserve(bytes.size() * 2);
  for (const char byte : bytes) {
    const std::uint32_t number = byte_of(byte);
    const bool is_high = number >= kHighFirst && number < kHighFirst + kHigh.size();
    append_utf8(text, is_high ? kHigh[number - kHighFirst] : number);
  }
  return text;
}

std::optional<std::string> from_utf8(std::string_view text, Encoding encoding) {
  if (is_ascii(text)) return std::string(text);
  if (encoding == Encoding::kUtf8) {
    return is_utf8(text) ? std::optional<std::string>(text) : std::nullopt;
  }
  std::string bytes;
  while (!text.empty()) {
    const auto [code_point, size] = first_code_point(text);
    if (size == 0) return std::nullopt;
    const std::optional<char> byte = windows_1252_byte(code_point);
    if (!byte) return std::nullopt;
    bytes += *byte;
    text.remove_prefix(size);
  }
  return bytes;
}

}  // namespace zelk
