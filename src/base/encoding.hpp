/// \file
/// The characters of a database's texts, for formats and outputs that are in UTF-8.
///
/// A database does not say how its texts are encoded. In practice it is UTF-8 or Windows-1252: what
/// is well-formed UTF-8 is taken for that.

#ifndef ZELK_BASE_ENCODING_HPP
#define ZELK_BASE_ENCODING_HPP

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zelk {

enum class Encoding { kUtf8, kWindows1252 };

struct CodePoint {
  std::uint32_t value;
  std::size_t size;  ///< in bytes; 0: not well-formed
};

/// The first code point of a text in UTF-8 that is not empty.
CodePoint first_code_point(std::string_view text);

/// Appends a code point, which is no surrogate, in UTF-8.
void append_utf8(std::string& text, std::uint32_t code_point);

/// Whether `text` is well-formed UTF-8 (RFC 3629): no surrogates, nothing overlong.
bool is_utf8(std::string_view text);

/// UTF-8 when `text` is well-formed UTF-8, else Windows-1252.
Encoding encoding_of(std::string_view text);

/// `bytes` in UTF-8. Broken UTF-8, such as the rest of a character at which a unit was cut, becomes
/// U+FFFD. In Windows-1252 every byte is a character: the five bytes that it leaves undefined are
/// the control characters of the same number, as in the encoding standard of the WHATWG.
std::string to_utf8(std::string_view bytes, Encoding encoding);

/// The bytes from which `to_utf8` makes `text`; none when `text` is no UTF-8, or has characters
/// that the encoding lacks.
std::optional<std::string> from_utf8(std::string_view text, Encoding encoding);

}  // namespace zelk

#endif
