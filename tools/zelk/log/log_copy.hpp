/// \file
/// Frames of logs, written as lines of "candump -l".

#ifndef ZELK_TOOL_LOG_LOG_COPY_HPP
#define ZELK_TOOL_LOG_LOG_COPY_HPP

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "log/frame_filter.hpp"
#include "log/log_merge.hpp"
#include "zelk/logs/time_window.hpp"

namespace zelk::tool {

/// Name of the interface of frames whose log has none.
inline constexpr std::string_view kDefaultInterface = "can0";

/// Copies the frames that a filter and a window of time take.
class LogCopy {
 public:
  /// Takes whole lines.
  using Sink = std::function<void(std::string_view)>;

  /// @param logs    must outlive the object
  /// @param filter  likewise
  LogCopy(LogMerge& logs, const FrameFilter& filter, const ZelkTimeOptions& times, Sink sink);

  /// Copies the logs to their end. What comes from a pipe is handed on before the next of it is
  /// waited for.
  ///
  /// @throws ZelkLogError when a log cannot be read or a frame has no time and needs one,
  /// RequestError when a log is not as the user wants it
  void run();

  /// Number of frames copied.
  std::uint64_t written() const { return written_; }

 private:
  void copy(const LogMerge::Run& run);
  void copy_frame(const ZelkFrameBlock& frames, std::size_t index);
  void hand_on();

  LogMerge& logs_;
  const FrameFilter& filter_;
  ZelkTimeWindow window_;
  Sink sink_;
  std::string text_;
  std::uint64_t written_ = 0;
};

}  // namespace zelk::tool

#endif
