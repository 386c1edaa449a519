#include "plot/ticks.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <limits>

#include "words/record_words.hpp"

namespace zelk::tool {

namespace {

constexpr std::int64_t kSecond = 1'000'000'000;  // in nanoseconds
constexpr std::int64_t kMinute = 60;
constexpr std::int64_t kHour = 60 * kMinute;
constexpr std::int64_t kDay = 24 * kHour;

/// The smallest of 1, 2 or 5 times a power of ten that is not below `step`.
double round_step(double step) {
  const double power = std::pow(10.0, std::floor(std::log10(step)));
  for (const double factor : {1.0, 2.0, 5.0})
    if (factor * power >= step * (1 - 1e-9)) return factor * power;
  return 10 * power;
}

/// Decimals that a multiple of the step needs.
int decimals_of(double step) {
  return std::max(0, -static_cast<int>(std::floor(std::log10(step) + 1e-9)));
}

std::string number_label(double number, double step) {
  constexpr double kMostInDigits = 1e7;
  constexpr double kMostWithSteps = 1e12;  // where fewer digits would not tell two steps apart
  constexpr int kFewDigits = 6;
  const double size = std::abs(number);
  const bool needs_digits = size < kMostWithSteps && size / step >= 1e5;
  const int decimals = decimals_of(step);
  if ((size < kMostInDigits || needs_digits) && decimals <= kFewDigits)
    return fmt::format("{:.{}f}", number == 0 ? 0.0 : number, decimals);
  const double digits = number == 0 ? 0 : std::floor(std::log10(size / step)) + 2;
  return fmt::format("{:.{}g}", number, std::clamp(static_cast<int>(digits), kFewDigits, 17));
}

std::string date_text(std::int64_t day) {
  const std::chrono::year_month_day date{std::chrono::sys_days{std::chrono::days{day}}};
  return fmt::format("{:04}-{:02}-{:02}", static_cast<int>(date.year()),
                     static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
}

/// A point in time of a figure: whole seconds since 1970, and the part of one behind them.
struct Moment {
  Moment(const Figure& figure, double seconds)
      : second(figure.origin / kSecond + static_cast<std::int64_t>(std::floor(seconds))),
        fraction(seconds - std::floor(seconds)) {}

  std::int64_t day() const { return second / kDay; }
  std::int64_t of_day() const { return second % kDay; }

  std::int64_t second;
  double fraction;
};

std::string clock_text(const Moment& moment, bool has_seconds, int decimals) {
  const std::int64_t time = moment.of_day();
  std::string text = fmt::format("{:02}:{:02}", time / kHour, time % kHour / kMinute);
  if (!has_seconds) return text;
  text += fmt::format(":{:02}", time % kMinute);
  if (decimals > 0) text += fmt::format("{:.{}f}", moment.fraction, decimals).substr(1);
  return text;
}

std::string date_label(const Figure& figure, double at, double step, bool has_date) {
  const Moment moment(figure, at + 1e-9);
  if (step >= static_cast<double>(kDay)) return date_text(moment.day());
  const std::string clock =
      clock_text(moment, step < static_cast<double>(kMinute), decimals_of(std::min(step, 1.0)));
  return has_date ? date_text(moment.day()).substr(5) + ' ' + clock : clock;
}

/// Round parts of minutes, hours and days; multiples of days behind them.
double round_time_step(double step) {
  constexpr std::array<std::int64_t, 18> kSteps = {
      1,       2,           5,           10,           15,           30,
      kMinute, 2 * kMinute, 5 * kMinute, 10 * kMinute, 15 * kMinute, 30 * kMinute,
      kHour,   2 * kHour,   3 * kHour,   6 * kHour,    12 * kHour,   kDay};
  if (step <= 0.5) return round_step(step);
  for (const std::int64_t round : kSteps)
    if (static_cast<double>(round) >= step) return static_cast<double>(round);
  return round_step(step / static_cast<double>(kDay)) * static_cast<double>(kDay);
}

/// The multiples of a step in a range, shifted by less than a step.
std::vector<double> multiples(const Span& span, double step, double shift, std::size_t most) {
  std::vector<double> result;
  const double first = std::ceil((span.low - shift) / step - 1e-9);
  for (std::size_t i = 0; i < most + 2; ++i) {
    const double at = (first + static_cast<double>(i)) * step + shift;
    if (at > span.high + step * 1e-9) break;
    result.push_back(at);
  }
  return result;
}

bool spans_days(const Figure& figure) {
  return Moment(figure, figure.begin).day() != Moment(figure, figure.end).day();
}

}  // namespace

std::optional<Span> value_range(const Curve& curve) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  Span range{kInfinity, -kInfinity};
  for (const double value : curve.values) {
    if (!std::isfinite(value)) continue;
    range.low = std::min(range.low, value);
    range.high = std::max(range.high, value);
  }
  return range.low <= range.high ? std::optional(range) : std::nullopt;
}

Span value_span(const Axis& axis) {
  double low = std::numeric_limits<double>::infinity();
  double high = -low;
  for (const Curve& curve : axis.curves) {
    const std::optional<Span> range = value_range(curve);
    if (!range) continue;
    low = std::min(low, range->low);
    high = std::max(high, range->high);
  }
  if (low > high) return {0, 1};
  constexpr double kRoom = 0.04;  // of the range, on either side
  const double room = std::max((high / 2 - low / 2) * 2 * kRoom, 0.0);
  const double alone = low == 0 ? 1 : std::abs(low) * 0.1;  // around a single value
  const double around = low == high ? alone : room;
  constexpr double kMost = std::numeric_limits<double>::max();
  const Span span{std::max(low - around, -kMost), std::min(high + around, kMost)};
  return span.low < span.high ? span : Span{low / 2, low * 2 + 1e-300};
}

Span time_span(const Figure& figure) {
  if (figure.begin < figure.end) return {figure.begin, figure.end};
  return {figure.begin - 0.5, figure.begin + 0.5};
}

std::vector<Tick> number_ticks(const Span& span, std::size_t most) {
  const double wanted = (span.high - span.low) / static_cast<double>(most);
  if (!std::isnormal(wanted) || !std::isnormal(round_step(wanted))) {
    return {{span.low, fmt::format("{:.6g}", span.low)},
            {span.high, fmt::format("{:.6g}", span.high)}};
  }
  const double step = round_step(wanted);
  std::vector<Tick> ticks;
  for (const double at : multiples(span, step, 0, most))
    ticks.push_back({at, number_label(at, step)});
  return ticks;
}

std::vector<Tick> time_ticks(const Figure& figure, std::size_t most) {
  const Span span = time_span(figure);
  if (!figure.is_dated) return number_ticks(span, most);
  const double step =
      std::max(round_time_step((span.high - span.low) / static_cast<double>(most)), 1e-9);
  // The origin is a whole second: multiples of days and hours count from 1970.
  const double shift =
      step <= 1 ? 0
                : static_cast<double>(-(figure.origin / kSecond % static_cast<std::int64_t>(step)));
  std::vector<Tick> ticks;
  for (const double at : multiples(span, step, shift, most))
    ticks.push_back({at, date_label(figure, at, step, spans_days(figure))});
  return ticks;
}

std::string time_caption(const Figure& figure) {
  if (!figure.is_dated) return "s";
  const std::string first = date_text(Moment(figure, figure.begin).day());
  const std::string last = date_text(Moment(figure, figure.end).day());
  return first == last ? first + ", UTC" : first + " to " + last + ", UTC";
}

std::string time_text(const Figure& figure, double seconds) {
  if (!figure.is_dated) return check::number_text(std::round(seconds * 1e6) / 1e6) + " s";
  const Moment moment(figure, seconds + 5e-7);
  return date_text(moment.day()) + 'T' + clock_text(moment, true, 0) +
         fmt::format(".{:06}Z", static_cast<int>(moment.fraction * 1e6));
}

}  // namespace zelk::tool
