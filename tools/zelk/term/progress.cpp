#include "term/progress.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <string>

namespace zelk::tool {

namespace {

/// "[########                ]  33 %"
std::string bar_of(double part) {
  constexpr std::size_t kWidth = 24;
  const auto filled = static_cast<std::size_t>(part * static_cast<double>(kWidth));
  return fmt::format("[{:<{}}] {:3.0f} %", std::string(filled, '#'), kWidth, part * 100);
}

/// "1:05:09", "5:09"
std::string clock_of(double seconds) {
  const auto whole = static_cast<std::uint64_t>(std::min(seconds, 359'999.0));
  const std::uint64_t minutes = whole / 60;
  if (minutes < 60) return fmt::format("{}:{:02}", minutes, whole % 60);
  return fmt::format("{}:{:02}:{:02}", minutes / 60, minutes % 60, whole % 60);
}

}  // namespace

ProgressBar::ProgressBar(std::uint64_t total_bytes, bool has_lines)
    : total_bytes_(total_bytes), is_on_(is_terminal(stderr) && !has_lines) {}

void ProgressBar::update(std::uint64_t done_bytes) {
  constexpr auto kInterval = std::chrono::milliseconds(100);
  const Clock::time_point now = Clock::now();
  if (!is_on_ || now < next_) return;
  next_ = now + kInterval;
  const double seconds = std::chrono::duration<double>(now - start_).count();
  const auto done = static_cast<double>(done_bytes);
  std::string text = fmt::format("{:.1f} MB/s", done / 1e6 / seconds);
  if (total_bytes_ == 0) {
    text = fmt::format("{:.1f} MB, {}", done / 1e6, text);
  } else {
    const double part = std::min(1.0, done / static_cast<double>(total_bytes_));
    text = fmt::format("{}, {}", bar_of(part), text);
    if (part > 0) text += fmt::format(", {} left", clock_of(seconds / part - seconds));
  }
  fmt::print(stderr, "\r{:<70}", text);
  static_cast<void>(std::fflush(stderr));
  is_drawn_ = true;
}

void ProgressBar::clear() {
  if (is_drawn_) fmt::print(stderr, "\r{:70}\r", "");
  is_drawn_ = false;
}

}  // namespace zelk::tool
