/// \file
/// Characters that must be other ones before a text can be read.

#ifndef ZELK_CHECK_REPAIR_DECODING_HPP
#define ZELK_CHECK_REPAIR_DECODING_HPP

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "check/findings/finding.hpp"
#include "check/repair/repair.hpp"
#include "check/statements/edits.hpp"

namespace zelk::check {

/// A text in UTF-16, told by its byte order mark or by the zero bytes of its first characters, in
/// UTF-8; none for other texts.
std::optional<std::string> decoded_utf16(std::string_view bytes);

/// What a finding says of such a text.
inline constexpr std::string_view kDecodedUtf16 = "text decoded from UTF-16 to UTF-8";

/// Takes NUL bytes out, and makes lines of a text whose lines end in carriage returns alone.
///
/// @param findings  gets what was done
/// @return none when there is nothing to do
std::optional<Composition> cleaned(std::string_view text, const RepairOptions& options,
                                   std::vector<Finding>& findings);

}  // namespace zelk::check

#endif
