#include "codec/frame_plan.hpp"

#include <algorithm>
#include <new>
#include <type_traits>
#include <unordered_map>

namespace zelk {

std::size_t bytes_needed_by(const sigblk& signal) {
  const std::uint16_t length = length_in_frame(signal);
  const codec::Position at = codec::locate(signal.start_bit, length, codec::is_motorola(signal));
  if (length > codec::kInt64Max) return FramePlan::kNeverFits;
  if (!at.motorola) return std::size_t{at.lsb_byte} + at.byte_count;
  return at.byte_count > at.lsb_byte + 1 ? FramePlan::kNeverFits : std::size_t{at.lsb_byte} + 1;
}

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

std::unique_ptr<const FramePlan> FramePlan::of(const msgblk& message) {
  std::size_t signal_count = 0;
  for (const sigblk* signal = message.signals; signal; signal = signal->next) ++signal_count;
  return std::unique_ptr<const FramePlan>(new (signal_count) FramePlan(message));
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
  for (const sigblk* signal = of.signals; signal; signal = signal->next) records.push_back(signal);
  bytes_needed.reserve(records.size());
  for (std::uint32_t index = 0; index < records.size(); ++index) add(index);
  add_dependents();
  presence_words = (records.size() + kWordBits - 1) / kWordBits;
  last_word =
      codec::low_bits(static_cast<unsigned>((records.size() + kWordBits - 1) % kWordBits) + 1);
  if (presence_words == 1 && slow.empty()) plain_bytes = std::max(bytes_for_all, kWordBytes);
}

void FramePlan::add(std::uint32_t index) {
  const sigblk& signal = *records[index];
  const std::size_t needed = bytes_needed_by(signal);
  bytes_needed.push_back(needed);
  if (!codec::is_multiplexed(signal)) unconditional.push_back(index);
  bytes_for_all = std::max(bytes_for_all, codec::is_multiplexed(signal) ? kNeverFits : needed);
  if (needed == kNeverFits) return;
  if (needed <= kWordBytes && signal.length > 0 && fits_signed_word(signal)) {
    auto* const end = reinterpret_cast<QuickSignal*>(this + 1) + quick_count++;
    new (end) QuickSignal(quick_signal(signal, index));
  } else {
    const std::uint16_t length = length_in_frame(signal);
    const auto at = codec::locate(signal.start_bit, length, codec::is_motorola(signal));
    slow.push_back({signal, at, length, index});
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
  constexpr std::uint32_t kNone = UINT32_MAX;
  std::vector<std::uint32_t> multiplexor_at(records.size(), kNone);
  std::vector<std::uint32_t> chain;
  for (std::uint32_t first = 0; first < records.size(); ++first) {
    std::uint32_t index = first;
    while (standings[index] == Standing::kUnknown) {
      standings[index] = Standing::kUnderWay;
      chain.push_back(index);
      const auto multiplexor = index_of.find(records[index]->mux_signal);
      if (multiplexor == index_of.end()) break;
      index = multiplexor->second;
    }
    const bool is_selected = standings[index] == Standing::kKnown;
    for (; !chain.empty(); chain.pop_back()) {
      standings[chain.back()] = is_selected ? Standing::kKnown : Standing::kNever;
      if (!is_selected) continue;
      if (multiplexor_at[index] == kNone) {
        multiplexor_at[index] = static_cast<std::uint32_t>(multiplexors.size());
        multiplexors.push_back({*records[index], codec::access_mask(*records[index]), index});
      }
      add_dependent(chain.back(), multiplexor_at[index]);
      index = chain.back();
    }
  }
}

void FramePlan::add_dependent(std::uint32_t index, std::uint32_t multiplexor) {
  const auto first_range = static_cast<std::uint32_t>(ranges.size());
  for (const muxor_val_range* range = records[index]->mux_ranges; range; range = range->next) {
    ranges.push_back({range->low, range->high});
  }
  const auto range_count = static_cast<std::uint32_t>(ranges.size()) - first_range;
  dependent.push_back({index, multiplexor, first_range, range_count});
}

}  // namespace zelk
