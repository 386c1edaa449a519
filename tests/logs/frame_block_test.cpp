#include "zelk/logs/frame.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <vector>

#include "logs/frames/filler.hpp"

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

void expect_same_frames(const ZelkFrameBlock& a, const ZelkFrameBlock& b) {
  EXPECT_TRUE(std::ranges::equal(a.Times(), b.Times()));
  EXPECT_TRUE(std::ranges::equal(a.Ids(), b.Ids()));
  EXPECT_TRUE(std::ranges::equal(a.Flags(), b.Flags()));
  EXPECT_TRUE(std::ranges::equal(a.Channels(), b.Channels()));
  EXPECT_TRUE(std::ranges::equal(a.Lengths(), b.Lengths()));
  EXPECT_TRUE(std::ranges::equal(a.DataOffsets(), b.DataOffsets()));
  EXPECT_TRUE(std::ranges::equal(a.DataBytes(), b.DataBytes()));
  for (std::size_t i = 0; i < a.Size(); ++i) ASSERT_EQ(a.TimeText(i), b.TimeText(i));
}

TEST(FrameBlock, TakesFramesOfOneLengthAsIfOneByOne) {
  const struct {
    std::size_t length, stride, count;
    bool has_times;
  } cases[] = {{8, 8, 3000, true}, {8, 11, 5, false},    {8, 0, 3, true},    {8, 8, 0, true},
               {5, 5, 2500, true}, {5, 16, 1, false},    {0, 0, 7, false},   {0, 4, 2, true},
               {64, 64, 9, false}, {65535, 1, 2, false}, {64, 70, 10, true}, {3, 2, 2000, true}};
  const std::vector<unsigned char> full(ZelkFrameBlock::kMostData, 0xFF);
  std::vector<unsigned char> data(70000);
  for (std::size_t i = 0; i < data.size(); ++i) data[i] = static_cast<unsigned char>(i % 251 + 1);
  std::vector<std::int64_t> times;
  std::vector<std::uint32_t> ids;
  for (std::uint32_t i = 0; i < 3000; ++i) times.push_back(i * 7), ids.push_back(i ^ 0x80000155u);
  ZelkFrameBlock block, expected;
  ZelkFrameFiller filler(block);
  std::string text = "1.5";
  filler.swap_text(text);
  // Memory is not zero when frames come.
  for (int i = 0; i < 20; ++i) block.Append(1, 2, 3, 4, full);
  for (int i = 0; i < 30000; ++i) filler.room(), filler.put(1, 2, 3, 4, 8, filler.text());
  block.Clear();
  for (const auto& c : cases) {
    for (const auto channel : {std::uint16_t{1}, std::uint16_t{2}}) {
      const auto its_times = std::span(times).first(c.has_times ? c.count : 0);
      filler.append_alike(its_times, std::span(ids).first(c.count), channel, data.data(), c.stride,
                          c.length);
      for (std::size_t i = 0; i < c.count; ++i) {
        expected.Append(c.has_times ? times[i] : kZelkNoTime, ids[i], 0, channel,
                        std::span(data).subspan(i * c.stride, c.length));
      }
    }
    expect_same_frames(block, expected);
    ASSERT_FALSE(HasFailure()) << c.length << " bytes every " << c.stride;
  }
  ids.resize(70000);  // more than 4 GiB
  EXPECT_THROW(filler.append_alike({}, ids, 0, data.data(), 0, 65535), std::length_error);
  expect_same_frames(block, expected);
  filler.append_alike({}, std::span(ids).first(2), 0, nullptr, 0, 0);
  EXPECT_EQ(block.Size(), expected.Size() + 2);
}

TEST(FrameBlock, KeepsFramesOfAllLengthsAndPadsTheirData) {
  ZelkFrameBlock block;
  std::vector<unsigned char> data(ZelkFrameBlock::kMostData);
  for (std::size_t i = 0; i < data.size(); ++i) data[i] = static_cast<unsigned char>(i % 251 + 1);
  for (int round = 0; round < 2; ++round) {
    block.Clear();
    const std::uint16_t channel = block.ChannelIndex("can1");
    EXPECT_EQ(block.ChannelIndex("can1"), channel);
    const std::uint16_t nameless = block.ChannelIndex("");
    for (std::size_t i = 0; i < 3000; ++i) {
      block.Append(static_cast<std::int64_t>(i), 0x80000000u + static_cast<std::uint32_t>(i),
                   kZelkFrameFd, i % 2 ? channel : nameless, std::span(data).first(i % 65));
    }
    block.Append(kZelkNoTime, 1, 0, channel, data);
    ASSERT_EQ(block.Size(), 3001u);
    EXPECT_THAT(block.ChannelNames(), ElementsAre("can1", ""));
    for (std::size_t i = 0; i < 3000; ++i) {
      const std::size_t length = i % 65;
      ASSERT_EQ(block.DataOffsets()[i] % 8, 0u);
      ASSERT_THAT(block.Data(i), ElementsAreArray(data.data(), length));
      for (std::size_t at = length; at % 8 != 0; ++at) ASSERT_EQ(block.Data(i).data()[at], 0);
    }
    const ZelkFrame frame = block.Frame(130);
    EXPECT_EQ(frame.time, 130);
    EXPECT_EQ(frame.id, 0x80000082u);
    EXPECT_EQ(frame.length, 0u);
    EXPECT_EQ(block.Data(3000).size(), 65535u);
    EXPECT_EQ(block.TimeText(3000), "");
    EXPECT_THROW(block.Frame(3000), std::length_error);
  }
  data.push_back(0);
  EXPECT_THROW(block.Append(0, 0, 0, 0, data), std::length_error);
  for (std::size_t i = 2; i < ZelkFrameBlock::kMostChannels; ++i)
    block.ChannelIndex("c" + std::to_string(i));
  EXPECT_THROW(block.ChannelIndex("one more"), std::length_error);
}

}  // namespace
