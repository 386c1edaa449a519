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

void BlockPrinter::print(const TextPlan& plan, const ZelkFrameBlock& frames) {
  text_.clear();
  counts_.Clear();
  raw_.resize(plan.most_signals());
  present_.resize((plan.most_signals() + 63) / 64);
  enter_channels(plan, frames);
  for (std::size_t i = 0; i < frames.Size(); ++i)
    if (counts_.AddKind(frames.Flags()[i])) print_frame(plan, frames, i);
}

void BlockPrinter::enter_channels(const TextPlan& plan, const ZelkFrameBlock& frames) {
  block_channels_.clear();
  for (const std::string& name : frames.ChannelNames()) {
    const auto [found, is_new] = channels_.try_emplace(name);
    if (is_new) found->second = {plan.format().interface_text(name), plan.finder().route_of(name)};
    block_channels_.push_back(&found->second);
  }
}

/// The message of a frame, which is counted; null for none.
const PreparedMessage* BlockPrinter::find(const TextPlan& plan, const Channel& channel,
                                          std::uint32_t id) {
  const std::uint32_t number = plan.finder().find(channel.route, id, cache_);
  if (number != kNoMessage) {
    ++counts_.decoded;
    return &plan.message(number);
  }
  counts_.AddUnknown(id);
  return nullptr;
}

void BlockPrinter::print_frame(const TextPlan& plan, const ZelkFrameBlock& frames,
                               std::size_t index) {
  const std::uint32_t id = frames.Ids()[index];
  const Channel& channel = *block_channels_[frames.Channels()[index]];
  const PreparedMessage* const message = find(plan, channel, id);
  if (!message) return;
  const std::span<const unsigned char> data = frames.Data(index);
  if (data.size() < message->length_bytes) ++counts_.too_short;
  if (!message->is_shown) return;
  message->decoder.DecodeRaw(data.data(), data.size(), raw_.data(), present_.data());
  std::string_view time = frames.TimeText(index);
  if (time.empty()) {
    time_.clear();
    ZelkAppendTime(frames.Times()[index], time_);
    time = time_;
  }
  plan.format().append(text_, {time, channel.text, id, message, raw_.data(), present_.data()},
                       plan.is_raw());
}

}  // namespace zelk::logs
