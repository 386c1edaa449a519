/// \file
/// The values of signals as outputs spell them: numbers and value descriptions.

#ifndef ZELK_BASE_SIGNAL_SPELLING_HPP
#define ZELK_BASE_SIGNAL_SPELLING_HPP

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "base/decimal.hpp"
#include "base/list.hpp"
#include "base/signal_bits.hpp"
#include "zelk/records.h"

namespace zelk {

/// How not-a-number and the infinities are written: "nan", "inf", "-inf", or "null".
enum class NonFinite { kAsText, kAsNull };

/// Spells the numbers of one signal. Raw values are those of `ZelkFrameDecoder::DecodeRaw`.
class SignalNumbers {
 public:
  explicit SignalNumbers(const sigblk& signal);

  /// Puts the physical value; of an IEEE single with no more digits than its bits are worth.
  ///
  /// @param at  has room for `kNumberBytes`
  /// @return where the text ends
  char* put(char* at, std::int64_t raw, NonFinite non_finite) const;
  /// Puts the raw value: a whole number, or the number of the bits of an IEEE signal.
  char* put_raw(char* at, std::int64_t raw, NonFinite non_finite) const;

 private:
  char* put_ieee(char* at, double number, NonFinite non_finite) const;
  double ieee_number(std::int64_t raw) const;

  bool is_signed_;
  bool is_ieee_;
  bool is_double_;  ///< of 64 bits, when it is an IEEE signal
  double factor_;
  double offset_;
  DecimalScale scale_;
};

/// The value descriptions of a signal, spelled once.
class SpelledDescriptions {
 public:
  /// Of several texts for a value the first counts.
  void add(std::uint32_t value, const std::string& text) { texts_.try_emplace(value, text); }
  bool empty() const { return texts_.empty(); }
  /// The text for a raw value; empty for none.
  std::string_view find(std::int64_t raw) const;

 private:
  std::map<std::uint32_t, std::string> texts_;
};

/// @param spell  gives the text of a value description as the output has it. IEEE signals have none
template <typename Spell>
SpelledDescriptions spelled_descriptions(const sigblk& signal, const Spell& spell) {
  SpelledDescriptions texts;
  if (is_ieee(signal)) return texts;
  for (const val& value : each(signal.values))
    texts.add(static_cast<std::uint32_t>(value.value), spell(value.text));
  return texts;
}

}  // namespace zelk

#endif
