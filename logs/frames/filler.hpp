/// \file
/// Fills blocks of frames quickly.

#ifndef ZELK_LOGS_FRAMES_FILLER_HPP
#define ZELK_LOGS_FRAMES_FILLER_HPP

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "zelk/logs/frame.hpp"

/// A frame is made in three steps: `Room`, then its data, then `Put`. A frame that turns out to be
/// none is not put.
class ZelkFrameFiller {
 public:
  /// @param block  must outlive the object
  explicit ZelkFrameFiller(ZelkFrameBlock& block) : block_(block) {}

  /// Gives the block the text that the times of its frames stand in, for the one that it had.
  void swap_text(std::string& text) { block_.text_.swap(text); }
  std::string_view text() const { return block_.text_; }

  /// Room for the data of the next frame, with at least `ZelkFrameBlock::kSlack` bytes behind it.
  ///
  /// @param most  bytes; more of them may be written up to the slack
  unsigned char* room(std::size_t most = ZelkFrame::kMostData) {
    const bool is_enough =
        block_.size_ < block_.ids_.size() &&
        most + 2 * ZelkFrameBlock::kSlack <= block_.data_.size() - block_.data_size_;
    if (!is_enough) block_.grow(most);
    return block_.data_.data() + block_.data_size_;
  }

  /// Appends a frame whose data stands in `room`, padded with zeros to a multiple of 8 bytes.
  ///
  /// @param time_text  within `text`; empty for none
  void put(std::int64_t time, std::uint32_t id, unsigned flags, std::uint16_t channel,
           std::size_t length, std::string_view time_text = {}) {
    const std::size_t at = block_.size_++;
    block_.times_[at] = time;
    block_.ids_[at] = id;
    block_.flags_[at] = static_cast<std::uint16_t>(flags);
    block_.channels_[at] = channel;
    block_.lengths_[at] = static_cast<std::uint16_t>(length);
    block_.offsets_[at] = static_cast<std::uint32_t>(block_.data_size_);
    block_.time_begins_[at] =
        time_text.empty() ? 0 : static_cast<std::uint32_t>(time_text.data() - block_.text_.data());
    block_.time_lengths_[at] = static_cast<std::uint8_t>(time_text.size());
    block_.data_size_ += (length + 7) / 8 * 8;
  }

  /// Room for more frames, but not for their data.
  void reserve(std::size_t frames);
  /// Appends frames of one channel and one length without flags; on an exception none.
  ///
  /// @param times   one for each frame, or empty: none
  /// @param data    of the first frame; that of the next one follows in `stride` bytes
  /// @param length  of the data of each frame, in bytes; at most `ZelkFrameBlock::kMostData`
  /// @throws std::length_error for more than 4 GiB of data in the block; std::bad_alloc
  void append_alike(std::span<const std::int64_t> times, std::span<const std::uint32_t> ids,
                    std::uint16_t channel, const unsigned char* data, std::size_t stride,
                    std::size_t length);
  /// Appends a frame with time, channel and direction of another one.
  void append_like(std::size_t index, std::uint32_t id, std::span<const unsigned char> data);
  /// Moves the last frames of the block each behind another one.
  ///
  /// @param indices  of these other ones, in rising order; they stand in front of the frames that
  /// are moved
  void move_behind(std::span<const std::size_t> indices);

  /// Leaves only some of the frames.
  ///
  /// @param indices  of these, in rising order
  void keep(std::span<const std::uint32_t> indices);
  /// Sets a time that the log does not spell.
  void set_time(std::size_t index, std::int64_t time) {
    block_.times_[index] = time;
    block_.time_lengths_[index] = 0;
  }

  /// Adds to the times of all frames that have one.
  void shift_times(std::int64_t by) {
    for (std::size_t i = 0; i < block_.size_; ++i)
      if (block_.times_[i] != kZelkNoTime) block_.times_[i] += by;
  }

 private:
  void copy_data(const unsigned char* data, std::size_t stride, std::size_t length,
                 std::size_t count);

  ZelkFrameBlock& block_;
};

#endif
