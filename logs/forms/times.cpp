#include "logs/forms/times.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>

#include "base/characters.hpp"
#include "zelk/logs/frame.hpp"
#include "zelk/logs/times.hpp"

namespace zelk::logs {

namespace {

constexpr std::size_t kNanosecondDigits = 9;
constexpr std::size_t kMostSecondDigits = 10;
constexpr std::int64_t kMostSeconds = INT64_MAX / kNanosecondsPerSecond - 1;

/// Takes exactly `count` digits; none when there are fewer.
std::optional<std::int64_t> take_number(std::string_view& text, std::size_t count) {
  if (text.size() < count) return std::nullopt;
  std::int64_t number = 0;
  for (const char c : text.substr(0, count)) {
    if (!is_digit(c)) return std::nullopt;
    number = number * 10 + (c - '0');
  }
  text.remove_prefix(count);
  return number;
}

std::size_t count_digits(std::string_view text) {
  return static_cast<std::size_t>(std::ranges::find_if_not(text, is_digit) - text.begin());
}

bool take(std::string_view& text, std::string_view any_of) {
  if (text.empty() || any_of.find(text.front()) == std::string_view::npos) return false;
  text.remove_prefix(1);
  return true;
}

/// Takes ".123456", in nanoseconds; 0 when there is no point.
std::optional<std::int64_t> take_fraction(std::string_view& text) {
  if (!take(text, ".")) return 0;
  const std::size_t digits = count_digits(text);
  std::string_view significant = text.substr(0, std::min(digits, kNanosecondDigits));
  const std::size_t kept = significant.size();
  std::int64_t fraction = take_number(significant, kept).value_or(0);
  for (std::size_t i = kept; i < kNanosecondDigits; ++i) fraction *= 10;
  text.remove_prefix(digits);
  return digits > 0 ? std::optional(fraction) : std::nullopt;
}

/// Takes "Z" or "+02:00", in seconds; 0 when there is none.
std::optional<std::int64_t> take_zone(std::string_view& text) {
  if (text.empty() || take(text, "Z")) return 0;
  const bool is_west = text.starts_with('-');
  if (!take(text, "+-")) return std::nullopt;
  const auto hours = take_number(text, 2);
  take(text, ":");
  const auto minutes = take_number(text, 2);
  if (!hours || !minutes || *hours > 23 || *minutes > 59) return std::nullopt;
  const std::int64_t seconds = (*hours * 60 + *minutes) * 60;
  return is_west ? -seconds : seconds;
}

/// Takes "10:20:30", in seconds.
std::optional<std::int64_t> take_clock(std::string_view& text) {
  std::int64_t seconds = 0;
  for (const std::int64_t limit : {24, 60, 61}) {  // a minute may have a leap second
    if (limit != 24 && !take(text, ":")) return std::nullopt;
    const auto number = take_number(text, 2);
    if (!number || *number >= limit) return std::nullopt;
    seconds = seconds * 60 + *number;
  }
  return seconds;
}

/// Takes "2016-07-09", in days since 1970-01-01.
std::optional<std::int64_t> take_day(std::string_view& text) {
  const auto year = take_number(text, 4);
  if (!year || !take(text, "-")) return std::nullopt;
  const auto month = take_number(text, 2);
  if (!month || !take(text, "-")) return std::nullopt;
  const auto day = take_number(text, 2);
  if (!day || *year < 1678 || *year > 2261) return std::nullopt;
  const std::chrono::year_month_day date{std::chrono::year(static_cast<int>(*year)),
                                         std::chrono::month(static_cast<unsigned>(*month)),
                                         std::chrono::day(static_cast<unsigned>(*day))};
  if (!date.ok()) return std::nullopt;
  return std::chrono::sys_days(date).time_since_epoch().count();
}

/// "1436509052.249713", "-12.5"; none beyond 292 years.
std::optional<std::int64_t> seconds_of(std::string_view text) {
  const bool is_negative = take(text, "-");
  const std::size_t digits = count_digits(text);
  if (digits == 0 || digits > kMostSecondDigits) return std::nullopt;
  const auto seconds = take_number(text, digits);
  const auto fraction = take_fraction(text);
  if (!fraction || !text.empty() || *seconds > kMostSeconds) return std::nullopt;
  const std::int64_t time = *seconds * kNanosecondsPerSecond + *fraction;
  return is_negative ? -time : time;
}

/// "2016-07-09 10:20:30.123456", "2016-07-09T12:20:30+02:00"; none beyond the years 1678 to 2261.
std::optional<std::int64_t> date_of(std::string_view text) {
  constexpr std::int64_t kSecondsPerDay = 86400;
  const auto day = take_day(text);
  if (!day || !take(text, "T ")) return std::nullopt;
  const auto clock = take_clock(text);
  const auto fraction = take_fraction(text);
  const auto zone = take_zone(text);
  if (!clock || !fraction || !zone || !text.empty()) return std::nullopt;
  return (*day * kSecondsPerDay + *clock - *zone) * kNanosecondsPerSecond + *fraction;
}

}  // namespace

}  // namespace zelk::logs

std::optional<std::int64_t> ZelkParseTime(std::string_view text) {
  const auto seconds = zelk::logs::seconds_of(text);
  return seconds ? seconds : zelk::logs::date_of(text);
}

void ZelkAppendTime(std::int64_t time, std::string& text) {
  constexpr std::uint64_t kUnit = zelk::logs::kNanosecondsPerSecond;
  if (time == kZelkNoTime) return;
  const auto magnitude = time < 0 ? std::uint64_t{0} - static_cast<std::uint64_t>(time)
                                  : static_cast<std::uint64_t>(time);
  std::array<char, 32> digits;
  char* at = digits.data();
  if (time < 0) *at++ = '-';
  at = std::to_chars(at, digits.data() + digits.size(), magnitude / kUnit).ptr;
  // One in front keeps the zeros; the point takes its place.
  char* const point = at;
  at = std::to_chars(at, digits.data() + digits.size(), kUnit + magnitude % kUnit).ptr;
  *point = '.';
  if (std::string_view(at - 3, 3) == "000") at -= 3;
  text.append(digits.data(), at);
}
