/// \file
/// The loops that make the values of a column from 64-bit words, one for each row.

#ifndef ZELK_LOGS_COLUMNS_KERNELS_HPP
#define ZELK_LOGS_COLUMNS_KERNELS_HPP

#include <cstddef>
#include <cstdint>

#include "base/compiler.hpp"
#include "logs/columns/texts.hpp"
#include "zelk/logs/columns.hpp"

namespace zelk::logs {

/// Where a signal's bits stand in a word, and what they mean.
struct BitField {
  std::uint64_t mask = ~std::uint64_t{0};  ///< of its bits, shifted down
  std::uint64_t sign = 0;                  ///< the topmost of them for a signed signal, else 0
  unsigned shift = 0;                      ///< of its lowest bit

  /// Sign-extended for a signed signal.
  std::int64_t raw(std::uint64_t word) const {
    return static_cast<std::int64_t>(((word >> shift & mask) ^ sign) - sign);
  }
};

/// All that a loop needs but for the words.
struct Conversion {
  BitField field;
  double factor = 1;
  double offset = 0;
  const DescriptionTexts* texts = nullptr;
};

/// @param out  receives `count` values of the column's type; `kNoText` where there is no text
using Kernel = void (*)(const Conversion& conversion, const std::uint64_t* words, std::size_t count,
                        unsigned char* out);

/// The loop for physical values, as doubles.
///
/// @param is_wide  the form of the loop for processors with AVX2, which gives the same bits
Kernel physical_kernel(const sigblk& signal, const BitField& field, bool is_wide = has_avx2());
/// The loop for raw values or, for a dictionary, for the indices of texts; likewise.
Kernel raw_kernel(ZelkColumnType type, bool is_wide = has_avx2());

/// The narrowest type of a signal's raw values.
ZelkColumnType raw_type(const sigblk& signal);
std::size_t width_of(ZelkColumnType type);
/// As the Arrow C data interface names it; that of the indices for a dictionary.
const char* format_of(ZelkColumnType type);

}  // namespace zelk::logs

#endif
