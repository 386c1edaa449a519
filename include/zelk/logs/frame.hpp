/// \file
/// Recorded frames: one by one, and in blocks.

#ifndef ZELK_LOGS_FRAME_HPP
#define ZELK_LOGS_FRAME_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "zelk/export.h"

/// Time of a frame whose log has none.
inline constexpr std::int64_t kZelkNoTime = std::numeric_limits<std::int64_t>::min();

/// Properties of a frame, as bits of `ZelkFrame::flags`.
enum ZelkFrameFlags : std::uint16_t {
  kZelkFrameFd = 1,      ///< CAN FD
  kZelkFrameBrs = 2,     ///< its data was sent at the second bit rate
  kZelkFrameEsi = 4,     ///< its sender is error passive
  kZelkFrameRemote = 8,  ///< a request for a frame
  kZelkFrameError = 16,  ///< no frame of the bus, but the controller's report of a fault
  kZelkFrameSent = 32,   ///< sent by the recording station; else received, or the log does not say
  kZelkFrameMarkFdf = 64,  ///< the flag by which candump marks CAN FD frames in its logs (FDF)
};

/// A frame.
struct ZelkFrame {
  /// Longest data of a frame of the bus.
  static constexpr std::size_t kMostData = 64;

  std::int64_t time = kZelkNoTime;  ///< nanoseconds since 1970-01-01 00:00 UTC, or since what the
                                    ///< log counts from
  std::uint32_t id = 0;             ///< bit 31: an extended identifier
  std::uint16_t flags = 0;          ///< of `ZelkFrameFlags`
  std::uint16_t channel = 0;        ///< index among the channels of its block
  std::uint16_t length = 0;  ///< of the data, in bytes; of requests, whose data is zeros, the
                             ///< length that is requested
  std::array<unsigned char, kMostData> data{};  ///< the first `length` bytes count
};

/// Frames that were read together, as one array for each of their properties: element i of all
/// arrays is frame i.
///
/// Data may be longer than 64 bytes where a transport protocol has put it together. Views of a
/// block are valid until it changes. One thread fills a block; then any number of them may read it.
/// A block keeps its memory when it is cleared.
class ZELK_LOGS_API ZelkFrameBlock {
 public:
  static constexpr std::size_t kMostChannels = 1 << 16;
  /// Longest data, in bytes.
  static constexpr std::size_t kMostData = 0xFFFF;
  /// Bytes behind the data of each frame that may be read. Data is padded with zeros to a multiple
  /// of 8 bytes; whatever else may be read is undefined.
  static constexpr std::size_t kSlack = 8;

  std::size_t Size() const { return size_; }

  // The properties; see `ZelkFrame`.

  std::span<const std::int64_t> Times() const { return first(times_); }
  std::span<const std::uint32_t> Ids() const { return first(ids_); }
  std::span<const std::uint16_t> Flags() const { return first(flags_); }
  std::span<const std::uint16_t> Channels() const { return first(channels_); }
  std::span<const std::uint16_t> Lengths() const { return first(lengths_); }
  /// Where the data of each frame begins in `DataBytes`: multiples of 8.
  std::span<const std::uint32_t> DataOffsets() const { return first(offsets_); }
  std::span<const unsigned char> DataBytes() const { return std::span(data_).first(data_size_); }

  /// The data of one frame.
  ///
  /// @pre `index` < `Size()`
  std::span<const unsigned char> Data(std::size_t index) const {
    return {data_.data() + offsets_[index], lengths_[index]};
  }

  /// The channels that frames came from, such as "can0", in the order of their first frames; bytes
  /// of the log, empty for none.
  const std::vector<std::string>& ChannelNames() const { return channel_names_; }

  /// The time as the log spells it, without brackets; empty where it has none, and for logs that
  /// spell it neither in seconds nor as a date: traces and captures.
  ///
  /// @pre `index` < `Size()`
  std::string_view TimeText(std::size_t index) const {
    return std::string_view(text_).substr(time_begins_[index], time_lengths_[index]);
  }

  /// A copy of one frame.
  ///
  /// @pre `index` < `Size()`
  /// @throws std::length_error for data of more than 64 bytes
  ZelkFrame Frame(std::size_t index) const;

  // --- Filling ---

  void Clear();

  /// Index of a channel, which is entered when it is new.
  ///
  /// @throws std::length_error for more than `kMostChannels`, std::bad_alloc
  std::uint16_t ChannelIndex(std::string_view name);

  /// Appends a frame.
  ///
  /// @param channel  from `ChannelIndex`
  /// @throws std::length_error for data of more than `kMostData` bytes, or 4 GiB of them in the
  /// block; std::bad_alloc
  void Append(std::int64_t time, std::uint32_t id, std::uint16_t flags, std::uint16_t channel,
              std::span<const unsigned char> data);

  /// @pre the frame's length is at most 64
  void Append(const ZelkFrame& frame);

 private:
  friend class ZelkFrameFiller;

  template <typename Value>
  std::span<const Value> first(const std::vector<Value>& values) const {
    return std::span(values).first(size_);
  }
  void grow(std::size_t data_bytes);

  // All have room for more than the frames that there are.
  std::size_t size_ = 0;
  std::vector<std::int64_t> times_;
  std::vector<std::uint32_t> ids_;
  std::vector<std::uint16_t> flags_;
  std::vector<std::uint16_t> channels_;
  std::vector<std::uint16_t> lengths_;
  std::vector<std::uint32_t> offsets_;
  std::vector<std::uint32_t> time_begins_;
  std::vector<std::uint8_t> time_lengths_;
  std::size_t data_size_ = 0;
  std::vector<unsigned char> data_;
  std::vector<std::string> channel_names_;
  std::map<std::string, std::uint16_t, std::less<>> channel_indices_;
  std::string text_;  ///< that the times stand in; of no meaning without frames
};

#endif
