// Reading: time per byte at three sizes, and the peak of memory per byte of text.

#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "counters.hpp"
#include "memory_peak.hpp"
#include "support/lists.hpp"
#include "synthetic.hpp"

namespace zelk::bench {
namespace {

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
    auto model = std::make_unique<Lists>();
    const std::uint32_t error = model->try_read(file.path().c_str());
    if (error != 0) state.SkipWithError(zelk_get_error_text());
    state.PauseTiming();
    if (peak == 0) peak = memory_peak();
    model.reset();
    state.ResumeTiming();
  }
  count_bytes(state, size);
  state.counters["peak/B"] = static_cast<double>(peak - before) / size;
}
BENCHMARK(read)->Arg(1250)->Arg(5000)->Arg(20000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zelk::bench
