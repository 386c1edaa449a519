#include "log/log_copy.hpp"

#include <span>
#include <utility>

#include "zelk/logs/candump.hpp"

namespace zelk::tool {

namespace {

constexpr std::size_t kMostText = 1 << 18;  // that is held back

}  // namespace

void CopiedLines::clear() {
  text_.clear();
  counts_.Clear();
}

void CopiedLines::add(const FrameFilter& filter, const ZelkFrameBlock& frames, std::size_t index,
                      std::int64_t time) {
  const std::string& name = frames.ChannelNames()[frames.Channels()[index]];
  const std::string_view interface_name = name.empty() ? kDefaultInterface : name;
  const bool is_taken = filter.takes_interface(interface_name) &&
                        filter.takes_id(frames.Ids()[index], frames.Flags()[index]);
  if (!is_taken) return;
  ZelkAppendLogLine(frames, index, interface_name, text_, time);
  ++counts_.decoded;
}

void LineCopier::Decode(const ZelkFrameBlock& frames, CopiedLines& lines) const {
  lines.clear();
  for (std::size_t i = 0; i < frames.Size(); ++i) lines.add(filter_, frames, i, frames.Times()[i]);
}

MergeCopy::MergeCopy(LogMerge& logs, const FrameFilter& filter, const ZelkTimeOptions& times,
                     Sink sink)
    : logs_(logs), filter_(filter), window_(times), sink_(std::move(sink)) {}

void MergeCopy::run() {
  LogMerge::Run run{};
  while (logs_.next(run)) copy(run);
  hand_on();
}

void MergeCopy::copy(const LogMerge::Run& run) {
  const ZelkFrameBlock& frames = run.log->frames();
  const std::span<const std::int64_t> times = frames.Times();
  const std::string& name = run.log->reader().Name();
  if (window_.IsNeeded() && !window_.HasBegun()) window_.Begin(times[run.begin], name);
  for (std::size_t i = run.begin; i < run.end; ++i)
    if (window_.Takes(times[i], name)) lines_.add(filter_, frames, i, window_.Shown(times[i]));
  if (run.end == frames.Size() || lines_.text().size() >= kMostText) hand_on();
}

void MergeCopy::hand_on() {
  sink_(lines_.text());
  written_ += lines_.Counts().decoded;
  lines_.clear();
}

}  // namespace zelk::tool
