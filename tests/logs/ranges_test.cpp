#include <gmock/gmock.h>

#include <random>
#include <string>
#include <vector>

#include "support/folder.hpp"
#include "support/memory_stream.hpp"
#include "zelk/logs/reader.hpp"

namespace zelk::logs {
namespace {

using namespace std::string_literals;

/// What a log or parts of it have.
struct Content {
  std::vector<std::string> frames{};
  std::vector<std::string> malformed{};
  std::uint64_t lines = 0;

  void append(const std::string& path, std::optional<ZelkLogRange> range) {
    ZelkLogReader log(path, {.range = range});
    for (ZelkLogBlock block; log.Next(block);) {
      for (std::size_t i = 0; i < block.frames.Size(); ++i)
        frames.push_back(frame_text(block.frames, i));
      for (const ZelkMalformedLine& line : block.malformed) malformed.push_back(line.text);
      lines += block.counts.lines;
    }
  }
};

std::string random_log(std::mt19937& random) {
  std::string log = random() % 2 ? "\xEF\xBB\xBF" : "none\n";
  for (auto i = random() % 12; i > 0; --i) {
    const std::string lines[] = {
        "(" + std::to_string(100 - i) + ".5) can0 1A0#" + std::to_string(10 + i),
        "",
        "\r",
        "none",
        "\xEF\xBB\xBF"
        "1A0#",
        "\xFF\xFE",
        std::string(i == 5 ? 300000 : 9000, 'x')};
    log += lines[random() % 7 * (random() % 2)] + (random() % 2 ? "\n" : "\r\n");
  }
  if (random() % 2) log += "1A0#99";
  return log;
}

// At all bytes, or at some: in front of a line and behind it, between a CR and its LF, in the mark
// of the encoding, several times at one place, and far behind the end.
TEST(LogRanges, HaveEachLineOnceWhereverTheyAreCut) {
  const Folder folder;
  std::mt19937 random(17);
  for (int i = 0; i < 150; ++i) {
    const std::string log = random_log(random);
    const std::string path = folder.write("a.log", log);
    Content whole;
    Content parts;
    whole.append(path, std::nullopt);
    const std::uint64_t most_step = log.size() < 200 ? 1 + i % 30 : log.size();
    for (std::uint64_t at = 0; at <= log.size();) {
      const std::uint64_t end = at + random() % (most_step + 1);
      parts.append(path, ZelkLogRange{at, end});
      at = end;
    }
    parts.append(path, ZelkLogRange{log.size() + 1, UINT64_MAX});
    ASSERT_EQ(parts.frames, whole.frames) << testing::PrintToString(log);
    ASSERT_EQ(parts.malformed, whole.malformed) << testing::PrintToString(log);
    ASSERT_EQ(parts.lines, whole.lines) << testing::PrintToString(log);
  }
}

TEST(LogRanges, AreRefusedOfLogsThatOnlyTheWholeExplains) {
  const Folder folder;
  const struct {
    std::string log;
    ZelkLogTimes times;
    bool is_divisible;
  } cases[] = {
      {"", ZelkLogTimes::kDetect, true},
      {"none\n", ZelkLogTimes::kDetect, true},
      {"(0.1) c 1A0#\n(0.0) c 1A0#\n(0.1) c 1A0#\n", ZelkLogTimes::kPoints, true},
      {"(0.1) c 1A0#\n(0.0) c 1A0#\n(0.1) c 1A0#\n", ZelkLogTimes::kDifferences, false},
      {"(0.1) c 1A0#\n(0.0) c 1A0#\n(0.1) c 1A0#\n", ZelkLogTimes::kDetect, false},
      {";$FILEVERSION=1.1\n", ZelkLogTimes::kDetect, false},
      {"\xFF\xFE"
       "1\0"s,
       ZelkLogTimes::kDetect, false},
      {"\x28\xB5\x2F\xFD\x20\x0A\x28\0\0"s + "1A0#\n\x29\0\0"s + "2B0#\n", ZelkLogTimes::kDetect,
       false},
  };
  for (const auto& each : cases) {
    const std::string path = folder.write("a.log", each.log);
    const ZelkLogReader whole(path, {.times = each.times});
    EXPECT_EQ(whole.IsDivisible(), each.is_divisible) << testing::PrintToString(each.log);
    const ZelkLogOptions options{.times = each.times, .range = ZelkLogRange{0, 1}};
    if (each.is_divisible) {
      EXPECT_NO_THROW(ZelkLogReader(path, options));
    } else {
      EXPECT_THROW(ZelkLogReader(path, options), ZelkLogError);
    }
  }
}

// A part whose times run backwards, as at a midnight, has points in time like the whole.
TEST(LogRanges, HaveTheTimesOfTheWhole) {
  const Folder folder;
  std::string log;
  for (int i = 0; i < 3000; ++i) log += "(" + std::to_string(i) + ") c 1A0#\n";
  const std::uint64_t begin = log.size();
  const std::string path = folder.write("a.log", log + "(9) c 1A0#\n(8) c 1A0#\n(7) c 1A0#\n");
  Content part;
  part.append(path, ZelkLogRange{begin, UINT64_MAX});
  EXPECT_THAT(part.frames, testing::ElementsAre("9000000000 1A0 0  c 9", "8000000000 1A0 0  c 8",
                                                "7000000000 1A0 0  c 7"));
}

}  // namespace
}  // namespace zelk::logs
