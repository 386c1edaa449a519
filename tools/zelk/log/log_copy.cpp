#include "log/log_copy.hpp"

#include <utility>

#include "zelk/logs/candump.hpp"

namespace zelk::tool {

namespace {

constexpr std::size_t kMostText = 1 << 18;  // that is held back

}  // namespace

LogCopy::LogCopy(LogMerge& logs, const FrameFilter& filter, const ZelkTimeOptions& times, Sink sink)
    : logs_(logs), filter_(filter), window_(times), sink_(std::move(sink)) {}

void LogCopy::run() {
  LogMerge::Run run{};
  while (logs_.next(run)) copy(run);
  hand_on();
}

void LogCopy::copy(const LogMerge::Run& run) {
  const ZelkFrameBlock& frames = run.log->frames();
  const std::string& name = run.log->reader().Name();
  if (window_.IsNeeded() && !window_.HasBegun()) window_.Begin(frames.Times()[run.begin], name);
  for (std::size_t i = run.begin; i < run.end; ++i)
    if (window_.Takes(frames.Times()[i], name)) copy_frame(frames, i);
  if (run.end == frames.Size() || text_.size() >= kMostText) hand_on();
}

void LogCopy::copy_frame(const ZelkFrameBlock& frames, std::size_t index) {
  const std::string& name = frames.ChannelNames()[frames.Channels()[index]];
  const std::string_view interface_name = name.empty() ? kDefaultInterface : name;
  const bool is_taken = filter_.takes_interface(interface_name) &&
                        filter_.takes_id(frames.Ids()[index], frames.Flags()[index]);
  if (!is_taken) return;
  ZelkAppendLogLine(frames, index, interface_name, text_, window_.Shown(frames.Times()[index]));
  ++written_;
}

void LogCopy::hand_on() {
  sink_(text_);
  text_.clear();
}

}  // namespace zelk::tool
