/// \file
/// A file that received frames are written to.

#ifndef ZELK_TOOL_MONITOR_RECORDING_HPP
#define ZELK_TOOL_MONITOR_RECORDING_HPP

#include <cstdint>
#include <string>

#include "files/files.hpp"
#include "zelk/logs/frame.hpp"

namespace zelk::tool {

/// Appends frames to a file as lines of "candump -l". The file has whole lines alone, also when
/// the disk gets full.
class Recording {
 public:
  /// @throws RequestError when the file cannot be written, or is there and is no log of such lines
  explicit Recording(const std::string& path);

  /// @param arrival  time of frames that have none
  /// @throws RequestError that says why when the system does not take all of it
  void write(const ZelkFrameBlock& frames, std::int64_t arrival);

  const std::string& path() const { return path_; }
  std::uint64_t frame_count() const { return frame_count_; }

 private:
  void put(const std::string& lines);

  std::string path_;
  files::File file_;
  std::string lines_;
  std::uint64_t frame_count_ = 0;
};

}  // namespace zelk::tool

#endif
