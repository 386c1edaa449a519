#include <array>
#include <bit>
#include <cstring>
#include <utility>

#include "base/frame_id.hpp"
#include "logs/forms/candump_line.hpp"
#include "logs/forms/form.hpp"
#include "logs/forms/hex.hpp"
#include "logs/forms/lines.hpp"
#include "logs/forms/times.hpp"
#include "logs/frames/filler.hpp"
#include "zelk/records.h"

namespace zelk::logs {

namespace {

/// A time that is later by a difference, or the bound of all times.
std::int64_t later(std::int64_t time, std::int64_t difference) {
  constexpr std::int64_t kFirst = -INT64_MAX;
  if (difference > 0) return time > INT64_MAX - difference ? INT64_MAX : time + difference;
  return time < kFirst - difference ? kFirst : time + difference;
}

/// Index of the first byte of `characters` that stands below all digits, as blanks and line ends
/// do; 8 when none does.
int end_of_digits(std::uint64_t characters) {
  // A borrow marks bytes above the first one too, which does not matter here.
  const std::uint64_t below = (characters - repeated('0')) & ~characters & repeated(0x80);
  return std::countr_zero(below) / 8;
}

/// The number that eight decimal digits spell; beyond 99,999,999 for other characters.
std::uint64_t number_of(std::uint64_t characters) {
  std::uint64_t digits = characters - repeated('0');
  const std::uint64_t others = (digits | (digits + repeated(0x76))) & repeated(0x80);
  if (others != 0) return UINT64_MAX;
  // Pairs, then fours, then all: the upper of two neighbours is the lower one's tens.
  digits = (digits * 10 + (digits >> 8)) & 0x00FF00FF00FF00FF;
  digits = (digits * 100 + (digits >> 16)) & 0x0000FFFF0000FFFF;
  return (digits * 10000 + (digits >> 32)) & 0xFFFFFFFF;
}

/// Parses one block of lines.
class BlockParser {
 public:
  BlockParser(ZelkLogBlock& block, std::uint64_t first_line)
      : block_(block), filler_(block.frames), line_(first_line) {}

  /// @param sums  times are differences, and add up from here on
  void parse(std::string text, std::optional<std::int64_t> sum) {
    filler_.take_text(std::move(text));
    sum_ = sum;
    const std::string_view all = filler_.text();
    const char* at = all.data();
    const char* const end = at + all.size();
    while (at != end) {
      const char* next = sum_ ? nullptr : plain_line(at, end);
      if (!next) next = any_line(at, end);
      at = next;
      ++line_;
    }
    block_.counts.lines = line_ - first_line_;
    block_.counts.frames = block_.frames.Size();
  }

 private:
  /// A channel whose name has at most 7 bytes, with the blank behind it, as a number.
  struct ShortName {
    std::uint64_t name = 0;
    std::uint64_t mask = 0;
    std::size_t size = 0;
    std::uint16_t index = 0;
  };

  // "(1436509052.249713) vcan0 123#DEADBEEF", as "candump -l" writes nearly all lines.
  static constexpr std::size_t kTimeBytes = 20;  // with its brackets and the blank
  /// No more are looked at: the time, a short name, an identifier with "##" and flags, and the data
  /// of CAN FD, in whole words.
  static constexpr std::size_t kLongestPlainLine = kTimeBytes + 8 + 11 + 128 + 16;

  /// Parses a line of that form.
  ///
  /// @return the next line; null when this one is of another form, or too close to the end
  const char* plain_line(const char* at, const char* end) {
    if (static_cast<std::size_t>(end - at) < kLongestPlainLine) return nullptr;
    const std::int64_t time = plain_time_at(at);
    if (time < 0) return nullptr;
    const std::string_view time_text(at + 1, kTimeBytes - 3);
    at += kTimeBytes;
    const ShortName* const channel = channel_at(at);
    if (!channel) return nullptr;
    std::uint32_t id = 0;
    at = identifier_at(at + channel->size, id);
    if (!at) return nullptr;
    unsigned flags = 0;
    if (*at == '#') {
      const int digit = digit_value(at[1]);
      if (digit == kNoDigit) return nullptr;
      flags = fd_flags(digit);
      at += 2;
    }
    const std::size_t most = 2 * (flags ? ZelkFrame::kMostData : kClassicBytes);
    const std::size_t digits = data_at(at, most);
    if (digits > most || digits % 2 != 0) return nullptr;
    const char* const next = line_end_at(at + digits, flags);
    if (next) filler_.put(time, id, flags, channel->index, digits / 2, time_text);
    return next;
  }

