/// \file
/// The characters of a database's texts, for formats and outputs that are in UTF-8.
///
/// A database does not say how its texts are encoded. In practice it is UTF-8 or Windows-1252, and
/// the former is told from the latter by its shape.

#ifndef ZELK_BASE_ENCODING_HPP
#define ZELK_BASE_ENCODING_HPP

#include <optional>
#include <string>
#include <string_view>

namespace zelk {

enum class Encoding { kUtf8, kWindows1252 };

/// Whether `text` is well-formed UTF-8 (RFC 3629): no surrogates, nothing overlong.
bool is_utf8(std::string_view text);

/// UTF-8 when `text` is that, else Windows-1252.
Encoding encoding_of(std::string_view text);

/// `bytes` in UTF-8. What is broken in a text of that encoding, such as the rest of a character at
/// which a unit was cut, becomes U+FFFD. Of Windows-1252 every byte has a character: the five that
/// it leaves open are the control characters of the same number, as the WHATWG's encoding standard
/// has it.
std::string to_utf8(std::string_view bytes, Encoding encoding);

/// The bytes of which `to_utf8` makes `text`; none when `text` has other characters, or is no
/// UTF-8.
std::optional<std::string> from_utf8(std::string_view text, Encoding encoding);

}  // namespace zelk

#endif
