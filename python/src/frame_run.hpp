/// \file
/// Frames that Python has, on their way into tables.

#ifndef ZELK_PYTHON_FRAME_RUN_HPP
#define ZELK_PYTHON_FRAME_RUN_HPP

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "decoding.hpp"
#include "zelk/logs/counts.hpp"
#include "zelk/logs/transport.hpp"

namespace zelk::python {

/// Takes frames one by one, and decodes them in blocks that stay in the cache.
class FrameRun {
 public:
  /// @param transport  puts messages of the J1939 transport protocol together
  FrameRun(std::shared_ptr<Decoding> decoding, bool transport);

  std::uint16_t channel(std::string_view name) { return block_.ChannelIndex(name); }
  /// @param channel  from `channel`, since the last `decode`
  void add(std::int64_t time, std::uint32_t id, std::uint16_t flags, std::uint16_t channel,
           std::span<const unsigned char> data) {
    block_.Append(time, id, flags, channel, data);
  }
  /// Whether to decode now.
  bool is_full() const { return block_.Size() >= kBlockFrames; }
  /// Decodes what was added, and empties the block. Needs nothing of Python.
  void decode();

  /// Decodes the rest, and gives all rows and what became of the frames.
  nb::tuple finish();

 private:
  static constexpr std::size_t kBlockFrames = 4096;

  void take_batches(bool is_end);

  std::shared_ptr<Decoding> decoding_;
  std::optional<ZelkTransport> transport_;
  ZelkFrameBlock block_;
  ZelkColumnRows rows_;
  ZelkFrameCounts counts_;
  std::uint64_t frame_count_ = 0;
  std::vector<std::vector<SharedArray>> batches_;  ///< of each table
};

/// Nanoseconds for a time in seconds, `kZelkNoTime` for NaN. Seconds since 1970 have a resolution
/// of 240 ns as doubles: those that are the nearest to a whole number of microseconds, as logs have
/// them, mean that number.
///
/// @return none when 64 bits do not hold it
std::optional<std::int64_t> nanoseconds_of(double seconds);

/// @throws Python's exception when a signal, such as Ctrl-C, has one
void check_signals();

/// A dict of all counts; see log_binding.cpp.
nb::dict counts_to_python(const ZelkFrameCounts& frames, std::uint64_t all,
                          const ZelkTransportCounts& transport);

}  // namespace zelk::python

#endif