  /// The end of a line, with the direction that "candump -x" puts there.
  ///
  /// @return behind it; null when something else stands there
  static const char* line_end_at(const char* at, unsigned& flags) {
    if (*at == ' ' && (at[1] == 'R' || at[1] == 'T')) {
      if (at[1] == 'T') flags |= kZelkFrameSent;
      at += 2;
    }
    if (*at == '\r') ++at;
    return *at == '\n' ? at + 1 : nullptr;
  }

  /// "(1436509052.249713) ", in nanoseconds; negative for anything else.
  static std::int64_t plain_time_at(const char* at) {
    constexpr std::uint64_t kTwoZeros = 0x3030;
    const std::uint64_t upper = number_of(load_characters(at + 1));  // eight of ten digits
    const std::uint64_t lower = number_of(load_characters(at + 3));
    const std::uint64_t micros = number_of((load_characters(at + 10) & ~0xFFFFull) | kTwoZeros);
    const bool is_plain = at[0] == '(' && at[11] == '.' && at[18] == ')' && at[19] == ' ' &&
                          (upper | lower | micros) != UINT64_MAX;
    const auto seconds = static_cast<std::int64_t>(upper / 1'000'000 * 100'000'000 + lower);
    if (!is_plain || seconds > kMostPlainSeconds) return -1;
    return seconds * kNanosecondsPerSecond + static_cast<std::int64_t>(micros) * 1000;
  }

  static constexpr std::int64_t kMostPlainSeconds = 9'000'000'000;

  const ShortName* channel_at(const char* at) {
    const std::uint64_t characters = load_characters(at);
    for (const ShortName& each : names_)
      if ((characters & each.mask) == each.name && each.size != 0) return &each;
    return enter_channel(at);
  }

  const ShortName* enter_channel(const char* at) {
    const auto* const blank = static_cast<const char*>(std::memchr(at, ' ', 8));
    if (!blank || blank == at) return nullptr;
    const auto size = static_cast<std::size_t>(blank - at);
    const std::string_view name(at, size);
    if (name.find_first_of("\t\r\n#") != std::string_view::npos) return nullptr;
    ShortName& entry = names_[next_name_++ % names_.size()];
    entry.mask = size == 7 ? ~std::uint64_t{0} : (std::uint64_t{1} << (8 * (size + 1))) - 1;
    entry.name = load_characters(at) & entry.mask;
    entry.size = size + 1;
    entry.index = block_.frames.ChannelIndex(name);
    return &entry;
  }

  /// An identifier and its "#".
  ///
  /// @return behind it; null when there is none, or it is that of an error frame
  static const char* identifier_at(const char* at, std::uint32_t& id) {
    if (at[3] == '#') {
      const int number = digit_value(at[0]) << 8 | digit_value(at[1]) << 4 | digit_value(at[2]);
      id = static_cast<std::uint32_t>(number);
      return number >= 0 && number <= static_cast<int>(kLargestStandardId) ? at + 4 : nullptr;
    }
    std::uint32_t bytes = 0;
    if (at[8] != '#' || !decode_digits(load_characters(at), bytes)) return nullptr;
    const std::uint32_t number =
        (bytes << 24) | (bytes << 8 & 0xFF0000) | (bytes >> 8 & 0xFF00) | bytes >> 24;
    id = number | ZELK_ID_EXTENDED;
    return number <= kLargestExtendedId ? at + 9 : nullptr;
  }

