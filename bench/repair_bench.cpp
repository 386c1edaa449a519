// Repair against reading: the same bytes in memory, as they should be and out of order.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <string>

#include "check/includes/mend.hpp"
#include "counters.hpp"
#include "support/lists.hpp"
#include "synthetic.hpp"

namespace zelk::bench {
namespace {

/// Argument of all: messages.
std::string sound(const benchmark::State& state) {
  return synthetic_database(static_cast<int>(state.range(0)));
}

/// The first comment and all behind it stand in front, and lines lack their semicolons.
std::string broken(const benchmark::State& state) {
  std::string text = sound(state);
  const auto comments = static_cast<std::ptrdiff_t>(text.find("\nCM_ ") + 1);
  std::rotate(text.begin(), text.begin() + comments, text.end());
  for (std::size_t at = text.find(" ;\nVAL_ "); at != text.npos;
       at = text.find(" ;\nVAL_ ", at + 9))
    text[at + 1] = ' ';
  return text;
}

void read_text(benchmark::State& state) {
  const std::string text = sound(state);
  for (auto _ : state) {
    Lists model;
    if (model.read_by(zelk_try_read_text, text.c_str(), text.size()) != 0)
      state.SkipWithError(zelk_get_error_text());
  }
  count_bytes(state, static_cast<double>(text.size()));
}

void repair(benchmark::State& state, std::string (*make)(const benchmark::State&),
            check::Outcome outcome) {
  const std::string text = make(state);
  for (auto _ : state) {
    const check::MendedFile mended = check::mend(check::Source("synthetic", text), {});
    if (mended.outcome != outcome) state.SkipWithError("another outcome");
  }
  count_bytes(state, static_cast<double>(text.size()));
}

void repair_sound(benchmark::State& state) { repair(state, sound, check::Outcome::kUnneeded); }
void repair_broken(benchmark::State& state) { repair(state, broken, check::Outcome::kMended); }

BENCHMARK(read_text)->Arg(20000)->Unit(benchmark::kMillisecond);
BENCHMARK(repair_sound)->Arg(20000)->Unit(benchmark::kMillisecond);
BENCHMARK(repair_broken)->Arg(5000)->Arg(20000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zelk::bench
