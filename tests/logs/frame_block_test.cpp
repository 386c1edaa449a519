#include "zelk/logs/frame.hpp"

#include <gmock/gmock.h>

#include <vector>

namespace {

using testing::ElementsAre;

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
      ASSERT_THAT(block.Data(i), testing::ElementsAreArray(data.data(), length));
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
