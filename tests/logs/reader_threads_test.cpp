#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <mutex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "zelk/logs/candump.hpp"
#include "zelk/logs/reader.hpp"

namespace {

std::string text_of(const ZelkLogBlock& block) {
  std::string text;
  for (std::size_t i = 0; i < block.frames.Size(); ++i)
    ZelkAppendLogLine(block.frames, i, "can0", text);
  for (const ZelkMalformedLine& line : block.malformed)
    text += std::to_string(line.number) + ' ' + line.text + '\n';
  return text;
}

void expect_same_of_threads(const std::string& log) {
  const std::string path =
      std::string(testing::UnitTest::GetInstance()->current_test_info()->name()) + ".log";
  std::ofstream(path, std::ios::binary) << log;
  std::map<std::uint64_t, std::string> blocks;
  ZelkLogReader alone{path};
  for (ZelkLogBlock block; alone.Next(block);) blocks[block.number] = text_of(block);
  EXPECT_GT(blocks.size(), 3u);
  ZelkLogReader shared{path};
  std::mutex mutex;
  std::vector<std::jthread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      ZelkLogChunk chunk;
      ZelkLogBlock block;
      while (shared.Take(chunk)) {
        shared.Parse(chunk, block);
        const std::string text = text_of(block);
        const std::lock_guard lock(mutex);
        EXPECT_EQ(text, blocks[block.number]);
        blocks.erase(block.number);
      }
    });
  }
  threads.clear();
  EXPECT_TRUE(blocks.empty());
  std::remove(path.c_str());
}

// Times that add up are the hard case: a block's depend on all blocks in front of it.
TEST(LogThreads, ParseOneLogAsOneThreadDoes) {
  std::ostringstream log;
  for (int i = 0; i < 40000; ++i) {
    log << '(' << i % 7 / 8.0 << ") can" << i % 3 << " 123#" << std::string(2 * (i % 9), 'A')
        << '\n';
    if (i % 5000 == 0) log << "no frame\n";
  }
  expect_same_of_threads(log.str());
}

// Each head changes what the blocks behind it mean.
TEST(LogThreads, ParseTracesOneBehindTheOtherAsOneThreadDoes) {
  std::ostringstream log;
  for (int i = 0; i < 20000; ++i) {
    if (i % 100 == 0)
      log << ";$FILEVERSION=1." << i / 100 % 2 + 1 << "\n;$STARTTIME=40000." << i << '\n';
    log << i << ") " << i << (i / 100 % 2 ? " 1" : "") << " Rx 0123 1 " << i % 10 << "0\n";
  }
  expect_same_of_threads(log.str());
}

}  // namespace
