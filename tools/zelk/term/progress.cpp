#include "term/progress.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <string>

namespace zelk::tool {

ProgressBar::ProgressBar(std::uint64_t total, bool has_lines)
    : total_(is_terminal(stderr) && !has_lines ? total : 0) {}

void ProgressBar::update(std::uint64_t done) {
  constexpr auto kInterval = std::chrono::milliseconds(100);
  constexpr std::uint64_t kWidth = 40;
  if (total_ == 0 || Clock::now() < next_) return;
  next_ = Clock::now() + kInterval;
  const double part = std::min(1.0, static_cast<double>(done) / static_cast<double>(total_));
  const auto filled = static_cast<std::size_t>(part * static_cast<double>(kWidth));
  fmt::print(stderr, "\r[{:<{}}] {:3.0f} %", std::string(filled, '#'), kWidth, part * 100);
  std::fflush(stderr);
  is_drawn_ = true;
}

void ProgressBar::clear() {
  if (is_drawn_) fmt::print(stderr, "\r{:50}\r", "");
  is_drawn_ = false;
}

}  // namespace zelk::tool
