#include "logs/forms/lines.hpp"

#include <algorithm>
#include <cstring>
#include <utility>

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
  // What is too long already counts, also where the stream fails next.
  while (size_ > kLongestLine || read_more()) {
    const std::size_t end = std::string_view(text_).substr(0, size_).rfind('\n') + 1;
    if (end > 0) {
      give(end, block);
      return true;
    }
    if (size_ > kLongestLine) {
      block.assign(text_, 0, kLongestLine + 1);
      block += '\n';
      size_ = 0;
      skipping_ = true;
      return true;
    }
  }
  block.assign(text_, 0, std::exchange(size_, 0));
  return !block.empty() && !(stop_ && *stop_);
}

/// Gives the first bytes of the text out: little is copied, much is exchanged for the memory that
/// the block had.
void Lines::give(std::size_t end, std::string& block) {
  const std::size_t rest = size_ - end;
  if (end < text_.size() / 2) {
    block.assign(text_, 0, end);
    std::memmove(text_.data(), text_.data() + end, rest);
  } else {
    block.resize(text_.size());
    block.swap(text_);
    std::memcpy(text_.data(), block.data() + end, rest);
    block.resize(end);
  }
  size_ = rest;
}

bool Lines::read_more() {
  const std::size_t count = stream_->read(text_.data() + size_, text_.size() - size_);
  size_ += count;
  if (skipping_) drop_skipped();
  return count > 0;
}

void Lines::drop_skipped() {
  const std::size_t line_feed = std::string_view(text_).substr(0, size_).find('\n');
  skipping_ = line_feed == std::string_view::npos;
  const std::size_t dropped = skipping_ ? size_ : line_feed + 1;
  size_ -= dropped;
  std::memmove(text_.data(), text_.data() + dropped, size_);
}

}  // namespace zelk::logs
