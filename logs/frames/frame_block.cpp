#include <algorithm>
#include <cstring>
#include <stdexcept>

#include "logs/frames/filler.hpp"
#include "zelk/logs/frame.hpp"

namespace {

constexpr std::size_t kMoreData = 0x4000;
constexpr std::size_t kMostDataOfBlock = 0xFFFFFFF0;  // offsets have 32 bits

}  // namespace

ZelkFrame ZelkFrameBlock::Frame(std::size_t index) const {
  if (lengths_[index] > ZelkFrame::kMostData)
    throw std::length_error("a frame with more than 64 bytes is none of the bus");
  ZelkFrame frame{times_[index], ids_[index], flags_[index], channels_[index], lengths_[index], {}};
  std::ranges::copy(Data(index), frame.data.begin());
  return frame;
}

void ZelkFrameBlock::Clear() {
  size_ = 0;
  data_size_ = 0;
  channel_names_.clear();
  channel_indices_.clear();
}

std::uint16_t ZelkFrameBlock::ChannelIndex(std::string_view name) {
  const auto found = channel_indices_.find(name);
  if (found != channel_indices_.end()) return found->second;
  const std::size_t index = channel_names_.size();
  if (index == kMostChannels)
    throw std::length_error("a block of frames has frames of more than 65536 channels");
  channel_names_.emplace_back(name);
  channel_indices_.emplace(name, static_cast<std::uint16_t>(index));
  return static_cast<std::uint16_t>(index);
}

void ZelkFrameBlock::Append(std::int64_t time, std::uint32_t id, std::uint16_t flags,
                            std::uint16_t channel, std::span<const unsigned char> data) {
  if (data.size() > kMostData) throw std::length_error("a frame has more than 65535 bytes");
  ZelkFrameFiller filler(*this);
  unsigned char* const room = filler.room(data.size());
  std::ranges::copy(data, room);
  std::memset(room + data.size(), 0, kSlack);
  filler.put(time, id, flags, channel, data.size());
}

void ZelkFrameBlock::Append(const ZelkFrame& frame) {
  Append(frame.time, frame.id, frame.flags, frame.channel,
         std::span(frame.data).first(frame.length));
}

/// For one more frame, and data of so many bytes.
void ZelkFrameBlock::grow(std::size_t data_bytes) {
  ZelkFrameFiller(*this).reserve(1);
  const std::size_t used = data_size_ + 2 * kSlack;
  if (data_bytes > kMostDataOfBlock - used)
    throw std::length_error("a block of frames has more than 4 GiB");
  const std::size_t needed = used + data_bytes;
  if (needed <= data_.size()) return;
  // No more than offsets reach: what there is room for is not checked again.
  data_.resize(std::min(std::max(2 * data_.size(), needed + kMoreData), kMostDataOfBlock));
}
