#include "logs/frames/filler.hpp"

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

using Difference = std::ptrdiff_t;

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
