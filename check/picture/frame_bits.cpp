#include "check/picture/frame_bits.hpp"

#include <algorithm>
#include <utility>

#include "base/signal_bits.hpp"

namespace zelk::check {

namespace {

constexpr std::size_t kMaxRows = 128;
constexpr std::uint32_t kLongestFrameBytes =
    64;  // CAN FD; longer data go through a transport protocol

}  // namespace

// Motorola signals run along the bits as transmitted, most significant first.
BitPlace bit_place(const sigblk& signal, std::uint32_t index) {
  const std::uint32_t start = signal.start_bit;
  const std::uint32_t bit = is_motorola(signal)
                                ? mirrored_bit(mirrored_bit(start) + signal.length - 1 - index)
                                : start + index;
  return {bit >> 3, bit & 7};
}

std::uint32_t last_byte(const sigblk& signal) {
  if (signal.length == 0) return 0;
  return std::max(bit_place(signal, 0).byte, bit_place(signal, signal.length - 1u).byte);
}

std::string place_text(const sigblk& signal) {
  if (signal.length == 0) return "no bits";
  const BitPlace msb = bit_place(signal, signal.length - 1u);
  const BitPlace lsb = bit_place(signal, 0);
  const std::string text = "byte " + std::to_string(msb.byte) + " bit";
  const std::string first = std::to_string(msb.bit);
  const std::string last = std::to_string(lsb.bit);
  if (msb.byte != lsb.byte)
    return text + " " + first + " to byte " + std::to_string(lsb.byte) + " bit " + last;
  return msb.bit != lsb.bit ? text + "s " + first + " to " + last : text + " " + first;
}

FrameBits::FrameBits(std::uint32_t dlc, const std::vector<const sigblk*>& signals) : dlc_(dlc) {
  if (dlc <= kLongestFrameBytes)
    for (std::uint32_t byte = 0; byte < dlc; ++byte) rows_[byte];
  for (const sigblk* signal : signals) place(*signal);
}

void FrameBits::place(const sigblk& signal) {
  const std::uint32_t length = signal.length;
  const bool motorola = is_motorola(signal);
  // Bytes are visited upwards in both byte orders; a signal that leaves the rows is not followed
  // any further.
  for (std::uint32_t i = 0; i < length; ++i) {
    const std::uint32_t index = motorola ? length - 1 - i : i;
    const BitPlace place = bit_place(signal, index);
    Row* const row = row_of(place.byte);
    if (!row) return;
    FrameBit& bit = (*row)[place.bit];
    if (bit.signal_count++ < FrameBit::kMaxNamed) bit.signals.push_back(&signal);
    bit.lsb |= index == 0;
    bit.msb |= index == length - 1;
  }
}

FrameBits::Row* FrameBits::row_of(std::uint32_t byte) {
  const auto found = rows_.find(byte);
  if (found != rows_.end()) return &found->second;
  is_cut_ |= rows_.size() >= kMaxRows;
  return rows_.size() < kMaxRows ? &rows_[byte] : nullptr;
}

std::vector<BitOverlap> FrameBits::overlaps() const {
  std::vector<BitOverlap> overlaps;
  std::map<std::pair<std::vector<const sigblk*>, std::size_t>, std::size_t> index_of;
  for (const auto& [byte, row] : rows_) {
    for (std::uint32_t bit = 0; bit < row.size(); ++bit) {
      const auto& [signals, signal_count, msb, lsb] = row[bit];
      if (signal_count < 2) continue;
      const auto [entry, is_new] = index_of.try_emplace({signals, signal_count}, overlaps.size());
      if (is_new) overlaps.push_back({signals, signal_count, 0, {byte, bit}});
      ++overlaps[entry->second].bit_count;
    }
  }
  return overlaps;
}

}  // namespace zelk::check
