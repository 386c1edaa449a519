#include "log/log_input.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <system_error>

#include "log/candump_log.hpp"
#include "term/system.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

constexpr std::size_t kReadBytes = 1 << 18;
constexpr std::size_t kLongestLine = 1 << 12;

constexpr std::size_t kProbedLines = 100;
constexpr std::size_t kShownBytes = 60;

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

std::optional<std::string> why_no_log(const std::string& path) {
  if (file_type(path) != std::filesystem::file_type::regular)
    return "not a regular file, which only --log itself takes";
  std::string block;
  LogInput(path).next(block);
  std::string first;
  std::string_view rest = block;
  LogFrame frame;
  for (std::size_t line = 1; line <= kProbedLines && !rest.empty(); ++line) {
    const std::size_t length = std::min(rest.find('\n'), rest.size());
    const LogLine kind = parse_log_line(rest.substr(0, length), frame);
    if (kind != LogLine::kBlank && kind != LogLine::kMalformed) return std::nullopt;
    if (kind == LogLine::kMalformed && first.empty()) {
      first = fmt::format(", line {}: {}", line,
                          in_quotes(rest.substr(0, std::min(length, kShownBytes))));
    }
    rest.remove_prefix(std::min(length + 1, rest.size()));
  }
  return fmt::format("no frame among the first {} lines{}", kProbedLines, first);
}

}  // namespace zelk::tool
