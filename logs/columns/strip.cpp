#include "logs/columns/strip.hpp"

#include <algorithm>
#include <bit>
#include <cstring>

#include "base/byte_order.hpp"
#include "base/compiler.hpp"

namespace zelk::logs {

namespace {

/// Makes values 0 whose bit is clear.
template <typename Value>
void clear_nulls(unsigned char* to, std::size_t count, const std::uint64_t* valid) {
  auto* const values = reinterpret_cast<Value*>(to);
  for (std::size_t i = 0; i < count; ++i) {
    const auto is_valid = static_cast<Value>(is_set(valid, i) ? 1 : 0);
    values[i] = static_cast<Value>(values[i] & (Value{0} - is_valid));
  }
}

void clear_nulls(unsigned char* values, std::size_t count, std::size_t width,
                 const std::uint64_t* valid) {
  if (width == 1) return clear_nulls<std::uint8_t>(values, count, valid);
  if (width == 2) return clear_nulls<std::uint16_t>(values, count, valid);
  if (width == 4) return clear_nulls<std::uint32_t>(values, count, valid);
  clear_nulls<std::uint64_t>(values, count, valid);
}

}  // namespace

void StripFrames::load(const ZelkFrameBlock& block, std::span<const std::uint32_t> frames) {
  data = block.DataBytes().data();
  count = frames.size();
  if (are_neighbours(frames)) {
    offsets = block.DataOffsets().data() + frames.front();
    lengths = block.Lengths().data() + frames.front();
  } else {
    pick(block, frames);
  }
  std::uint16_t least = UINT16_MAX;
  for (std::size_t i = 0; i < count; ++i) least = std::min(least, lengths[i]);
  shortest = least;
}

void StripFrames::pick(const ZelkFrameBlock& block, std::span<const std::uint32_t> frames) {
  const auto* const block_offsets = block.DataOffsets().data();
  const auto* const block_lengths = block.Lengths().data();
  for (std::size_t i = 0; i < frames.size(); ++i) {
    picked_offsets_[i] = block_offsets[frames[i]];
    picked_lengths_[i] = block_lengths[frames[i]];
  }
  offsets = picked_offsets_.data();
  lengths = picked_lengths_.data();
}

void StripWords::load(const StripFrames& frames, const Window& window) {
  const bool is_reversed = is_loaded_ && window_.first_byte == window.first_byte;
  if (!is_reversed) gather(frames, window.first_byte);
  if (is_reversed || window.is_motorola) {
    for (std::size_t i = 0; i < frames.count; ++i) words_[i] = reversed_bytes(words_[i]);
  }
  is_loaded_ = true;
  window_ = window;
}

/// Loads the words in the order of Intel.
void StripWords::gather(const StripFrames& frames, std::size_t at) {
  if (frames.shortest > at) {
    const unsigned char* const from = frames.data + at;
    const std::uint32_t* const offsets = frames.offsets;
    for (std::size_t i = 0; i < frames.count; ++i)
      words_[i] = load_little_endian<std::uint64_t>(from + offsets[i]);
  } else {
    // A frame that ends in front of the window has no signal there.
    for (std::size_t i = 0; i < frames.count; ++i) {
      words_[i] = 0;
      if (frames.lengths[i] > at)
        words_[i] = load_little_endian<std::uint64_t>(frames.data + (frames.offsets[i] + at));
    }
  }
}

void StripBits::set(const std::uint8_t* flags, std::size_t count) {
  pack_bits(flags, count, bits.data());
  nulls = clear_bits(count, bits_from(bits.data(), 0));
}

void StripBits::intersect(const StripBits& other, std::size_t count) {
  if (other.nulls == 0) return;
  if (nulls == 0 || other.nulls == count) {
    *this = other;
    return;
  }
  if (nulls == count) return;
  for (std::size_t i = 0; i < words_for(count); ++i) bits[i] &= other.bits[i];
  nulls = clear_bits(count, bits_from(bits.data(), 0));
}

void StripPresence::find(const StripFrames& frames, StripWords& words, const PresencePlan& plan) {
  for (std::size_t i = 0; i < plan.multiplexors.size(); ++i) {
    const Multiplexor& multiplexor = plan.multiplexors[i];
    const std::uint64_t* const from = words.of(frames, multiplexor.window);
    for (std::size_t row = 0; row < frames.count; ++row)
      values_[i][row] = static_cast<std::uint32_t>(multiplexor.field.raw(from[row]));
  }
  for (std::size_t i = 0; i < plan.presences.size(); ++i)
    find_one(frames, plan, plan.presences[i], bits_[i]);
}

void StripPresence::find_one(const StripFrames& frames, const PresencePlan& plan,
                             const Presence& presence, StripBits& found) {
  const bool is_multiplexed = presence.multiplexor != Presence::kAlways;
  found.nulls = 0;
  if (!is_multiplexed && frames.shortest >= presence.end_byte) return;
  found.nulls = frames.count;
  if (presence.end_byte > ZelkFrameBlock::kMostData) return;
  for (std::size_t i = 0; i < frames.count; ++i)
    flags_[i] = frames.lengths[i] >= presence.end_byte ? 1 : 0;
  if (is_multiplexed) select(frames.count, presence);
  found.set(flags_.data(), frames.count);
  if (is_multiplexed)
    found.intersect(bits_[plan.multiplexors[presence.multiplexor].presence], frames.count);
}

/// Clears the flags of frames in which the multiplexor's value is in none of the ranges.
void StripPresence::select(std::size_t count, const Presence& presence) {
  const auto& values = values_[presence.multiplexor];
  std::fill_n(selected_.begin(), count, std::uint8_t{0});
  for (const auto& [low, high] : presence.ranges) {
    const std::uint32_t first = low;
    const std::uint32_t width = high - low;
    if (high < low) continue;
    for (std::size_t i = 0; i < count; ++i)
      selected_[i] |= static_cast<std::uint8_t>(values[i] - first <= width ? 1 : 0);
  }
  for (std::size_t i = 0; i < count; ++i) flags_[i] &= selected_[i];
}

void add_present(ColumnRows& column, std::size_t count, const StripBits& valid) {
  if (valid.nulls == 0) return column.add(count);
  unsigned char* const values = column.end();
  if (valid.nulls == count) {
    std::memset(values, 0, count * column.width());
    return column.add_nulls(count);
  }
  clear_nulls(values, count, column.width(), valid.bits.data());
  column.add(count, valid.bits.data(), valid.nulls);
}

}  // namespace zelk::logs
