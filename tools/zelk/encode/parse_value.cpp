#include "encode/parse_value.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <optional>
#include <vector>

#include "base/list.hpp"
#include "base/numbers.hpp"
#include "base/signal_bits.hpp"
#include "input/lookup.hpp"
#include "term/text.hpp"
#include "zelk/manager.hpp"

namespace zelk::tool {

namespace {

constexpr const char* kForceHint = "; --force takes it all the same";

[[noreturn]] void refuse(const sigblk& signal, std::string_view text, const std::string& reason) {
  throw RequestError(fmt::format("{}={}: {}", escaped(view(signal.name)), escaped(text), reason));
}

/// The raw values that a signal's bits can hold; `high` is unsigned for an unsigned signal.
struct RawRange {
  std::int64_t low;
  std::uint64_t high;
};

/// @param signal  of 1 to 64 bits
RawRange range_of(const sigblk& signal) {
  const std::uint64_t all = low_bits(signal.length);
  if (!is_signed(signal)) return {0, all};
  return {-static_cast<std::int64_t>(all / 2) - 1, all / 2};
}

std::string shown_range(const sigblk& signal) {
  const RawRange range = range_of(signal);
  return fmt::format("{} ({} to {})", counted(signal.length, "bit"), range.low, range.high);
}

std::optional<std::int32_t> described_value(const sigblk& signal, std::string_view text,
                                            Encoding encoding) {
  for (const val& value : each(signal.values))
    if (to_utf8(view(value.text), encoding) == text) return value.value;
  return std::nullopt;
}

[[noreturn]] void refuse_unknown(const sigblk& signal, std::string_view text, Encoding encoding) {
  NameSuggestion descriptions(text);
  for (const val& value : each(signal.values))
    descriptions.add(to_utf8(view(value.text), encoding));
  refuse(signal, text,
         (signal.values ? "neither a number nor a value description" : "not a number") +
             descriptions.text());
}

void check_physical(const sigblk& signal, std::string_view text, double physical,
                    const ValueOptions& options) {
  if (options.force) return;
  if (signal.minimum == 0 && signal.maximum == 0) return;
  if (physical >= signal.minimum && physical <= signal.maximum) return;
  refuse(signal, text,
         fmt::format("out of range, {} to {}{}{}{}", signal.minimum, signal.maximum,
                     *signal.unit ? " " : "", escaped(to_utf8(signal.unit, options.encoding)),
                     kForceHint));
}

/// A whole number that is beyond what the bits can hold on the side of `is_low`.
std::int64_t cut(const sigblk& signal, std::string_view text, bool is_low, bool force) {
  if (!force) {
    refuse(signal, text,
           fmt::format("does not fit into {}{}", shown_range(signal),
                       "; --force sets the nearest value"));
  }
  const RawRange range = range_of(signal);
  return is_low ? range.low : static_cast<std::int64_t>(range.high);
}

/// Whether `raw`, of a signal of its signedness, is within the range of its bits.
bool fits(const sigblk& signal, std::int64_t raw) {
  const RawRange range = range_of(signal);
  if (!is_signed(signal)) return static_cast<std::uint64_t>(raw) <= range.high;
  return raw >= range.low && raw <= static_cast<std::int64_t>(range.high);
}

double physical_of(const sigblk& signal, std::int64_t raw) {
  const double number = is_signed(signal) ? static_cast<double>(raw)
                                          : static_cast<double>(static_cast<std::uint64_t>(raw));
  return number * signal.factor + signal.offset;
}

std::int64_t parse_raw(const sigblk& signal, std::string_view text, const ValueOptions& options) {
  const bool is_negative = text.starts_with('-');
  std::string_view digits = text.substr(is_negative ? 1 : 0);
  const bool is_hexadecimal = digits.starts_with("0x") || digits.starts_with("0X");
  if (is_hexadecimal) digits.remove_prefix(2);
  const auto magnitude = parse_whole<std::uint64_t>(digits, is_hexadecimal ? 16 : 10);
  if (!magnitude) refuse(signal, text, "a raw value is a whole number of up to 64 bits");
  const RawRange range = range_of(signal);
  const bool is_below = is_negative && *magnitude > 0 - static_cast<std::uint64_t>(range.low);
  const bool is_above = !is_negative && *magnitude > range.high;
  if (is_below || is_above) return cut(signal, text, is_below, options.force);
  const auto raw = static_cast<std::int64_t>(is_negative ? 0 - *magnitude : *magnitude);
  check_physical(signal, text, physical_of(signal, raw), options);
  return raw;
}

std::int64_t raw_of(const sigblk& signal, std::string_view text, double physical,
                    const ValueOptions& options) {
  if (std::isnan(physical)) refuse(signal, text, "an integer signal cannot hold it");
  check_physical(signal, text, physical, options);
  const double quotient = (physical - signal.offset) / signal.factor;
  const RawRange range = range_of(signal);
  const auto low = static_cast<double>(range.low);
  const auto high = static_cast<double>(range.high);
  // Rounding takes what lies less than a half outside back in.
  const bool is_below = quotient < low && quotient <= low - 0.5;
  const bool is_above = quotient >= high + 0.5;
  if (is_below || is_above) return cut(signal, text, is_below, options.force);
  long long raw = 0;
  ZelkManager(static_cast<void*>(nullptr)).PhysicalToRawValueInt64(physical, signal, raw);
  return raw;
}

std::int64_t parse_integer_value(const sigblk& signal, std::string_view text,
                                 const ValueOptions& options) {
  if (signal.length == 0 || signal.length > 64)
    refuse(signal, text, "only signals of 1 to 64 bits can be set");
  if (const auto number = parse_whole<double>(text)) {
    return options.raw ? parse_raw(signal, text, options) : raw_of(signal, text, *number, options);
  }
  if (options.raw && (text.starts_with("0x") || text.starts_with("0X") || text.starts_with("-0x")))
    return parse_raw(signal, text, options);
  const std::optional<std::int32_t> described = described_value(signal, text, options.encoding);
  if (!described) refuse_unknown(signal, text, options.encoding);
  const std::int64_t raw = is_signed(signal) ? std::int64_t{*described}
                                             : std::int64_t{static_cast<std::uint32_t>(*described)};
  return fits(signal, raw) ? raw : cut(signal, text, raw < 0, options.force);
}

std::int64_t parse_ieee_value(const sigblk& signal, std::string_view text,
                              const ValueOptions& options) {
  const bool is_double = signal.value_type == ZELK_VALUE_IEEE_DOUBLE;
  if (signal.length != (is_double ? 64 : 32)) {
    refuse(signal, text,
           fmt::format("an IEEE number in {} cannot be set", counted(signal.length, "bit")));
  }
  const auto number = parse_whole<double>(text);
  if (!number) refuse(signal, text, "not a number");
  check_physical(signal, text, options.raw ? *number * signal.factor + signal.offset : *number,
                 options);
  const double value = options.raw ? *number : (*number - signal.offset) / signal.factor;
  if (is_double) return std::bit_cast<std::int64_t>(value);
  const auto single = static_cast<float>(value);
  if (std::isinf(single) && !std::isinf(value) && !options.force)
    refuse(signal, text, "beyond what 32 bits can hold; --force sets infinity");
  return std::int64_t{std::bit_cast<std::uint32_t>(single)};
}

}  // namespace

std::int64_t parse_signal_value(const sigblk& signal, std::string_view text,
                                const ValueOptions& options) {
  return is_ieee(signal) ? parse_ieee_value(signal, text, options)
                         : parse_integer_value(signal, text, options);
}

}  // namespace zelk::tool
