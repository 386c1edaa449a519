/// \file
/// What is told on standard error while a log is decoded.

#ifndef ZELK_TOOL_LOG_LOG_REPORTS_HPP
#define ZELK_TOOL_LOG_LOG_REPORTS_HPP

#include <chrono>
#include <cstdint>
#include <string>

#include "log/log_decoder.hpp"
#include "log/log_input.hpp"

namespace zelk::tool {

/// Adds up what the blocks of a log gave, in their order, and tells of malformed lines.
class LogReport {
 public:
  /// @param log_name  what to call the log
  explicit LogReport(std::string log_name) : log_name_(std::move(log_name)) {}

  void add(const DecodedBlock& block);
  /// Tells how many malformed lines have not been told, and when they were all there was.
  void tell_rest() const;
  /// False when there were lines, and none was a frame.
  bool is_of_a_log() const { return counts_.frames > 0 || counts_.malformed == 0; }
  /// Tells all counts.
  void tell_counts(const UnknownIds& unknown) const;

 private:
  std::string log_name_;
  LogCounts counts_;
};

/// A bar on standard error that grows with what has been read, when it is a terminal that no result
/// goes to, and the log is a file. It is gone when the object is.
class ProgressBar {
 public:
  explicit ProgressBar(const LogInput& input);
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;
  ~ProgressBar() { clear(); }

  /// Draws what is new, a few times a second.
  void update();
  /// Takes the bar away, until it is drawn again.
  void clear();

 private:
  using Clock = std::chrono::steady_clock;

  const LogInput& input_;
  bool is_wanted_;
  bool is_drawn_ = false;
  Clock::time_point next_;
};

}  // namespace zelk::tool

#endif
