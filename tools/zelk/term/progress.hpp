/// \file
/// A progress bar.

#ifndef ZELK_TOOL_TERM_PROGRESS_HPP
#define ZELK_TOOL_TERM_PROGRESS_HPP

#include <chrono>
#include <cstdint>
#include <cstdio>

#include "term/system.hpp"

namespace zelk::tool {

/// A bar on standard error that grows while work is done. It is drawn only when standard error is a
/// terminal, and is removed with the object.
class ProgressBar {
 public:
  /// @param total  amount of the whole work; 0 when it is unknown, and then there is no bar
  /// @param has_lines  whether results appear on the terminal meanwhile, and then there is none
  explicit ProgressBar(std::uint64_t total, bool has_lines = is_terminal(stdout));
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;
  ~ProgressBar() { clear(); }

  /// Draws the bar, a few times a second.
  ///
  /// @param done  part of `total`
  void update(std::uint64_t done);
  /// Removes the bar until it is drawn again.
  void clear();

 private:
  using Clock = std::chrono::steady_clock;

  std::uint64_t total_;  // 0 for no bar
  bool is_drawn_ = false;
  Clock::time_point next_ = Clock::now();
};

}  // namespace zelk::tool

#endif
