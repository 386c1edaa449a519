/// \file
/// Counters that all benchmarks of whole files report.

#ifndef ZELK_BENCH_COUNTERS_HPP
#define ZELK_BENCH_COUNTERS_HPP

#include <benchmark/benchmark.h>

namespace zelk::bench {

/// Reports megabytes (10^6 bytes) a second, nanoseconds a byte, and the size of the file.
///
/// @param size  bytes that one iteration reads or writes
inline void count_bytes(benchmark::State& state, double size) {
  using benchmark::Counter;
  const double bytes = size * static_cast<double>(state.iterations());
  state.counters["MB/s"] = Counter(bytes / 1e6, Counter::kIsRate);
  state.counters["ns/B"] = Counter(bytes / 1e9, Counter::kIsRate | Counter::kInvert);
  state.counters["MB"] = size / 1e6;
}

}  // namespace zelk::bench

#endif
