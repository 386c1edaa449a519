#include "access/frame_plan.hpp"

#include <algorithm>
#include <unordered_map>

namespace zelk {
namespace {

constexpr std::size_t kWordBytes = 8;
constexpr unsigned kWordBits = 64;

/// Whether the raw value is a number that a signed 64-bit integer holds.
bool fits_signed_word(const sigblk& signal) {
  return !codec::is_ieee(signal) && (codec::is_signed(signal) || signal.length < kWordBits);
}

QuickSignal quick_signal(const sigblk& signal, std::uint32_t index) {
  const codec::Position at = codec::locate(signal);
  const std::uint32_t byte =
      at.motorola ? static_cast<std::uint32_t>(kWordBytes) - 1 - at.lsb_byte : at.lsb_byte;
  const std::uint64_t sign =
      codec::is_signed(signal) ? std::uint64_t{1} << (signal.length - 1u) : 0;
  return {signal.factor,
          signal.offset,
          codec::low_bits(signal.length),
          sign,
          index,
          static_cast<std::uint8_t>(at.motorola ? 1 : 0),
          static_cast<std::uint8_t>(8 * byte + at.bit_offset)};
}

}  // namespace

std::size_t bytes_needed_by(const sigblk& signal) {
  const std::uint16_t length = length_in_frame(signal);
  const codec::Position at = codec::locate(signal.start_bit, length, codec::is_motorola(signal));
  if (length > codec::kInt64Max) return FramePlan::kNeverFits;
  if (!at.motorola) return std::size_t{at.lsb_byte} + at.byte_count;
  return at.byte_count > at.lsb_byte + 1 ? FramePlan::kNeverFits : std::size_t{at.lsb_byte} + 1;
}

FramePlan::FramePlan(const msgblk& of) : message(of) {
  for (const sigblk* signal = of.signals; signal; signal = signal->next) add(*signal);
  add_dependents();
  presence_words = static_cast<std::uint32_t>((records.size() + kWordBits - 1) / kWordBits);
  last_word =
      codec::low_bits(static_cast<unsigned>((records.size() + kWordBits - 1) % kWordBits) + 1);
}

void FramePlan::add(const sigblk& signal) {
  const auto index = static_cast<std::uint32_t>(records.size());
  const std::size_t needed = bytes_needed_by(signal);
  records.push_back(&signal);
  signals.push_back(signal);
  masks.push_back(codec::access_mask(signal));
  bytes_needed.push_back(needed);
  if (!codec::is_multiplexed(signal)) unconditional.push_back(index);
  bytes_for_all = std::max(bytes_for_all, codec::is_multiplexed(signal) ? kNeverFits : needed);
  if (needed == kNeverFits) {
    never_fitting.push_back(index);
  } else if (needed <= kWordBytes && signal.length > 0 && fits_signed_word(signal)) {
    quick.push_back(quick_signal(signal, index));
  } else {
    const std::uint16_t length = length_in_frame(signal);
    const auto at = codec::locate(signal.start_bit, length, codec::is_motorola(signal));
    slow.push_back({at, length, index});
  }
}

/// Follows the multiplexors of each signal upwards until one whose standing is known, and then
/// enters all of them from the top. Signals are never present below a circle, ranges without a
/// multiplexor, and a multiplexor of another message.
void FramePlan::add_dependents() {
  std::unordered_map<const sigblk*, std::uint32_t> index_of;
  for (const sigblk* record : records) {
    index_of.emplace(record, static_cast<std::uint32_t>(index_of.size()));
  }
  std::vector<Standing> standings(records.size(), Standing::kUnknown);
  for (const std::uint32_t index : unconditional) standings[index] = Standing::kKnown;
  std::vector<std::uint32_t> chain;
  for (std::uint32_t first = 0; first < records.size(); ++first) {
    std::uint32_t index = first;
    while (standings[index] == Standing::kUnknown) {
      standings[index] = Standing::kUnderWay;
      chain.push_back(index);
      const auto multiplexor = index_of.find(signals[index].mux_signal);
      if (multiplexor == index_of.end()) break;
      index = multiplexor->second;
    }
    const bool is_selected = standings[index] == Standing::kKnown;
    for (; !chain.empty(); chain.pop_back()) {
      standings[chain.back()] = is_selected ? Standing::kKnown : Standing::kNever;
      if (!is_selected) continue;
      add_dependent(chain.back(), index);
      index = chain.back();
    }
  }
}

void FramePlan::add_dependent(std::uint32_t index, std::uint32_t multiplexor) {
  const auto first_range = static_cast<std::uint32_t>(ranges.size());
  for (const muxor_val_range* range = signals[index].mux_ranges; range; range = range->next) {
    ranges.push_back({range->low, range->high});
  }
  const auto range_count = static_cast<std::uint32_t>(ranges.size()) - first_range;
  dependent.push_back({index, multiplexor, first_range, range_count});
}

}  // namespace zelk
