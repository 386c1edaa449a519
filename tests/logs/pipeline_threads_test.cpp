#include "zelk/logs/pipeline.hpp"

#include <gmock/gmock.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>

#include "logs/text_database.hpp"

namespace {

using testing::HasSubstr;

constexpr const char* kDatabase =
    "BS_:\nBU_: N\nBO_ 291 Motion: 2 N\n SG_ Speed : 0|16@1+ (0.1,0) [0|0] 'km/h' N\n";
constexpr int kFrames = 60000;

/// A log of several blocks in a file of its own, gone with the object.
class LogFile {
 public:
  LogFile() {
    std::ostringstream text;
    for (int i = 0; i < kFrames; ++i) {
      text << '(' << i << ".5) can0 " << (i % 4 == 3 ? "7FF" : "123") << "#0A0" << i % 10 << '\n';
      if (i % 9000 == 0) text << "no frame\n";
    }
    text << "can0 123#FFFF\n";  // without a time
    std::ofstream(path, std::ios::binary) << text.str();
  }
  ~LogFile() { std::filesystem::remove(path); }

  const std::string path =
      std::string(testing::UnitTest::GetInstance()->current_test_info()->name()) + ".log";
};

struct Result {
  std::string text;  // the lines, and what was thrown
  ZelkLogSummary summary;
};

Result decode(const std::string& path, ZelkPipelineOptions options, unsigned threads) {
  const TextDatabase database(kDatabase);
  ZelkTextDecoder decoder;
  decoder.AddDatabase(database, "car");
  decoder.Prepare();
  ZelkLogReader log(path);
  options.threads = threads;
  Result result;
  try {
    const auto write = [&](std::string_view lines) { result.text += lines; };
    result.summary = ZelkDecodeLog(log, decoder, options, write);
  } catch (const std::exception& error) {
    result.text += error.what();
  }
  return result;
}

TEST(PipelineThreads, GiveTheSameLinesAndTheFirstFault) {
  const LogFile log;
  std::uint64_t malformed = 0;
  const auto fail_at_fourth = [&malformed](const ZelkLogBlock& block) {
    malformed = block.number == 0 ? 0 : malformed + block.malformed.size();
    if (malformed >= 3) throw std::runtime_error("too many");
  };
  const struct {
    const char* name;
    ZelkPipelineOptions options;
    const char* end;
  } cases[] = {
      {"all", {}, "\ncan0 Motion Speed=6553.5 km/h\n"},
      {"a frame without a time, in the last block",
       {.times = {.relative = true}},
       "a frame has no time, which start, stop and relative times need"},
      {"a report that throws", {.report = fail_at_fourth}, "too many"},
      {"no time is wanted",
       {.times = {.start = ZelkTimePoint{5}, .stop = ZelkTimePoint{5}}},
       "GiveTheSameLinesAndTheFirstFault.log: the stop is not behind the start: no frame is "
       "between them"},
  };
  for (const auto& c : cases) {
    const Result one = decode(log.path, c.options, 1);
    EXPECT_TRUE(one.text.ends_with(c.end)) << c.name << one.text.substr(one.text.size() - 99);
    for (const unsigned threads : {2u, 5u}) {
      const Result other = decode(log.path, c.options, threads);
      EXPECT_TRUE(other.text == one.text) << c.name;
      EXPECT_EQ(other.summary.frames.unknown_ids, one.summary.frames.unknown_ids) << c.name;
      EXPECT_EQ(other.summary.log.malformed, one.summary.log.malformed) << c.name;
    }
  }
}

TEST(PipelineThreads, CountWhatBecameOfFrames) {
  const LogFile log;
  ZelkPipelineOptions options;
  options.transport = true;
  const Result all = decode(log.path, options, 2);
  EXPECT_EQ(all.summary.log.lines, kFrames + 8u);
  EXPECT_EQ(all.summary.log.malformed, 7u);
  EXPECT_EQ(all.summary.frames.decoded, kFrames / 4 * 3 + 1u);
  EXPECT_EQ(all.summary.frames.unknown_ids.at(0x7FF), kFrames / 4u);
}

// Workers throw where the others wait for them: whichever step fails, all in front of it is put.
TEST(PipelineThreads, PutAllInFrontOfAWorkersFault) {
  const LogFile log;
  struct Worker : ZelkLogWorker {
    Worker(std::string& numbers, bool decoding) : put(numbers), in_decode(decoding) {}
    void Decode(const ZelkLogBlock& block, ZelkFrameCounts&) override {
      if (in_decode && block.number >= 2) throw std::runtime_error(std::to_string(block.number));
    }
    void Put(const ZelkLogBlock& block) override {
      if (block.number == 2) throw std::runtime_error("2");
      put += std::to_string(block.number);
    }
    std::string& put;
    bool in_decode;
  };
  for (const bool in_decode : {false, true}) {
    for (const unsigned threads : {1u, 4u}) {
      ZelkLogReader reader(log.path);
      ZelkLogPipeline pipeline(reader, {.threads = threads});
      std::string put;
      try {
        pipeline.Run([&] { return std::make_unique<Worker>(put, in_decode); });
        ADD_FAILURE() << "nothing was thrown";
      } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "2");
      }
      EXPECT_EQ(put, "01");
      EXPECT_GT(pipeline.Summary().log.frames, 0u);
    }
  }
}

// A log that cannot be read further loses nothing that was read.
TEST(PipelineThreads, PutAllInFrontOfAReadThatFails) {
  const LogFile log;
  for (const unsigned threads : {1u, 3u}) {
    ZelkPipelineOptions options;
    int reads = 0;
    options.read = [&](const std::function<bool()>& read) {
      if (++reads == 4) throw std::runtime_error("unreadable");
      return read();
    };
    std::uint64_t next = 0;
    options.report = [&](const ZelkLogBlock& block) { EXPECT_EQ(block.number, next++); };
    const Result result = decode(log.path, options, threads);
    EXPECT_TRUE(result.text.ends_with("unreadable"));
    EXPECT_EQ(next, 3u);
  }
}

TEST(PipelineThreads, FillColumnsWithinTimes) {
  const LogFile log;
  const TextDatabase database(kDatabase);
  for (const unsigned threads : {1u, 3u}) {
    ZelkColumnDecoder decoder;
    decoder.AddDatabase(database, "car");
    ZelkLogReader reader(log.path);
    std::size_t puts = 0;
    const ZelkTimeOptions times{.start = ZelkTimePoint{10'000'000'000, true},
                                .stop = ZelkTimePoint{13'500'000'000, false}};
    ZelkPipelineOptions options{.threads = threads, .times = times};
    options.read = [&, taken = 0](const std::function<bool()>& read) mutable {
      return taken++ < 2 && read();  // the last frame has no time
    };
    const ZelkLogSummary summary = ZelkDecodeLog(reader, decoder, options, [&] { ++puts; });
    EXPECT_EQ(decoder.RowCount(0), 2u);  // 10.5 to 12.5, of which 11.5 is another frame
    EXPECT_EQ(summary.frames.decoded, 2u);
    EXPECT_EQ(summary.frames.outside, summary.log.frames - 3);
    EXPECT_EQ(puts, 2u);
  }
}

}  // namespace
