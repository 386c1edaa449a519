// From the lines of a log to columns and to text, beside a loop that only splits the lines.
//
// The log is a drive of 2,000,000 frames of 20 messages (see drive.hpp), in the page cache. Each
// benchmark opens it, and does in one thread, unless it says otherwise:
//
//   split_log_lines   reads it in pieces of 256 KiB, finds the end of each line and hands it on
//   read_log          makes blocks of frames
//   log_to_columns    decodes them into the columns of all messages, in batches of as many rows as
//                     the argument says, which are released at once
//   decode_to_columns does so by `ZelkDecodeLog`, with as many threads as the argument says
//   decode_to_text    makes lines of text by `ZelkDecodeLog`, likewise; they go nowhere
//
// The rates of one run compare: lines a second, and nanoseconds a line. With threads the time is
// that of the clock on the wall: nothing else may run meanwhile.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>
#include <string_view>

#include "drive.hpp"
#include "zelk/logs/columns.hpp"
#include "zelk/logs/pipeline.hpp"
#include "zelk/logs/reader.hpp"
#include "zelk/manager.hpp"

namespace zelk::bench {
namespace {

const Drive& drive() {
  static const Drive drive("zelk_log_bench", 20, 2'000'000);
  return drive;
}

/// That of the drive.
struct Database {
  ZelkManager manager{static_cast<void*>(nullptr)};
  const ZelkDatabase& records = open(manager);

  static const ZelkDatabase& open(ZelkManager& manager) {
    const char* name = nullptr;
    manager.OpenDatabase(drive().database.path().c_str(), &name, 0);
    return *manager.GetDatabase(name);
  }
};

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
  const Database database;
  for (auto _ : state) {
    ZelkLogReader log(path);
    ZelkLogBlock block;
    ZelkColumnDecoder decoder({.batch_rows = static_cast<std::size_t>(state.range(0))});
    decoder.AddDatabase(database.records, "drive");
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

ZelkPipelineOptions with_threads(const benchmark::State& state) {
  ZelkPipelineOptions options;
  options.threads = static_cast<unsigned>(state.range(0));
  return options;
}

void decode_to_columns(benchmark::State& state) {
  const Database database;
  for (auto _ : state) {
    ZelkLogReader log(drive().log.path());
    ZelkColumnDecoder decoder;
    decoder.AddDatabase(database.records, "drive");
    std::int64_t rows = 0;
    ZelkDecodeLog(log, decoder, with_threads(state), [&] { rows += take_batches(decoder, false); });
    rows += take_batches(decoder, true);
    if (rows != static_cast<std::int64_t>(drive().lines)) state.SkipWithError("rows are missing");
  }
  count_lines(state);
}
BENCHMARK(decode_to_columns)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->UseRealTime();

void decode_to_text(benchmark::State& state) {
  const Database database;
  ZelkTextDecoder decoder;
  decoder.AddDatabase(database.records, "drive");
  decoder.Prepare();
  for (auto _ : state) {
    ZelkLogReader log(drive().log.path());
    std::size_t size = 0;
    ZelkDecodeLog(log, decoder, with_threads(state),
                  [&](std::string_view text) { size += text.size(); });
    if (size == 0) state.SkipWithError("there is no text");
  }
  count_lines(state);
}
BENCHMARK(decode_to_text)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
}  // namespace zelk::bench
