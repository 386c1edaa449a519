#include <algorithm>
#include <cstring>
#include <utility>

#include "logs/input/byte_stream.hpp"

namespace zelk::logs {

namespace {

/// A line begins at the first byte of the file and behind each line feed. So the part is read from
/// the byte in front of it on, and to the first line feed that is its last byte or comes later.
///
///     ......\n|first\n.......\n......|..\n
///           begin - 1         end - 1
class LinesIn : public ByteStream {
 public:
  LinesIn(std::unique_ptr<FileStream> file, const ZelkLogRange& range) : file_(std::move(file)) {
    has_ended_ = range.begin >= range.end;
    if (has_ended_) return;
    is_before_ = range.begin > 0;
    const std::uint64_t from = is_before_ ? range.begin - 1 : 0;
    if (is_before_) file_->seek(from);
    inside_ = range.end - 1 - from;
  }

  std::size_t read(char* buffer, std::size_t size) override {
    while (is_before_) {
      const std::size_t count = read_inside(buffer, size);
      if (count == 0) return 0;
      if (const std::size_t kept = drop_line(buffer, count); kept > 0) return kept;
    }
    if (inside_ > 0) return read_inside(buffer, size);
    return has_ended_ ? 0 : read_last_line(buffer, size);
  }

 private:
  /// No line begins in the part when there is no line feed among these bytes.
  std::size_t read_inside(char* buffer, std::size_t size) {
    if (inside_ == 0) return 0;
    const auto most = static_cast<std::size_t>(std::min<std::uint64_t>(size, inside_));
    const std::size_t count = file_->read(buffer, most);
    inside_ -= count;
    return count;
  }

  /// Removes the rest of a line that begins in front of the part; the number of bytes that stay.
  std::size_t drop_line(char* buffer, std::size_t count) {
    const char* const end = buffer + count;
    const char* const line_feed = std::find(buffer, buffer + count, '\n');
    if (line_feed == end) return 0;
    is_before_ = false;
    const auto kept = static_cast<std::size_t>(end - line_feed - 1);
    std::memmove(buffer, line_feed + 1, kept);
    return kept;
  }

  std::size_t read_last_line(char* buffer, std::size_t size) {
    const std::size_t count = file_->read(buffer, size);
    const char* const line_feed = std::find(buffer, buffer + count, '\n');
    has_ended_ = count == 0 || line_feed != buffer + count;
    return has_ended_ && count > 0 ? static_cast<std::size_t>(line_feed - buffer) + 1 : count;
  }

  std::unique_ptr<FileStream> file_;
  std::uint64_t inside_ = 0;  // bytes that stand in front of the last byte of the part
  bool is_before_ = false;    // the first line that begins in the part
  bool has_ended_ = false;
};

}  // namespace

std::unique_ptr<ByteStream> lines_in(std::unique_ptr<FileStream> file, const ZelkLogRange& range) {
  return std::make_unique<LinesIn>(std::move(file), range);
}

}  // namespace zelk::logs
