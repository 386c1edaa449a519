/// \file
/// Times as text logs spell them.

#ifndef ZELK_LOGS_FORMS_TIMES_HPP
#define ZELK_LOGS_FORMS_TIMES_HPP

#include <cstdint>
#include <optional>
#include <string_view>

namespace zelk::logs {

inline constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;

/// "1436509052.249713", "12.5": seconds, in nanoseconds; digits behind the ninth are cut off.
///
/// @return none for other texts, and for times beyond 292 years
std::optional<std::int64_t> seconds_of(std::string_view text);

/// "2016-07-09 10:20:30.123456", "2016-07-09T10:20:30Z", "2016-07-09T12:20:30+02:00": a date of the
/// Gregorian calendar with its time, in nanoseconds since 1970-01-01 00:00 UTC. A time without a
/// zone is taken for UTC.
///
/// @return none for other texts, and for dates beyond the years 1678 to 2261
std::optional<std::int64_t> date_of(std::string_view text);

}  // namespace zelk::logs

#endif
