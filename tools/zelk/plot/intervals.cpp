#include "plot/intervals.hpp"

#include <algorithm>
#include <bit>

namespace zelk::tool {

// Sizes below 2^kStepBits have a class each; then follow 2^kStepBits classes for each octave, told
// by the bits behind the highest one.

std::size_t Intervals::class_of(std::uint64_t size) {
  const auto bits = static_cast<unsigned>(std::bit_width(size));
  if (bits <= kStepBits) return static_cast<std::size_t>(size);
  const unsigned shift = bits - kStepBits - 1;
  return (std::size_t{shift + 1} << kStepBits) + (size >> shift) - (std::size_t{1} << kStepBits);
}

std::int64_t Intervals::largest_of(std::size_t size_class) {
  const std::size_t octave = size_class >> kStepBits;
  if (octave == 0) return static_cast<std::int64_t>(size_class);
  const std::size_t top = (size_class & ((1u << kStepBits) - 1)) + (1u << kStepBits);
  return static_cast<std::int64_t>(((static_cast<std::uint64_t>(top) + 1) << (octave - 1)) - 1);
}

void Intervals::add(std::int64_t nanoseconds) {
  constexpr std::uint64_t kMostBetweenLooks = 4096;
  ++counts_[class_of(static_cast<std::uint64_t>(std::max<std::int64_t>(nanoseconds, 0)))];
  if (++count_ < next_look_) return;
  usual_so_far_ = usual();
  next_look_ = count_ + std::min(count_, kMostBetweenLooks);
}

Intervals& Intervals::operator+=(const Intervals& other) {
  for (std::size_t i = 0; i < kClasses; ++i) counts_[i] += other.counts_[i];
  count_ += other.count_;
  return *this;
}

std::int64_t Intervals::usual() const {
  const std::uint64_t wanted = count_ - count_ / 4;
  std::uint64_t met = 0;
  for (std::size_t i = 0; i < kClasses && count_ > 0; ++i) {
    met += counts_[i];
    if (met >= wanted) return largest_of(i);
  }
  return 0;
}

}  // namespace zelk::tool
