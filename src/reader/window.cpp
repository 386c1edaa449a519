#include "reader/window.hpp"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <new>
#include <utility>

namespace zelk {
namespace {

constexpr std::size_t kBlockSize = 65536;

/// Drops every carriage return in front of a line feed, in place; returns the new length.
std::size_t drop_returns(char* bytes, std::size_t size) {
  char* const end = bytes + size;
  auto* from = static_cast<char*>(std::memchr(bytes, '\r', size));
  if (!from) return size;
  char* to = from;
  while (from != end) {
    const bool is_dropped = *from == '\r' && from + 1 != end && from[1] == '\n';
    if (is_dropped) ++from;
    const auto* next =
        static_cast<char*>(std::memchr(from + 1, '\r', static_cast<std::size_t>(end - from - 1)));
    const auto piece = static_cast<std::size_t>((next ? next : end) - from);
    std::memmove(to, from, piece);
    to += piece;
    from += piece;
  }
  return static_cast<std::size_t>(to - bytes);
}

}  // namespace

Window::Window(ByteSource source)
    : source_(std::move(source)),
      block_(take_block(kBlockSize)),
      cursor_(block_.bytes.get()),
      limit_(cursor_) {
  *limit_ = '\0';
}

bool Window::extend(char*& start) {
  const auto kept = static_cast<std::size_t>(limit_ - start);
  if (kept > SIZE_MAX / 4) throw std::bad_alloc();
  Block next = take_block(kept < kBlockSize / 2 ? kBlockSize : 4 * kept);
  char* const bytes = next.bytes.get();
  std::copy(start, limit_, bytes);
  const std::size_t count = read(bytes + kept, next.size - kept - 1);
  if (count == 0) {
    spare_ = std::move(next);
    return false;
  }
  // A block that holds nothing but the token under way is borrowed by no other.
  if (start != block_.bytes.get()) left_.push_back(std::move(block_));
  block_ = std::move(next);
  start = bytes;
  limit_ = bytes + kept + count;
  *limit_ = '\0';
  return true;
}

void Window::forget() {
  if (left_.empty()) return;
  if (left_.back().size == kBlockSize) spare_ = std::move(left_.back());
  left_.clear();
}

Window::Block Window::take_block(std::size_t size) {
  if (spare_.size >= size) return std::exchange(spare_, {});
  return {std::make_unique_for_overwrite<char[]>(size), size};
}

/// Reads at least one byte unless the source has ended; returns how many.
std::size_t Window::read(char* into, std::size_t room) {
  std::size_t count = 0;
  do {
    count = std::exchange(holds_return_, false) ? 1 : 0;
    if (count == 1) into[0] = '\r';
    const std::size_t got = source_.read(into + count, room - count);
    if (got == 0) return count;
    count += got;
    holds_return_ = into[count - 1] == '\r';
    if (holds_return_) --count;
    count = drop_returns(into, count);
  } while (count == 0);
  return count;
}

}  // namespace zelk
