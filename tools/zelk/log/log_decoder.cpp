#include "log/log_decoder.hpp"

#include <span>

#include "base/j1939.hpp"
#include "zelk/logs/times.hpp"

namespace zelk::tool {

LogCounts& LogCounts::operator+=(const LogCounts& other) {
  ZelkLogCounts::operator+=(other);
  outside += other.outside;
  decoded += other.decoded;
  unknown += other.unknown;
  too_short += other.too_short;
  remote += other.remote;
  errors += other.errors;
  packets += other.packets;
  return *this;
}

void DecodedBlock::clear() {
  text.clear();
  counts = {};
}

LogDecoder::LogDecoder(const FrameCatalog& catalog, const TimeWindow& window,
                       const std::string& log_name, bool is_assembled)
    : catalog_(catalog),
      window_(window),
      log_name_(log_name),
      is_assembled_(is_assembled),
      raw_(catalog.most_signals()),
      present_((catalog.most_signals() + 63) / 64) {}

void LogDecoder::decode(const ZelkLogBlock& block, DecodedBlock& result) {
  result.clear();
  LogCounts& counts = result.counts;
  static_cast<ZelkLogCounts&>(counts) = block.counts;
  block_channels_.clear();
  for (const std::string& name : block.frames.ChannelNames())
    block_channels_.push_back(&channel_named(name));
  for (std::size_t i = 0; i < block.frames.Size(); ++i) {
    const unsigned flags = block.frames.Flags()[i];
    if (!window_.takes(block.frames.Times()[i], log_name_)) {
      ++counts.outside;
    } else if (flags & kZelkFrameRemote) {
      ++counts.remote;
    } else if (flags & kZelkFrameError) {
      ++counts.errors;
    } else {
      decode_frame(block.frames, i, result);
    }
  }
}

void LogDecoder::decode_frame(const ZelkFrameBlock& frames, std::size_t index,
                              DecodedBlock& result) {
  const std::uint32_t id = frames.Ids()[index];
  Channel& channel = *block_channels_[frames.Channels()[index]];
  KnownId& known = look_up(channel, id);
  ++known.count;
  if (!known.message) {
    ++(is_packet(id) ? result.counts.packets : result.counts.unknown);
    return;
  }
  const PreparedMessage& message = *known.message;
  const std::span<const unsigned char> data = frames.Data(index);
  ++result.counts.decoded;
  if (data.size() < message.decoder->Message().dlc) ++result.counts.too_short;
  if (!message.is_shown) return;
  message.decoder->DecodeRaw(data.data(), data.size(), raw_.data(), present_.data());
  std::string_view time = frames.TimeText(index);
  if (time.empty() || window_.is_relative()) {
    time_.clear();
    ZelkAppendTime(window_.shown(frames.Times()[index]), time_);
    time = time_;
  }
  const FrameOptions& options = catalog_.options();
  options.format->append(
      result.text, {time, channel.text, id, &message, raw_.data(), present_.data()}, options.raw);
}

LogDecoder::Channel& LogDecoder::channel_named(const std::string& name) {
  const auto [found, is_new] = channels_.try_emplace(name);
  if (is_new) {
    found->second.name = name;
    found->second.text = catalog_.options().format->interface_text(name);
  }
  return found->second;
}

LogDecoder::KnownId& LogDecoder::look_up(Channel& channel, std::uint32_t id) {
  const auto found = channel.ids.find(id);
  if (found != channel.ids.end()) return found->second;
  return channel.ids.try_emplace(id, KnownId{catalog_.find(channel.name, id), 0}).first->second;
}

void LogDecoder::add_unknown_to(UnknownIds& ids) const {
  for (const auto& [name, channel] : channels_) {
    for (const auto& [id, known] : channel.ids)
      if (!known.message && !is_packet(id)) ids[id] += known.count;
  }
}

/// Whether frames with this identifier have done their part when they were put together.
bool LogDecoder::is_packet(std::uint32_t id) const {
  return is_assembled_ && j1939::is_transport_packet(id);
}

}  // namespace zelk::tool
