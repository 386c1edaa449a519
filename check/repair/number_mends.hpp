/// \file
/// Numbers as the format spells them.

#ifndef ZELK_CHECK_REPAIR_NUMBER_MENDS_HPP
#define ZELK_CHECK_REPAIR_NUMBER_MENDS_HPP

#include <optional>
#include <string>
#include <string_view>

#include "check/repair/mender.hpp"
#include "check/statements/fault.hpp"

namespace zelk::check {

/// The value of a number, however it is spelled: with a decimal comma, without digits in front of
/// the point, in hexadecimal, followed by letters; none when it does not begin like a number.
std::optional<double> lenient_number(std::string_view text);

/// Spells a number of the right kind (`kOddNumber`, `kTooLong`), but for identifiers of messages
/// beyond 32 bits.
void mend_number(Mender& mender, const Fault& fault);

}  // namespace zelk::check

#endif
