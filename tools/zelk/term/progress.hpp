/// \file
/// The progress of long work.

#ifndef ZELK_TOOL_TERM_PROGRESS_HPP
#define ZELK_TOOL_TERM_PROGRESS_HPP

#include <chrono>
#include <cstdint>
#include <cstdio>

#include "term/system.hpp"

namespace zelk::tool {

/// What is done, how fast, and how much time is left, on standard error, for work that takes longer
/// than a second. It is drawn only when standard error is a terminal, and is removed with the
/// object.
class ProgressBar {
 public:
  /// @param total_bytes  of the whole work; 0 when they are unknown, and then there is no time left
  /// @param has_lines    whether results appear on the terminal meanwhile, and then nothing is
  /// drawn
  explicit ProgressBar(std::uint64_t total_bytes, bool has_lines = is_terminal(stdout));
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;
  ~ProgressBar() { clear(); }

  /// Draws the bar, a few times a second.
  ///
  /// @param done_bytes  part of the whole
  void update(std::uint64_t done_bytes);
  /// Removes the bar until it is drawn again.
  void clear();

 private:
  using Clock = std::chrono::steady_clock;

  std::uint64_t total_bytes_;
  bool is_on_;
  bool is_drawn_ = false;
  Clock::time_point start_ = Clock::now();
  Clock::time_point next_ = start_ + std::chrono::seconds(1);
};

}  // namespace zelk::tool

#endif
