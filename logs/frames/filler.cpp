#include "logs/frames/filler.hpp"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <vector>

namespace {

using Difference = std::ptrdiff_t;

constexpr std::size_t kFirstFrames = 1024;

/// Data is padded to a multiple of 8 bytes.
constexpr std::size_t padded_length(std::size_t length) { return (length + 7) / 8 * 8; }

/// Moves the last of `size` values each behind another one, as `ZelkFrameFiller::move_behind`.
template <typename Value>
void move_last(std::vector<Value>& values, std::size_t size, std::span<const std::size_t> indices) {
  const auto begin = values.begin();
  auto end = begin + static_cast<Difference>(size - indices.size());  // of those to be parted
  const std::vector<Value> moved(end, begin + static_cast<Difference>(size));
  auto to = begin + static_cast<Difference>(size);
  for (std::size_t i = indices.size(); i > 0; --i) {
    const auto behind = begin + static_cast<Difference>(indices[i - 1] + 1);
    to = std::move_backward(behind, end, to);
    *--to = moved[i - 1];
    end = behind;
  }
}

}  // namespace

void ZelkFrameFiller::reserve(std::size_t frames) {
  if (frames <= block_.ids_.size() - block_.size_) return;
  const std::size_t size = std::max({block_.size_ + frames, 2 * block_.size_, kFirstFrames});
  for (auto* const values : {&block_.flags_, &block_.channels_, &block_.lengths_})
    values->resize(size);
  for (auto* const values : {&block_.offsets_, &block_.time_begins_}) values->resize(size);
  block_.times_.resize(size);
  block_.time_lengths_.resize(size);
  block_.ids_.resize(size);  // last: its size is the room that there is
}

void ZelkFrameFiller::append_alike(std::span<const std::int64_t> times,
                                   std::span<const std::uint32_t> ids, std::uint16_t channel,
                                   const unsigned char* data, std::size_t stride,
                                   std::size_t length) {
  const std::size_t first = block_.size_;
  const std::size_t count = ids.size();
  const std::size_t room_bytes = padded_length(length);
  if (room_bytes > 0 && count > SIZE_MAX / room_bytes)
    throw std::length_error("a block of frames has more than 4 GiB");
  reserve(count);
  room(count * room_bytes);
  const auto at = [first](auto& values) { return values.begin() + static_cast<Difference>(first); };
  if (times.empty()) std::fill_n(at(block_.times_), count, kZelkNoTime);
  std::ranges::copy(times, at(block_.times_));
  std::ranges::copy(ids, at(block_.ids_));
  std::fill_n(at(block_.flags_), count, std::uint16_t{0});
  std::fill_n(at(block_.channels_), count, channel);
  std::fill_n(at(block_.lengths_), count, static_cast<std::uint16_t>(length));
  std::fill_n(at(block_.time_begins_), count, 0U);
  std::fill_n(at(block_.time_lengths_), count, std::uint8_t{0});
  for (std::size_t i = 0; i < count; ++i)
    block_.offsets_[first + i] = static_cast<std::uint32_t>(block_.data_size_ + i * room_bytes);
  copy_data(data, stride, length, count);
  block_.size_ += count;
  block_.data_size_ += count * room_bytes;
}

/// Into the room of the next frames.
void ZelkFrameFiller::copy_data(const unsigned char* data, std::size_t stride, std::size_t length,
                                std::size_t count) {
  if (length == 0 || count == 0) return;  // perhaps without data at all
  unsigned char* to = block_.data_.data() + block_.data_size_;
  const std::size_t room_bytes = padded_length(length);
  if (stride == length && length == room_bytes) {
    std::memcpy(to, data, count * length);
    return;
  }
  for (std::size_t i = 0; i < count; ++i, to += room_bytes) {
    std::memcpy(to, data + i * stride, length);
    std::memset(to + length, 0, room_bytes - length);
  }
}

void ZelkFrameFiller::append_like(std::size_t index, std::uint32_t id,
                                  std::span<const unsigned char> data) {
  unsigned char* const at = room(data.size());
  std::ranges::copy(data, at);
  std::memset(at + data.size(), 0, ZelkFrameBlock::kSlack);
  put(block_.times_[index], id, block_.flags_[index] & kZelkFrameSent, block_.channels_[index],
      data.size(), block_.TimeText(index));
}

void ZelkFrameFiller::move_behind(std::span<const std::size_t> indices) {
  if (indices.empty()) return;
  const auto move = [&](auto&... arrays) { (move_last(arrays, block_.size_, indices), ...); };
  move(block_.times_, block_.ids_, block_.flags_, block_.channels_, block_.lengths_,
       block_.offsets_, block_.time_begins_, block_.time_lengths_);
}

void ZelkFrameFiller::keep(std::span<const std::uint32_t> indices) {
  const auto pick = [&](auto& values) {
    for (std::size_t i = 0; i < indices.size(); ++i) values[i] = values[indices[i]];
  };
  const auto pick_all = [&](auto&... arrays) { (pick(arrays), ...); };
  pick_all(block_.times_, block_.ids_, block_.flags_, block_.channels_, block_.lengths_,
           block_.offsets_, block_.time_begins_, block_.time_lengths_);
  block_.size_ = indices.size();
}
