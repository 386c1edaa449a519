/// \file
/// Text that grows by small pieces, quickly.

#ifndef ZELK_BASE_LINE_BUFFER_HPP
#define ZELK_BASE_LINE_BUFFER_HPP

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <string_view>
#include <vector>

namespace zelk {

/// A text that keeps its memory when it is emptied. An append costs one comparison and a copy:
/// decoding a log takes a quarter longer with `fmt::memory_buffer`, whose appends are not inlined.
class LineBuffer {
 public:
  void clear() { size_ = 0; }
  std::string_view view() const { return {bytes_.data(), size_}; }
  std::size_t size() const { return size_; }
  /// Cuts the text down to its first `size` characters; `size` is at most what it has.
  void shrink_to(std::size_t size) { size_ = size; }
  /// Puts `c` in place of the character at `at`, which is in the text.
  void replace(std::size_t at, char c) { bytes_[at] = c; }
  /// Appends `count` characters of the text itself, from `at` on.
  void repeat(std::size_t at, std::size_t count) {
    char* const end = room(count);  // may move the text
    std::memcpy(end, bytes_.data() + at, count);
    size_ += count;
  }

  void append(char c) {
    *room(1) = c;
    ++size_;
  }
  void append(std::string_view text) {
    if (text.empty()) return;  // perhaps a null pointer, from which nothing may be copied
    std::memcpy(room(text.size()), text.data(), text.size());
    size_ += text.size();
  }
  /// Room for at least `count` characters behind the text; see `end_at`.
  char* room(std::size_t count) {
    if (count > bytes_.size() - size_) grow(count);
    return bytes_.data() + size_;
  }
  /// Appends what was put into `room`, up to `end`.
  void end_at(const char* end) { size_ = static_cast<std::size_t>(end - bytes_.data()); }

 private:
  static constexpr std::size_t kFirstBytes = 1 << 16;

  void grow(std::size_t count) {
    if (std::max(count, bytes_.size()) > SIZE_MAX / 8) throw std::bad_alloc();
    bytes_.resize(2 * bytes_.size() + count + kFirstBytes);
  }

  std::vector<char> bytes_;
  std::size_t size_ = 0;  // of the text
};

}  // namespace zelk

#endif
