/// \file
/// Where the frames of a monitor come from.

#ifndef ZELK_TOOL_MONITOR_FRAME_SOURCE_HPP
#define ZELK_TOOL_MONITOR_FRAME_SOURCE_HPP

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "zelk/logs/reader.hpp"

namespace zelk::tool {

/// A source of frames. One thread reads it.
class FrameSource {
 public:
  explicit FrameSource(std::string name) : name_(std::move(name)) {}
  virtual ~FrameSource() = default;
  FrameSource(const FrameSource&) = delete;
  FrameSource& operator=(const FrameSource&) = delete;

  /// What to call it: "standard input", the path of a log, "can0, can1".
  const std::string& name() const { return name_; }
  /// How fast its times run; 0: only with the frames.
  virtual double speed() const { return 1; }

  /// Waits for frames.
  ///
  /// @param block  receives them, and malformed lines among them
  /// @return false at the end, which a `NotedStop` is too
  /// @throws ZelkLogError, RequestError when it cannot be read
  virtual bool next(ZelkLogBlock& block) = 0;

  /// Takes what the user should know meanwhile: an interface is down, frames were lost. Called by
  /// `next`.
  using Notice = std::function<void(std::string)>;
  void set_notice(Notice notice) { notice_ = std::move(notice); }

 protected:
  void give_notice(std::string text) const {
    if (notice_) notice_(std::move(text));
  }

 private:
  std::string name_;
  Notice notice_;
};

/// Adds what is to be reported about the lines of a block: their counts, and the first malformed
/// ones.
void add_lines(const ZelkLogBlock& block, ZelkLogBlock& summary);

/// Frames of a log, or of standard input when `path` is none, as fast as they can be read.
///
/// @throws ZelkLogError when a log cannot be opened; standard input is opened by the first `next`,
/// which waits for its first bytes
std::unique_ptr<FrameSource> read_log(const std::optional<std::string>& path);

/// Frames of a log at the times that it has for them.
///
/// @param speed  1: as fast as they were recorded
/// @throws ZelkLogError
std::unique_ptr<FrameSource> replay_log(const std::string& path, double speed);

/// Frames of CAN interfaces of this machine, as they come.
///
/// @param interfaces  their names, at least one
/// @throws RequestError when one is missing or cannot be used, and on systems without SocketCAN
std::unique_ptr<FrameSource> open_interfaces(const std::vector<std::string>& interfaces);

}  // namespace zelk::tool

#endif
