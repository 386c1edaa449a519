// Reading: time per byte at three sizes, and the peak of memory per byte of text.

#include <benchmark/benchmark.h>

#include <string>

#include "memory_peak.hpp"
#include "synthetic.hpp"
#include "zelk/zelk.h"

namespace zelk::bench {
namespace {

struct Model {
  symblk* nodes = nullptr;
  msgblk* messages = nullptr;
  env_var_blk* env_vars = nullptr;
  btlblk* bit_timings = nullptr;
  attr_def* attr_defs = nullptr;
  attr* net_attrs = nullptr;
  cat* categories = nullptr;
  filter_t filter = {};
  char* comment = nullptr;
  char* version = nullptr;
  sigtype* sig_types = nullptr;
  valtable* val_tables = nullptr;

  std::uint32_t read(const std::string& path) {
    attr_def* slots[4];
    return zelk_try_read(path.c_str(), &nodes, &messages, &env_vars, &bit_timings, &attr_defs,
                         &net_attrs, &categories, &filter, &comment, &version, &sig_types,
                         &val_tables, slots);
  }

  void free() {
    zelk_free(nodes, messages, env_vars, bit_timings, attr_defs, net_attrs, categories, &filter,
              comment, version, sig_types, val_tables);
    *this = {};
  }
};

/// Argument: messages. Counters: megabytes (10^6) a second, nanoseconds a byte, bytes of peak
/// memory a byte of text.
void read(benchmark::State& state) {
  std::string text = synthetic_database(static_cast<int>(state.range(0)));
  const auto size = static_cast<double>(text.size());
  const TemporaryFile file("zelk_read_bench.dbc", text);
  text = {};
  const std::size_t before = reset_memory_peak();
  std::size_t peak = 0;
  for (auto _ : state) {
    Model model;
    const std::uint32_t error = model.read(file.path());
    if (error != 0) state.SkipWithError(zelk_get_error_text());
    state.PauseTiming();
    if (peak == 0) peak = memory_peak();
    model.free();
    state.ResumeTiming();
  }
  const auto bytes = size * static_cast<double>(state.iterations());
  state.counters["MB/s"] = benchmark::Counter(bytes / 1e6, benchmark::Counter::kIsRate);
  state.counters["ns/B"] =
      benchmark::Counter(bytes / 1e9, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
  state.counters["MB"] = size / 1e6;
  state.counters["peak/B"] = static_cast<double>(peak - before) / size;
}
BENCHMARK(read)->Arg(1250)->Arg(5000)->Arg(20000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zelk::bench
