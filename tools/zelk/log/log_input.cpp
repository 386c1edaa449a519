#include "log/log_input.hpp"

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "term/system.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

constexpr std::size_t kReadBytes = 1 << 18;
constexpr std::size_t kLongestLine = 1 << 12;

}  // namespace

LogInput::LogInput(const std::optional<std::string>& path)
    : name_(path.value_or("standard input")), file_(stdin) {
  if (path) {
    opened_.reset(std::fopen(path->c_str(), "rb"));
    if (!opened_) {
      throw std::system_error(errno, std::generic_category(), "cannot open " + escaped(name_));
    }
    file_ = opened_.get();
  }
  size_ = size_of_regular_file(file_);
}

bool LogInput::next(std::string& block) {
  block.swap(rest_);
  rest_.clear();
  while (read_more(block)) {
    const std::size_t line_feed = block.rfind('\n');
    if (line_feed != std::string::npos) {
      rest_.assign(block, line_feed + 1);
      block.resize(line_feed + 1);
      return true;
    }
    if (block.size() > kLongestLine) {
      block.resize(kLongestLine);
      block += '\n';
      skipping_ = true;
      return true;
    }
  }
  return !block.empty() && !NotedStop::is_requested();
}

bool LogInput::read_more(std::string& block) {
  const std::size_t old_size = block.size();
  block.resize(old_size + kReadBytes);
  const std::size_t count = read_into(block.data() + old_size, kReadBytes);
  block.resize(old_size + count);
  bytes_read_ += count;
  if (skipping_) drop_skipped(block, old_size);
  return count > 0;
}

std::size_t LogInput::read_into(char* buffer, std::size_t size) const {
  try {
    return read_some(file_, buffer, size);
  } catch (const std::system_error& error) {
    throw std::system_error(error.code(), "cannot read " + escaped(name_));
  }
}

void LogInput::drop_skipped(std::string& block, std::size_t from) {
  const std::size_t line_feed = block.find('\n', from);
  skipping_ = line_feed == std::string::npos;
  block.erase(from, skipping_ ? std::string::npos : line_feed + 1 - from);
}

}  // namespace zelk::tool
