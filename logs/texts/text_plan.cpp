#include "logs/texts/text_plan.hpp"

#include <algorithm>
#include <span>

#include "base/list.hpp"
#include "zelk/logs/times.hpp"

namespace zelk::logs {

TextPlan::TextPlan(const Choosing& chosen, const ZelkTextOptions& options)
    : format_(frames_in(options.format)),
      is_raw_(options.raw),
      databases_(chosen.databases),
      finder_(databases_, options.match_groups) {
  const FrameOptions frame_options{format_, options.raw, options.numbers};
  for (const NamedDatabase& database : databases_) {
    for (const msgblk& message : each<const msgblk>(database.content.records.messages)) {
      messages_.emplace_back(message, database, chosen.choice, frame_options);
      most_signals_ = std::max(most_signals_, messages_.back().decoder.SignalCount());
    }
  }
}

void FrameWalk::begin(const TextPlan& plan, const ZelkFrameBlock& frames) {
  counts_.Clear();
  raw_.resize(plan.most_signals());
  present_.resize((plan.most_signals() + 63) / 64);
  block_channels_.clear();
  for (const std::string& name : frames.ChannelNames()) {
    const auto [found, is_new] = channels_.try_emplace(name);
    if (is_new) found->second = {plan.format().interface_text(name), plan.finder().route_of(name)};
    block_channels_.push_back(&found->second);
  }
}

/// The message of a frame, which is counted; null for none.
const PreparedMessage* FrameWalk::find(const TextPlan& plan, const ZelkFrameBlock& frames,
                                       std::size_t index) {
  if (!counts_.AddKind(frames.Flags()[index])) return nullptr;
  const std::uint32_t id = frames.Ids()[index];
  const Channel& channel = *block_channels_[frames.Channels()[index]];
  const std::uint32_t number = plan.finder().find(channel.route, id, cache_);
  if (number == kNoMessage) {
    counts_.AddUnknown(id);
    return nullptr;
  }
  const PreparedMessage& message = plan.messages()[number];
  ++counts_.decoded;
  if (frames.Lengths()[index] < message.length_bytes) ++counts_.too_short;
  return &message;
}

DecodedFrame FrameWalk::decoded(const ZelkFrameBlock& frames, std::size_t index,
                                const PreparedMessage& message) {
  const std::span<const unsigned char> data = frames.Data(index);
  message.decoder.DecodeRaw(data.data(), data.size(), raw_.data(), present_.data());
  std::string_view time = frames.TimeText(index);
  if (time.empty()) {
    time_.clear();
    ZelkAppendTime(frames.Times()[index], time_);
    time = time_;
  }
  return {time,
          block_channels_[frames.Channels()[index]]->text,
          frames.Ids()[index],
          &message,
          raw_.data(),
          present_.data()};
}

}  // namespace zelk::logs
