/// \file
/// What is printed on standard error while a log is decoded.

#ifndef ZELK_TOOL_LOG_LOG_REPORTS_HPP
#define ZELK_TOOL_LOG_LOG_REPORTS_HPP

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "zelk/logs/pipeline.hpp"

namespace zelk::tool {

/// Adds up the counts of the blocks of a log, in their order, and prints their malformed lines.
class LogReport {
 public:
  /// @param log_name  what to call the log
  /// @param strict  a malformed line is an error
  LogReport(std::string log_name, bool strict)
      : log_name_(std::move(log_name)), is_strict_(strict) {}

  /// @throws RequestError for malformed lines when they are an error
  void add(const ZelkLogBlock& block);
  /// Prints how many lines are malformed when not all were printed, and an error when no line is a
  /// frame.
  void print_rest() const;
  /// False when there were lines, and none was a frame.
  bool is_of_a_log() const { return counts_.frames > 0 || counts_.malformed == 0; }
  const ZelkLogCounts& counts() const { return counts_; }

 private:
  std::string log_name_;
  bool is_strict_;
  ZelkLogCounts counts_;
};

/// Prints all counts of a log that was decoded on standard error.
///
/// @param options  with which it was
void print_summary(const ZelkLogSummary& summary, const ZelkPipelineOptions& options);

/// Prints one line of statistics on standard error.
///
/// @param more  behind the number
void print_count(std::string_view what, std::uint64_t count, std::string_view more = {});

}  // namespace zelk::tool

#endif
