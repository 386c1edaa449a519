#include "reader/segments.hpp"

#include "base/signal_bits.hpp"

namespace zelk {
namespace {

bool is_valid(const Segment& segment) {
  return segment.length_bits >= 1 && segment.length_bits <= kLengthMax &&
         segment.order <= kOrderMax;
}

}  // namespace

void Segments::add(std::uint32_t length_bits, std::uint32_t order) {
  if (count_ < segments_.size()) segments_[count_] = {length_bits, order};
  ++count_;
}

std::optional<Layout> Segments::layout(std::uint32_t start_bit) const {
  const auto& [first, second] = segments_;
  const auto start = static_cast<std::uint16_t>(start_bit);
  if (count_ > 2 || !is_valid(first)) return std::nullopt;
  if (count_ == 1)
    return Layout{start, static_cast<std::uint16_t>(first.length_bits), first.order == 0};
  const std::uint32_t length_bits = first.length_bits + second.length_bits;
  if (!is_valid(second) || length_bits > kLengthMax) return std::nullopt;
  const bool is_motorola = first.order > second.order;
  return Layout{is_motorola ? static_cast<std::uint16_t>(mirrored_bit(start)) : start,
                static_cast<std::uint16_t>(length_bits), is_motorola};
}

}  // namespace zelk
