#include "logs/forms/candump_block.hpp"

#include <cstring>
#include <utility>

#include "logs/forms/candump_line.hpp"
#include "logs/forms/candump_plain.hpp"
#include "logs/frames/filler.hpp"

namespace zelk::logs {

namespace {

/// Parses one block of lines.
class BlockParser {
 public:
  BlockParser(ZelkLogBlock& block, std::uint64_t first_line)
      : block_(block), filler_(block.frames), line_(first_line) {}

  /// @param text  that the block has
  void parse(std::string_view text, std::optional<std::int64_t> sum) {
    sum_ = sum;
    PlainLines plain_lines(block_.frames);
    const char* const end = text.data() + text.size();
    for (const char* at = text.data(); at != end; ++line_) {
      const char* const next = sum_ ? nullptr : plain_lines.parse(at, end);
      at = next ? next : any_line(at, end);
    }
    block_.counts.lines = line_ - first_line_;
    block_.counts.frames = block_.frames.Size();
  }

 private:
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
};

}  // namespace

void parse_candump_block(Chunk& chunk, std::optional<std::int64_t> sum, ZelkLogBlock& block) {
  ZelkFrameFiller filler(block.frames);
  filler.swap_text(chunk.bytes);
  BlockParser(block, chunk.first_line).parse(filler.text(), sum);
}

std::int64_t later(std::int64_t time, std::int64_t difference) {
  constexpr std::int64_t kFirst = -INT64_MAX;
  if (difference > 0) return time > INT64_MAX - difference ? INT64_MAX : time + difference;
  return time < kFirst - difference ? kFirst : time + difference;
}

}  // namespace zelk::logs