  /// Data up to what is no digit, into the room of the next frame.
  ///
  /// @return number of digits; more than `most` when there are, or letters are among them
  std::size_t data_at(const char* at, std::size_t most) {
    unsigned char* const room = filler_.room();
    for (std::size_t digits = 0; digits <= most; digits += 8) {
      std::uint64_t characters = load_characters(at + digits);
      const int count = end_of_digits(characters);
      if (count < 8) {
        const std::uint64_t mask = (std::uint64_t{1} << (8 * count)) - 1;
        characters = (characters & mask) | (repeated('0') & ~mask);
      }
      std::uint32_t bytes = 0;
      if (!decode_digits(characters, bytes)) break;
      std::memcpy(room + digits / 2, &bytes, 4);
      std::memset(room + digits / 2 + 4, 0, 4);
      if (count < 8) return digits + static_cast<std::size_t>(count);
    }
    return most + 1;
  }

  /// Parses a line of any form.
  ///
  /// @return the next line
  const char* any_line(const char* at, const char* end) {
    const auto* found =
        static_cast<const char*>(std::memchr(at, '\n', static_cast<std::size_t>(end - at)));
    const char* const line_end = found ? found : end;
    const std::string_view line(at, static_cast<std::size_t>(line_end - at));
    LineFrame frame{.data = filler_.room()};
    const LineKind kind = parse_candump_line(line, frame);
    std::int64_t time = time_of(frame);
    if (sum_ && time != kZelkNoTime) time = *sum_ = later(*sum_, time);
    if (kind == LineKind::kMalformed) note_malformed(block_, line_, line);
    if (kind == LineKind::kFrame) {
      filler_.put(time, frame.id, frame.flags, block_.frames.ChannelIndex(frame.channel),
                  frame.length, frame.time);
    }
    return found ? found + 1 : end;
  }

  ZelkLogBlock& block_;
  ZelkFrameFiller filler_;
  std::uint64_t line_;
  const std::uint64_t first_line_ = line_;
  std::optional<std::int64_t> sum_;
  std::array<ShortName, 8> names_{};
  std::size_t next_name_ = 0;
};

/// The times of a text, one after the other, as they stand.
template <typename Act>
void for_each_time(std::string_view text, const Act& act) {
  std::array<unsigned char, ZelkFrame::kMostData + ZelkFrameBlock::kSlack> data;
  for_each_line(text, [&](std::string_view line) {
    LineFrame frame{.data = data.data()};
    parse_candump_line(line, frame);
    if (const std::int64_t time = time_of(frame); time != kZelkNoTime) act(time);
  });
}

constexpr std::size_t kBeginningBytes = 1
                                        << 14;  // in which times that run backwards are looked for

std::string_view whole_lines(std::string_view text) { return text.substr(0, text.rfind('\n') + 1); }

/// Differences go up and down. Points in time go up, but for a few that were recorded late, and for
/// logs that were put together from others.
bool are_differences(std::string_view beginning, ZelkLogTimes times) {
  constexpr std::int64_t kLongestDifference = 86400 * kNanosecondsPerSecond;
  if (times != ZelkLogTimes::kDetect) return times == ZelkLogTimes::kDifferences;
  std::uint64_t steps_up = 0;
  std::uint64_t steps_down = 0;
  std::int64_t largest = 0;
  std::int64_t last = 0;
  for_each_time(beginning, [&](std::int64_t time) {
    steps_up += time > last;
    steps_down += time < last;
    last = time;
    largest = std::max(largest, time);
  });
  return steps_down > 0 && steps_down >= steps_up / 4 && largest < kLongestDifference;
}

class Candump : public Form {
 public:
  explicit Candump(LogInput input)
      : adds_up_(are_differences(whole_lines(input.stream->peek_line(kBeginningBytes)),
                                 input.options.times)),
        lines_(std::move(input.stream), input.options.stop) {}

  bool next(Chunk& chunk) override {
    if (!lines_.next(chunk)) return false;
    chunk.base_time = sum_;
    if (adds_up_) for_each_time(chunk.bytes, [&](std::int64_t time) { sum_ = later(sum_, time); });
    return true;
  }

  void parse(Chunk& chunk, ZelkLogBlock& block) const override {
    BlockParser(block, chunk.first_line)
        .parse(std::move(chunk.bytes), adds_up_ ? std::optional(chunk.base_time) : std::nullopt);
  }

 private:
  bool adds_up_;
  Lines lines_;
  std::int64_t sum_ = 0;
};

}  // namespace

std::unique_ptr<Form> open_candump(LogInput input) {
  return std::make_unique<Candump>(std::move(input));
}

}  // namespace zelk::logs
