// Writing: time per byte at three sizes, into a file of the system's folder for temporary files.

#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>

#include "counters.hpp"
#include "support/lists.hpp"
#include "synthetic.hpp"

namespace zelk::bench {
namespace {

/// Argument: messages.
void write(benchmark::State& state) {
  Lists model;
  {
    const TemporaryFile source("zelk_write_bench_in.dbc",
                               synthetic_database(static_cast<int>(state.range(0))));
    if (model.try_read(source.path().c_str()) != 0) state.SkipWithError(zelk_get_error_text());
  }
  const TemporaryFile target("zelk_write_bench_out.dbc", "");
  for (auto _ : state) {
    if (model.write(target.path().c_str()) != 0) state.SkipWithError("cannot write");
  }
  count_bytes(state, static_cast<double>(std::filesystem::file_size(target.path())));
}
BENCHMARK(write)->Arg(1250)->Arg(5000)->Arg(20000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zelk::bench
