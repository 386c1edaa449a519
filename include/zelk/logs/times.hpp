/// \file
/// Points in time as text.

#ifndef ZELK_LOGS_TIMES_HPP
#define ZELK_LOGS_TIMES_HPP

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "zelk/export.h"

/// Reads seconds, "1436509052.249713" or "-0.5", or a date of the Gregorian calendar with its time,
/// "2015-07-10 06:17:32.249713", "2015-07-10T06:17:32Z" or "2015-07-10T08:17:32+02:00". A date
/// without a zone is taken for UTC; digits behind the ninth decimal are cut off.
///
/// @return nanoseconds, for dates since 1970-01-01 00:00 UTC; none for other texts, and for times
/// beyond what 64 bits hold: seconds beyond 292 years, dates before 1678 or after 2261
ZELK_LOGS_API std::optional<std::int64_t> ZelkParseTime(std::string_view text);

/// Appends a time as logs spell it, in seconds with six decimals, or nine where they are needed:
/// "1436509052.249713". `ZelkParseTime` reads the same time from it.
///
/// @param time  in nanoseconds; `kZelkNoTime` appends nothing
/// @throws std::bad_alloc
ZELK_LOGS_API void ZelkAppendTime(std::int64_t time, std::string& text);

#endif
