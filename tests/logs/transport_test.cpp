#include "zelk/logs/transport.hpp"

#include <gmock/gmock.h>

#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "zelk/logs/candump.hpp"

namespace {

using testing::ElementsAre;

std::vector<std::uint64_t> numbers(const ZelkTransportCounts& c) {
  return {c.complete, c.aborted, c.incomplete, c.inconsistent, c.dropped, c.stray};
}

/// "milliseconds channel frame", without a time "- channel frame".
void append(const std::string& line, ZelkFrameBlock& block) {
  std::istringstream words(line);
  std::string time, channel, text;
  words >> time >> channel >> text;
  ZelkFrame frame;
  ASSERT_TRUE(ZelkParseFrame(text, frame)) << line;
  if (time != "-") frame.time = std::stoll(time) * 1'000'000;
  frame.channel = block.ChannelIndex(channel);
  block.Append(frame);
}

std::string text_of(const ZelkFrameBlock& block, std::size_t index) {
  const std::int64_t time = block.Times()[index];
  std::string text = time == kZelkNoTime ? "-" : std::to_string(time / 1'000'000);
  char part[16];
  std::snprintf(part, sizeof part, " %08X#", block.Ids()[index] & 0x1FFFFFFF);
  text += ' ' + block.ChannelNames()[block.Channels()[index]] + part;
  for (const unsigned char byte : block.Data(index)) {
    std::snprintf(part, sizeof part, "%02X", byte);
    text += part;
  }
  return text;
}

struct Result {
  std::vector<std::string> messages;  ///< "number of frames in front of it: time channel frame"
  std::vector<std::uint64_t> counts;
  bool operator==(const Result&) const = default;
};

/// Feeds frames in blocks of `step`; they have to stay as they are.
Result assembled(const std::vector<std::string>& lines, std::size_t step) {
  Result result;
  ZelkTransport transport;
  for (std::size_t first = 0; first < lines.size(); first += step) {
    ZelkFrameBlock before;
    // A channel's index differs from block to block.
    if (first % 2 == 1) before.ChannelIndex("other");
    for (std::size_t i = first; i < std::min(first + step, lines.size()); ++i)
      append(lines[i], before);
    ZelkFrameBlock after = before;
    transport.Assemble(after);
    std::size_t frame = 0;
    for (std::size_t i = 0; i < after.Size(); ++i) {
      if (frame < before.Size() && text_of(after, i) == text_of(before, frame)) {
        ++frame;
      } else {
        result.messages.push_back(std::to_string(first + frame) + ": " + text_of(after, i));
      }
    }
    EXPECT_EQ(frame, before.Size());
  }
  transport.End();
  result.counts = numbers(transport.Counts());
  EXPECT_EQ(result.messages.size(), transport.Counts().complete);
  return result;
}

TEST(Transport, PutsMessagesTogether) {
  // 9 bytes of group FECA from 01 to all; of EF00 from 01 to 02.
  const std::string bam = " a 1CECFF01#20090002FFCAFE00";
  const std::string one = " a 1CEBFF01#0110111213141516";
  const std::string two = " a 1CEBFF01#022021FFFFFFFFFF";
  const std::string rts = " a 18EC0201#10090002FF00EF00";
  const std::string cts = " a 1CEC0102#110201FFFF00EF00";
  const std::string own_one = " a 1CEB0201#0110111213141516";
  const std::string own_two = " a 1CEB0201#022021FFFFFFFFFF";
  const std::string message = " a 1CFECA01#101112131415162021";
  const std::string own_message = " a 18EF0201#101112131415162021";
  using Lines = std::vector<std::string>;
  using Counts = std::vector<std::uint64_t>;
  const struct {
    const char* name;
    Lines lines;
    Lines messages;
    Counts counts;  // complete, aborted, incomplete, inconsistent, dropped, stray
  } cases[] = {
      {"broadcast",
       {"0" + bam, "50" + one, "100" + two, "101" + two},
       {"3: 100" + message},
       {1, 0, 0, 0, 0, 1}},
      {"as listeners hear it",
       {"0" + rts, "1" + cts, "2 a 1CEB0201#02AAAAAAAAAAAAAA", "3" + own_two, "4" + own_one,
        "5 a 1CEC0102#13090002FF00EF00"},
       {"5: 4" + own_message},
       {1, 0, 0, 0, 0, 0}},
      {"group number with an address, data page, priority 0",
       {"- a 00EC0201#10080002FF17EF01", "-" + own_one, "- a 1CEB0201#02AB"},
       {"3: - a 01EF0201#10111213141516AB"},
       {1, 0, 0, 0, 0, 0}},
      {"shorter than a frame",
       {"- a 1CECFF01#20030001FFCAFE00", "- a 1CEBFF01#01ABCDEF"},
       {"2: - a 1CFECA01#ABCDEF"},
       {1, 0, 0, 0, 0, 0}},
      {"pairs and channels",
       {"0" + bam, "0 b 1CECFF01#200A0002FFCBFE00", "0 a 1CECFF03#20090002FFCAFE00", "0" + rts,
        "1 b 1CEBFF01#01A1A2A3A4A5A6A7", "1" + one, "2 a 1CEBFF03#01B1B2B3B4B5B6B7", "2" + own_one,
        "3" + two, "3 a 1CEBFF03#02B8B9", "3" + own_two, "4 b 1CEBFF01#02A8A9AAFFFFFFFF"},
       {"9: 3" + message, "10: 3 a 1CFECA03#B1B2B3B4B5B6B7B8B9", "11: 3" + own_message,
        "12: 4 b 1CFECB01#A1A2A3A4A5A6A7A8A9AA"},
       {4, 0, 0, 0, 0, 0}},
      {"both ways at once",
       {"0" + rts, "0 a 18EC0102#10090002FF00EF00", "1" + own_one, "1 a 1CEB0102#01C1C2C3C4C5C6C7",
        "2" + own_two, "2 a 1CEB0102#02C8C9FFFFFFFFFF"},
       {"5: 2" + own_message, "6: 2 a 18EF0102#C1C2C3C4C5C6C7C8C9"},
       {2, 0, 0, 0, 0, 0}},
      {"each frame twice",
       {"0" + bam, "0" + bam, "1" + one, "1" + one, "2" + two, "2" + two},
       {"5: 2" + message},
       {1, 0, 1, 0, 0, 1}},
      {"lost packet",
       {"0" + bam, "1" + two, "2" + one, "3" + bam, "4" + one, "5" + two},
       {"6: 5" + message},
       {1, 0, 0, 1, 0, 1}},
      {"repeated with other data",
       {"0" + bam, "1" + one, "2 a 1CEBFF01#0110111213141517"},
       {},
       {0, 0, 0, 1, 0, 0}},
      {"new announcement",
       {"0" + bam, "1" + one, "2" + bam, "3" + one, "4" + two},
       {"5: 4" + message},
       {1, 0, 1, 0, 0, 0}},
      {"new announcement that lies",
       {"0" + bam, "1" + one, "2 a 1CECFF01#20090003FFCAFE00", "3" + two},
       {},
       {0, 0, 1, 1, 0, 1}},
      {"end of the log", {"0" + bam, "1" + one, "0" + rts}, {}, {0, 0, 2, 0, 0, 0}},
      {"within the time",
       {"0" + bam, "750" + one, "1500" + two, "0" + rts, "1250" + cts, "2500" + own_one,
        "3750" + own_two},
       {"3: 1500" + message, "7: 3750" + own_message},
       {2, 0, 0, 0, 0, 0}},
      {"too late",
       {"0" + bam, "751" + one, "752" + two, "0" + rts, "1" + own_one, "1252" + cts,
        "1253" + own_two},
       {},
       {0, 0, 2, 0, 0, 3}},
      {"hold",
       {"0" + rts, "1000 a 1CEC0102#1100FFFFFF00EF00", "2000" + own_one, "2001" + own_two},
       {"4: 2001" + own_message},
       {1, 0, 0, 0, 0, 0}},
      {"times that run backwards, or not at all",
       {"9000" + bam, "-" + one, "1" + two, "-9223372036854" + bam, "9223372036854" + one},
       {"3: 1" + message},
       {1, 0, 1, 0, 0, 1}},
      {"aborted by either",
       {"0" + rts, "1" + own_one, "2 a 1CEC0201#FF03FFFFFF00EF00", "3" + own_two, "4" + rts,
        "5" + own_one, "6 a 1CEC0102#FF03FFFFFF00EF00", "7" + own_two},
       {},
       {0, 2, 0, 0, 0, 2}},
      {"of another group",
       {"0" + rts, "1 a 1CEC0102#FF03FFFFFF01EF00", "2 a 1CEC0102#13090002FF01EF00", "2" + own_one,
        "3" + own_two},
       {"5: 3" + own_message},
       {1, 0, 0, 0, 0, 0}},
      {"acknowledged, but not in the log",
       {"0" + rts, "1" + own_one, "2 a 1CEC0102#13090002FF00EF00"},
       {},
       {0, 0, 1, 0, 0, 0}},
      {"announcements that lie",
       {"0 a 1CECFF01#20000000FFCAFE00", "0 a 1CECFF01#200A0001FFCAFE00",
        "0 a 1CECFF01#20FA06FFFFCAFE00", "0 a 1CECFF01#20FFFFFFFFCAFE00",
        "0 a 1CECFF01#20090002FFFFFF04", "0 a 1CEC0201#20090002FFCAFE00",
        "0 a 1CECFF01#10090002FF00EF00", "0 a 1CECFF01#20090002FFCAFE", "0 a 1CECFF01#"},
       {},
       {0, 0, 0, 7, 0, 2}},
      {"packets that contradict",
       {"0" + bam, "0 a 1CEBFF01#0010111213141516", "0" + bam, "0 a 1CEBFF01#01101112131415",
        "0" + bam, "0 a 1CEBFF01#", "0" + rts, "0 a 1CEB0201#0310111213141516", "0" + rts,
        "0 a 1CEB0201#FF10111213141516", "0" + bam, "1" + one, "1 a 1CEBFF01#0220"},
       {},
       {0, 0, 0, 6, 0, 0}},
      {"frames of other kinds",
       {"0 a 1CECFF01##120090002FFCAFE00", "0 a 1CECFF01#R8", "0 a 2C1#20090002FFCAFE00",
        "0 a 1DECFF01#20090002FFCAFE00", "0" + bam, "1 a 1CEBFF01#R8", "1 a 1CECFF01#1509",
        "1 a 1CECFF01#1509000200CAFE00", "2" + one, "3" + two},
       {"10: 3" + message},
       {1, 0, 0, 0, 0, 1}},
  };
  for (const auto& c : cases) {
    for (const std::size_t step : {1u, 2u, 100u}) {
      const Result result = assembled(c.lines, step);
      EXPECT_EQ(result.messages, c.messages) << c.name;
      EXPECT_EQ(result.counts, c.counts) << c.name;
    }
  }
}

TEST(Transport, TakesMessagesOfAllLengths) {
  ZelkTransport transport;
  for (unsigned length = 1; length <= 1786; ++length) {
    ZelkFrameBlock block;
    const unsigned packets = (length + 6) / 7;
    const auto low = static_cast<unsigned char>(length);
    const auto high = static_cast<unsigned char>(length >> 8);
    const auto count = static_cast<unsigned char>(packets);
    const unsigned char bam[] = {32, low, high, count, 255, 0xCA, 0xFE, 0};
    block.Append(7, 0x98ECFF01, kZelkFrameSent, block.ChannelIndex("a"), bam);
    for (unsigned i = 0; i < packets; ++i) {
      unsigned char data[8] = {static_cast<unsigned char>(i + 1)};
      for (unsigned at = 0; at < 7; ++at) data[at + 1] = static_cast<unsigned char>(7 * i + at);
      block.Append(8, 0x9CEBFF01, kZelkFrameSent, 0, data);
    }
    const std::size_t frames = block.Size();
    transport.Assemble(block);
    if (length == 1786) {
      EXPECT_EQ(block.Size(), frames);
      break;
    }
    ASSERT_EQ(block.Size(), frames + 1);
    EXPECT_EQ(block.Ids()[frames], 0x98FECA01u);
    EXPECT_EQ(block.Flags()[frames], kZelkFrameSent);
    ASSERT_EQ(block.Data(frames).size(), length);
    for (unsigned at = 0; at < length; ++at) ASSERT_EQ(block.Data(frames)[at], at % 256);
    for (std::size_t at = length; at % 8 != 0; ++at) ASSERT_EQ(block.Data(frames).data()[at], 0);
  }
  EXPECT_THAT(numbers(transport.Counts()), ElementsAre(1785, 0, 0, 1, 0, 256));
}

TEST(Transport, DropsWhatWasSilentForLongest) {
  ZelkFrameBlock block;
  const unsigned char rts[] = {16, 9, 0, 2, 255, 0, 0xEF, 0};
  const unsigned char packets[][8] = {{1}, {2}};
  std::uint16_t channel = 0;
  for (unsigned i = 0; i < 4096; ++i) {
    if (i % 128 == 0) channel = block.ChannelIndex("can" + std::to_string(i / 128));
    block.Append(0, 0x98EC0080 | (i % 128) << 8, 0, channel, rts);
  }
  block.Append(0, 0x98EB0080, 0, 0, packets[0]);
  block.Append(0, 0x98EC0081, 0, 0, rts);  // drops the second one
  block.Append(0, 0x98EB0180, 0, 0, packets[0]);
  block.Append(0, 0x98EB0080, 0, 0, packets[1]);
  ZelkTransport transport;
  transport.Assemble(block);
  EXPECT_THAT(numbers(transport.Counts()), ElementsAre(1, 0, 0, 0, 1, 1));
  transport.End();
  EXPECT_THAT(numbers(transport.Counts()), ElementsAre(1, 0, 4095, 0, 1, 1));
}

TEST(Transport, SurvivesFramesOfAllSorts) {
  std::mt19937 random(5);
  const auto pick = [&random](const std::string& from) { return from[random() % from.size()]; };
  std::uint64_t complete = 0;
  for (int round = 0; round < 300; ++round) {
    std::vector<std::string> lines;
    std::uint64_t announcements = 0;
    for (int i = 0; i < 60; ++i) {
      const bool is_control = random() % 4 == 0;
      const std::string to = random() % 2 ? "FF" : std::string("0") + pick("12");
      std::string line = std::to_string(random() % 1000) + (random() % 9 ? " a " : " b ") +
                         (is_control ? "1CEC" : "1CEB") + to + '0' + pick("12") + '#';
      const std::string kind =
          is_control ? std::vector<std::string>{"10", "20", "20", "11", "13", "FF"}[random() % 6]
                     : std::string("0") + pick("1111222203");
      line += kind;
      line += is_control
                  ? std::string(random() % 5 ? "09000" : "0E000") + pick("22233") + "FFCAFE00"
                  : std::string(random() % 9 ? 14 : 2 * (random() % 7), 'A');
      announcements += kind == "10" || kind == "20" ? 1 : 0;
      lines.push_back(line);
    }
    const Result whole = assembled(lines, lines.size());
    EXPECT_EQ(whole, assembled(lines, 1));
    EXPECT_EQ(whole, assembled(lines, 7));
    const auto& counts = whole.counts;
    EXPECT_EQ(counts[0] + counts[1] + counts[2] + counts[3] + counts[4], announcements);
    complete += counts[0];
  }
  EXPECT_GT(complete, 30u);
}

}  // namespace
