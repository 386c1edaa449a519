#include "base/signal_spelling.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace zelk {

namespace {

char* put_number(char* at, double number, NonFinite non_finite) {
  constexpr std::string_view kNull = "null";
  if (non_finite == NonFinite::kAsText || std::isfinite(number)) return put_double(at, number);
  return std::ranges::copy(kNull, at).out;
}

}  // namespace

SignalNumbers::SignalNumbers(const sigblk& signal)
    : is_signed_(is_signed(signal)),
      is_ieee_(is_ieee(signal)),
      is_double_(signal.value_type == ZELK_VALUE_IEEE_DOUBLE),
      factor_(signal.factor),
      offset_(signal.offset),
      scale_(signal.factor, signal.offset) {}

double SignalNumbers::ieee_number(std::int64_t raw) const {
  if (is_double_) return std::bit_cast<double>(raw);
  return static_cast<double>(std::bit_cast<float>(static_cast<std::uint32_t>(raw)));
}

char* SignalNumbers::put_ieee(char* at, double number, NonFinite non_finite) const {
  if (is_double_ || !std::isfinite(number)) return put_number(at, number, non_finite);
  return put_float(at, static_cast<float>(number));
}

char* SignalNumbers::put(char* at, std::int64_t raw, NonFinite non_finite) const {
  if (!is_ieee_) return scale_.put(at, raw, is_signed_);
  const double number = ieee_number(raw);
  if (factor_ == 1 && offset_ == 0) return put_ieee(at, number, non_finite);
  return put_number(at, number * factor_ + offset_, non_finite);
}

char* SignalNumbers::put_raw(char* at, std::int64_t raw, NonFinite non_finite) const {
  if (!is_ieee_) return put_integer(at, raw, is_signed_);
  return put_ieee(at, ieee_number(raw), non_finite);
}

std::string_view SpelledDescriptions::find(std::int64_t raw) const {
  if (texts_.empty()) return {};
  if (raw < std::numeric_limits<std::int32_t>::min() ||
      raw > std::numeric_limits<std::uint32_t>::max()) {
    return {};
  }
  const auto found = texts_.find(static_cast<std::uint32_t>(raw));
  return found == texts_.end() ? std::string_view() : found->second;
}

}  // namespace zelk
