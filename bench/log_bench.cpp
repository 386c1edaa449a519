// Reading a log of candump, beside a loop that only splits its lines.
//
// 500,000 frames of three channels, with 90 identifiers of both formats and 8 bytes of data each.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <fstream>
#include <random>
#include <string>
#include <string_view>

#include "zelk/logs/candump.hpp"
#include "zelk/logs/reader.hpp"

namespace zelk::bench {
namespace {

constexpr int kLines = 500'000;
constexpr const char* kPath = "zelk_bench.log";

/// A log in the working folder, removed at the end.
class LogFile {
 public:
  LogFile() {
    std::mt19937_64 random(7);
    ZelkFrameBlock frames;
    for (const char* const name : {"can0", "can1", "vcan0"}) frames.ChannelIndex(name);
    std::string text;
    for (int i = 0; i < kLines; ++i) {
      const std::uint64_t content = random();
      const auto number = static_cast<std::uint32_t>(i % 90 * 7919);
      const std::uint32_t id = i % 90 < 60 ? number & 0x7FF : number | 0x80000000;
      frames.Clear();
      frames.Append(1'700'000'000'000'000'000 + std::int64_t{i} * 250'000, id, 0,
                    frames.ChannelIndex(i % 3 ? "can0" : "vcan0"),
                    {reinterpret_cast<const unsigned char*>(&content), sizeof content});
      ZelkAppendLogLine(frames, 0, "can0", text);
    }
    std::ofstream(kPath, std::ios::binary) << text;
    bytes_ = text.size();
  }
  LogFile(const LogFile&) = delete;
  LogFile& operator=(const LogFile&) = delete;
  ~LogFile() { std::remove(kPath); }

  std::size_t bytes() const { return bytes_; }

 private:
  std::size_t bytes_ = 0;
};

const LogFile& log_file() {
  static const LogFile log;
  return log;
}

/// Behind the iterations.
void count(benchmark::State& state) {
  state.counters["lines"] =
      benchmark::Counter(kLines, benchmark::Counter::kIsIterationInvariantRate);
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(log_file().bytes()));
}

void split_log_lines(benchmark::State& state) {
  log_file();
  std::string buffer(1 << 18, '\0');
  for (auto _ : state) {
    std::FILE* const file = std::fopen(kPath, "rb");
    std::size_t sum = 0;
    while (const std::size_t read = std::fread(buffer.data(), 1, buffer.size(), file)) {
      std::string_view rest(buffer.data(), read);
      for (std::size_t end = 0; (end = rest.find('\n')) != rest.npos;) {
        sum += end;
        rest.remove_prefix(end + 1);
      }
    }
    std::fclose(file);
    benchmark::DoNotOptimize(sum);
  }
  count(state);
}
BENCHMARK(split_log_lines)->Unit(benchmark::kMillisecond);

void read_log(benchmark::State& state) {
  log_file();
  ZelkLogBlock block;
  for (auto _ : state) {
    ZelkLogReader log{std::string(kPath)};
    std::uint64_t frames = 0;
    while (log.Next(block)) frames += block.counts.frames;
    if (frames != kLines) state.SkipWithError("not all lines are frames");
  }
  count(state);
}
BENCHMARK(read_log)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zelk::bench
