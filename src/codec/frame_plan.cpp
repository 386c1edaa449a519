#include "codec/frame_plan.hpp"

#include <algorithm>
#include <new>
#include <type_traits>
#include <unordered_map>

#include "base/list.hpp"
#include "base/multiplexing.hpp"
#include "codec/frame_words.hpp"

namespace zelk {
namespace {

/// Whether the raw value is a number that a signed 64-bit integer holds.
bool fits_signed_word(const sigblk& signal) {
  return !is_ieee(signal) && (is_signed(signal) || signal.length < kWordBits);
}

/// Bytes that a frame needs to hold a signal.
std::size_t bytes_needed_by(const sigblk& signal) {
  const codec::Position at = codec::locate_in_frame(signal);
  if (codec::length_in_frame(signal) > codec::kInt64Max) return FramePlan::kNeverFits;
  if (!at.motorola) return std::size_t{at.lsb_byte} + at.byte_count;
  return at.byte_count > at.lsb_byte + 1 ? FramePlan::kNeverFits : std::size_t{at.lsb_byte} + 1;
}

QuickSignal quick_signal(const sigblk& signal, std::uint32_t index) {
  const codec::Position at = codec::locate(signal);
  const std::uint32_t byte =
      at.motorola ? static_cast<std::uint32_t>(kWordBytes) - 1 - at.lsb_byte : at.lsb_byte;
  const std::uint64_t sign = is_signed(signal) ? std::uint64_t{1} << (signal.length - 1u) : 0;
  return {signal.factor,
          signal.offset,
          low_bits(signal.length),
          sign,
          index,
          static_cast<std::uint8_t>(at.motorola ? 1 : 0),
          static_cast<std::uint8_t>(8 * byte + at.bit_offset)};
}

}  // namespace

std::unique_ptr<const FramePlan> FramePlan::of(const msgblk& message) {
  return std::unique_ptr<const FramePlan>(new (each(message.signals).size()) FramePlan(message));
}

void* FramePlan::operator new(std::size_t size, std::size_t signal_count) {
  static_assert(std::is_trivially_destructible_v<QuickSignal>);
  return ::operator new (size + signal_count * sizeof(QuickSignal),
                         std::align_val_t{alignof(FramePlan)});
}

void FramePlan::operator delete(void* memory) {
  ::operator delete (memory, std::align_val_t{alignof(FramePlan)});
}

void FramePlan::operator delete(void* memory, std::size_t) { operator delete(memory); }

FramePlan::FramePlan(const msgblk& of) : message(of) {
  for (const sigblk& signal : each(of.signals)) records.push_back(&signal);
  bytes_needed.reserve(records.size());
  for (std::uint32_t index = 0; index < records.size(); ++index) add(index);
  add_dependents();
  presence_words = (records.size() + kWordBits - 1) / kWordBits;
  last_word = low_bits(static_cast<unsigned>((records.size() + kWordBits - 1) % kWordBits) + 1);
  if (presence_words == 1 && slow.empty()) plain_bytes = std::max(bytes_for_all, kWordBytes);
}

void FramePlan::add(std::uint32_t index) {
  const sigblk& signal = *records[index];
  const std::size_t needed = bytes_needed_by(signal);
  bytes_needed.push_back(needed);
  if (!is_multiplexed(signal)) unconditional.push_back(index);
  bytes_for_all = std::max(bytes_for_all, is_multiplexed(signal) ? kNeverFits : needed);
  if (needed == kNeverFits) return;
  if (needed <= kWordBytes && signal.length > 0 && fits_signed_word(signal)) {
    auto* const end = reinterpret_cast<QuickSignal*>(this + 1) + quick_count++;
    new (end) QuickSignal(quick_signal(signal, index));
  } else {
    slow.push_back({signal, codec::locate_in_frame(signal), codec::length_in_frame(signal), index});
  }
}

/// Goes down from the signals that are always present, and so never enters a circle of
/// multiplexors: signals that it does not reach are never present.
void FramePlan::add_dependents() {
  std::unordered_map<const sigblk*, std::vector<std::uint32_t>> selected_by;
  for (std::uint32_t index = 0; index < records.size(); ++index) {
    if (is_multiplexed(*records[index])) selected_by[records[index]->mux_signal].push_back(index);
  }
  std::vector<std::uint32_t> reached = unconditional;
  for (std::size_t i = 0; i < reached.size(); ++i) {
    const auto selected = selected_by.find(records[reached[i]]);
    if (selected == selected_by.end()) continue;
    const auto multiplexor = static_cast<std::uint32_t>(multiplexors.size());
    multiplexors.push_back({*selected->first, codec::access_mask(*selected->first), reached[i]});
    for (const std::uint32_t index : selected->second) add_dependent(index, multiplexor);
    reached.insert(reached.end(), selected->second.begin(), selected->second.end());
  }
}

void FramePlan::add_dependent(std::uint32_t index, std::uint32_t multiplexor) {
  const auto first_range = static_cast<std::uint32_t>(ranges.size());
  for (const muxor_val_range& range : each(records[index]->mux_ranges)) {
    ranges.push_back({range.low, range.high});
  }
  const auto range_count = static_cast<std::uint32_t>(ranges.size()) - first_range;
  dependent.push_back({index, multiplexor, first_range, range_count});
}

}  // namespace zelk
