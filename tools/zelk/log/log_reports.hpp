/// \file
/// What is printed on standard error while a log is decoded.

#ifndef ZELK_TOOL_LOG_LOG_REPORTS_HPP
#define ZELK_TOOL_LOG_LOG_REPORTS_HPP

#include <cstdint>
#include <string>

#include "log/log_decoder.hpp"
#include "zelk/logs/transport.hpp"

namespace zelk::tool {

/// Adds up the counts of the blocks of a log, in their order, and prints their malformed lines.
class LogReport {
 public:
  /// @param log_name  what to call the log
  explicit LogReport(std::string log_name) : log_name_(std::move(log_name)) {}

  /// @param decoded  what came of `block`
  void add(const ZelkLogBlock& block, const LogCounts& decoded);
  /// Prints how many lines are malformed when not all were printed, and an error when no line is a
  /// frame.
  void print_rest() const;
  /// False when there were lines, and none was a frame.
  bool is_of_a_log() const { return counts_.frames > 0 || counts_.malformed == 0; }
  /// Prints all counts.
  ///
  /// @param transport  null: messages of the transport protocol were not put together
  void print_counts(const UnknownIds& unknown, const ZelkTransport* transport = nullptr) const;

 private:
  std::string log_name_;
  LogCounts counts_;
};

}  // namespace zelk::tool

#endif
