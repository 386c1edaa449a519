#include "logs/forms/lines.hpp"

#include <algorithm>

namespace zelk::logs {

std::uint64_t count_line_feeds(std::string_view text) {
  // So few that a byte can count them: compilers make instructions of it that do 16 at a time.
  constexpr std::size_t kCounted = 240;
  std::uint64_t sum = 0;
  while (text.size() >= kCounted) {
    std::uint8_t count = 0;
    for (std::size_t i = 0; i < kCounted; ++i)
      count = static_cast<std::uint8_t>(count + (text[i] == '\n' ? 1 : 0));
    sum += count;
    text.remove_prefix(kCounted);
  }
  return sum + static_cast<std::uint64_t>(std::ranges::count(text, '\n'));
}

bool Lines::next(Chunk& chunk) {
  if (!take_lines(chunk.bytes)) return false;
  chunk.first_line = line_;
  line_ += count_line_feeds(chunk.bytes);
  return true;
}

bool Lines::take_lines(std::string& block) {
  block.assign(rest_);  // keeps its memory
  rest_.clear();
  while (read_more(block)) {
    const std::size_t line_feed = block.rfind('\n');
    if (line_feed != std::string::npos) {
      rest_.assign(block, line_feed + 1);
      block.resize(line_feed + 1);
      return true;
    }
    if (block.size() > kLongestLine) {
      block.resize(kLongestLine + 1);
      block += '\n';
      skipping_ = true;
      return true;
    }
  }
  return !block.empty() && !(stop_ && *stop_);
}

bool Lines::read_more(std::string& block) {
  const std::size_t old_size = block.size();
  const std::size_t count = stream_->read(buffer_.get(), kReadBytes);
  block.append(buffer_.get(), count);
  if (skipping_) drop_skipped(block, old_size);
  return count > 0;
}

void Lines::drop_skipped(std::string& block, std::size_t from) {
  const std::size_t line_feed = block.find('\n', from);
  skipping_ = line_feed == std::string::npos;
  block.erase(from, skipping_ ? std::string::npos : line_feed + 1 - from);
}

}  // namespace zelk::logs
