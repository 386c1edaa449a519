#include "log/log_decoder.hpp"

#include <algorithm>

namespace zelk::tool {

namespace {

constexpr std::size_t kShownBytes = 60;  // of a malformed line

}  // namespace

LogCounts& LogCounts::operator+=(const LogCounts& other) {
  lines += other.lines;
  frames += other.frames;
  decoded += other.decoded;
  unknown += other.unknown;
  too_short += other.too_short;
  remote += other.remote;
  errors += other.errors;
  malformed += other.malformed;
  return *this;
}

void DecodedBlock::clear() {
  text.clear();
  counts = {};
  malformed.clear();
}

LogDecoder::LogDecoder(const FrameCatalog& catalog)
    : catalog_(catalog),
      raw_(catalog.most_signals()),
      present_((catalog.most_signals() + 63) / 64) {}

void LogDecoder::decode(std::string_view block, DecodedBlock& result) {
  result.clear();
  while (!block.empty()) {
    const std::size_t length = std::min(block.find('\n'), block.size());
    decode_line(block.substr(0, length), result);
    block.remove_prefix(std::min(length + 1, block.size()));
    ++result.counts.lines;
  }
}

void LogDecoder::decode_line(std::string_view line, DecodedBlock& result) {
  LogCounts& counts = result.counts;
  const LogLine kind = parse_log_line(line, frame_);
  if (kind == LogLine::kBlank) return;
  if (kind == LogLine::kMalformed) {
    ++counts.malformed;
    if (result.malformed.size() < kMostMalformed)
      result.malformed.push_back({counts.lines, std::string(line.substr(0, kShownBytes))});
    return;
  }
  ++counts.frames;
  if (kind == LogLine::kRemote) {
    ++counts.remote;
  } else if (kind == LogLine::kError) {
    ++counts.errors;
  } else {
    decode_frame(result);
  }
}

void LogDecoder::decode_frame(DecodedBlock& result) {
  Channel& channel = channel_of(frame_.interface_name);
  KnownId& known = look_up(channel, frame_.interface_name, frame_.id);
  ++known.count;
  if (!known.message) {
    ++result.counts.unknown;
    return;
  }
  const PreparedMessage& message = *known.message;
  ++result.counts.decoded;
  if (frame_.length < message.decoder->Message().dlc) ++result.counts.too_short;
  if (!message.is_shown) return;
  message.decoder->DecodeRaw(frame_.data.data(), frame_.length, raw_.data(), present_.data());
  const FrameOptions& options = catalog_.options();
  options.format->append(
      result.text, {frame_.time, channel.text, frame_.id, &message, raw_.data(), present_.data()},
      options.raw);
}

// Most frames come from the interface of the frame before.
LogDecoder::Channel& LogDecoder::channel_of(std::string_view name) {
  if (last_channel_ && last_channel_->first == name) return last_channel_->second;
  auto found = channels_.find(name);
  if (found == channels_.end()) {
    found = channels_.try_emplace(std::string(name)).first;
    found->second.text = catalog_.options().format->interface_text(name);
  }
  last_channel_ = &*found;
  return found->second;
}

LogDecoder::KnownId& LogDecoder::look_up(Channel& channel, std::string_view interface_name,
                                         std::uint32_t id) {
  const auto found = channel.ids.find(id);
  if (found != channel.ids.end()) return found->second;
  return channel.ids.try_emplace(id, KnownId{catalog_.find(interface_name, id), 0}).first->second;
}

void LogDecoder::add_unknown_to(UnknownIds& ids) const {
  for (const auto& [name, channel] : channels_) {
    for (const auto& [id, known] : channel.ids)
      if (!known.message) ids[id] += known.count;
  }
}

}  // namespace zelk::tool
