/// \file
/// The segmentation of a signal: "8|16@1" or, in two pieces, "8|4@1:12@2".

#ifndef ZELK_READER_SEGMENTS_HPP
#define ZELK_READER_SEGMENTS_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "reader/token.hpp"

namespace zelk {

inline constexpr std::uint32_t kLengthMax = 65535;  ///< in bits
inline constexpr std::uint32_t kOrderMax = 4;

/// Where a signal's bits lie, as the records hold it.
struct Layout {
  std::uint16_t start_bit;
  std::uint16_t length_bits;
  bool is_motorola;
};

/// The segments of one statement, each a length in bits and an order number.
class Segments {
 public:
  /// A segment without an order has its position as its order.
  void add(std::uint32_t length_bits) { add(length_bits, static_cast<std::uint32_t>(count_ + 1)); }
  void add(std::uint32_t length_bits, std::uint32_t order);

  /// The layout that they describe: one segment is Motorola when its order is 0; two are when the
  /// first order is greater, and then the start bit counts the bits of its byte from the other end.
  /// None when a length is not 1 to 65535 (the sum included), an order is above 4, or there are
  /// more than two.
  std::optional<Layout> layout(std::uint32_t start_bit) const;

  void clear() { count_ = 0; }

 private:
  std::array<Segment, 2> segments_{};
  std::size_t count_ = 0;  ///< of all that were added; only the first two are kept
};

}  // namespace zelk

#endif
