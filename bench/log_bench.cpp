// From the lines of a log to columns and to text, beside a loop that only splits the lines.
//
// The log is a drive of 2,000,000 frames of 20 messages (see drive.hpp), in the page cache. Each
// benchmark opens it, and does in one thread:
//
//   split_log_lines   reads it in pieces of 256 KiB, finds the end of each line and hands it on
//   read_log          makes blocks of frames
//   log_to_columns    decodes them into the columns of all messages, in batches of as many rows as
//                     the argument says, which are released at once
//   log_to_text       runs "zelk decode", with all that a process costs; the text goes nowhere
//
// The rates of one run compare: lines a second, and nanoseconds a line.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "drive.hpp"
#include "zelk/logs/columns.hpp"
#include "zelk/logs/reader.hpp"
#include "zelk/manager.hpp"

namespace zelk::bench {
namespace {

const Drive& drive() {
  static const Drive drive("zelk_log_bench", 20, 2'000'000);
  return drive;
}

/// Behind the iterations.
void count_lines(benchmark::State& state) {
  using benchmark::Counter;
  const auto lines = static_cast<double>(drive().lines) * static_cast<double>(state.iterations());
  state.SetItemsProcessed(static_cast<std::int64_t>(lines));
  state.counters["ns/line"] = Counter(lines / 1e9, Counter::kIsRate | Counter::kInvert);
}

void split_log_lines(benchmark::State& state) {
  const std::string path = drive().log.path();
  std::string buffer(1 << 18, '\0');
  for (auto _ : state) {
    std::FILE* const file = std::fopen(path.c_str(), "rb");
    while (const std::size_t read = std::fread(buffer.data(), 1, buffer.size(), file)) {
      std::string_view rest(buffer.data(), read);
      for (std::size_t end = 0; (end = rest.find('\n')) != rest.npos;) {
        benchmark::DoNotOptimize(rest.substr(0, end));
        rest.remove_prefix(end + 1);
      }
    }
    std::fclose(file);
  }
  count_lines(state);
}
BENCHMARK(split_log_lines)->Unit(benchmark::kMillisecond);

void read_log(benchmark::State& state) {
  const std::string path = drive().log.path();
  ZelkLogBlock block;
  for (auto _ : state) {
    ZelkLogReader log(path);
    std::uint64_t frames = 0;
    while (log.Next(block)) frames += block.counts.frames;
    if (frames != drive().lines) state.SkipWithError("not all lines are frames");
  }
  count_lines(state);
}
BENCHMARK(read_log)->Unit(benchmark::kMillisecond);

std::int64_t take_batches(ZelkColumnDecoder& decoder, bool is_end) {
  std::int64_t rows = 0;
  for (std::size_t table = 0; table < decoder.Tables().size(); ++table) {
    for (ArrowArray batch; decoder.TakeBatch(table, is_end, &batch); batch.release(&batch))
      rows += batch.length;
  }
  return rows;
}

void log_to_columns(benchmark::State& state) {
  const std::string path = drive().log.path();
  ZelkManager manager(static_cast<void*>(nullptr));
  const char* name = nullptr;
  manager.OpenDatabase(drive().database.path().c_str(), &name, 0);
  const ZelkDatabase& database = *manager.GetDatabase(name);
  for (auto _ : state) {
    ZelkLogReader log(path);
    ZelkLogBlock block;
    ZelkColumnDecoder decoder({.batch_rows = static_cast<std::size_t>(state.range(0))});
    decoder.AddDatabase(database, "drive");
    std::int64_t rows = 0;
    while (log.Next(block)) {
      decoder.Decode(block.frames);
      rows += take_batches(decoder, false);
    }
    rows += take_batches(decoder, true);
    if (rows != static_cast<std::int64_t>(drive().lines)) state.SkipWithError("rows are missing");
  }
  count_lines(state);
}
BENCHMARK(log_to_columns)->Arg(8192)->Arg(65536)->Unit(benchmark::kMillisecond);

void log_to_text(benchmark::State& state) {
  const std::string command = std::string(ZELK_PROGRAM) + " decode --threads 1 " +
                              drive().database.path() + ' ' + drive().log.path() + " > /dev/null";
  for (auto _ : state)
    if (std::system(command.c_str()) != 0) state.SkipWithError("zelk decode fails");
  count_lines(state);
}
BENCHMARK(log_to_text)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
}  // namespace zelk::bench
