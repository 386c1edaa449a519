/// \file
/// The peak of the process's resident memory.

#ifndef ZELK_BENCH_MEMORY_PEAK_HPP
#define ZELK_BENCH_MEMORY_PEAK_HPP

#include <cstddef>

namespace zelk::bench {

/// Gives free memory back to the system and starts a new measurement of the peak.
///
/// @return bytes resident now
std::size_t reset_memory_peak();

/// The most bytes that were resident since the last reset.
std::size_t memory_peak();

}  // namespace zelk::bench

#endif
