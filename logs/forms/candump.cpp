#include <algorithm>
#include <array>
#include <utility>

#include "logs/forms/candump_block.hpp"
#include "logs/forms/candump_line.hpp"
#include "logs/forms/form.hpp"
#include "logs/forms/lines.hpp"
#include "logs/forms/times.hpp"

namespace zelk::logs {

namespace {

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
        lines_(std::move(input)) {}

  bool next(Chunk& chunk) override {
    if (!lines_.next(chunk)) return false;
    chunk.base_time = sum_;
    if (adds_up_) for_each_time(chunk.bytes, [&](std::int64_t time) { sum_ = later(sum_, time); });
    return true;
  }

  void parse(Chunk& chunk, ZelkLogBlock& block) const override {
    parse_candump_block(chunk, adds_up_ ? std::optional(chunk.base_time) : std::nullopt, block);
  }

  bool has_independent_lines() const override { return !adds_up_; }

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
