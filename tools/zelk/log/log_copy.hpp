/// \file
/// Frames of logs, written as lines of "candump -l".

#ifndef ZELK_TOOL_LOG_LOG_COPY_HPP
#define ZELK_TOOL_LOG_LOG_COPY_HPP

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "log/frame_filter.hpp"
#include "log/log_merge.hpp"
#include "zelk/logs/counts.hpp"
#include "zelk/logs/time_window.hpp"

namespace zelk::tool {

/// Name of the interface of frames whose log has none.
inline constexpr std::string_view kDefaultInterface = "can0";

/// Lines of those frames that a filter takes.
class CopiedLines {
 public:
  void clear();
  /// @param time  as it is shown
  void add(const FrameFilter& filter, const ZelkFrameBlock& frames, std::size_t index,
           std::int64_t time);

  const std::string& text() const { return text_; }
  /// Those with a line are `decoded`.
  const ZelkFrameCounts& Counts() const { return counts_; }

 private:
  std::string text_;
  ZelkFrameCounts counts_;
};

/// Copies one log, for `LogRun::run`; any number of threads may share it.
class LineCopier {
 public:
  /// @param filter  must outlive the object
  explicit LineCopier(const FrameFilter& filter) : filter_(filter) {}

  void Decode(const ZelkFrameBlock& frames, CopiedLines& lines) const;

 private:
  const FrameFilter& filter_;
};

/// Copies the frames of merged logs that a filter and a window of time take.
class MergeCopy {
 public:
  /// Takes whole lines.
  using Sink = std::function<void(std::string_view)>;

  /// @param logs    must outlive the object
  /// @param filter  likewise
  MergeCopy(LogMerge& logs, const FrameFilter& filter, const ZelkTimeOptions& times, Sink sink);

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
  void hand_on();

  LogMerge& logs_;
  const FrameFilter& filter_;
  ZelkTimeWindow window_;
  Sink sink_;
  CopiedLines lines_;
  std::uint64_t written_ = 0;
};

}  // namespace zelk::tool

#endif
