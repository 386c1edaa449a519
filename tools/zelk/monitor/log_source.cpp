#include <chrono>
#include <cmath>
#include <thread>

#include "monitor/frame_source.hpp"
#include "term/system.hpp"

namespace zelk::tool {

namespace {

using Clock = std::chrono::steady_clock;

class LogSource : public FrameSource {
 public:
  explicit LogSource(const std::optional<std::string>& path)
      : FrameSource(path.value_or("standard input")), path_(path) {
    if (path) open();
  }

  double speed() const override { return path_ ? 0 : 1; }
  bool next(ZelkLogBlock& block) override {
    if (!reader_) open();
    return reader_->Next(block);
  }

 private:
  void open() {
    reader_ =
        std::make_unique<ZelkLogReader>(path_, ZelkLogOptions{.stop = &NotedStop::is_requested()});
  }

  std::optional<std::string> path_;
  std::unique_ptr<ZelkLogReader> reader_;
};

/// Gives out the frames that are due, and waits for the next one. Where times run backwards, the
/// next frame is due at once, and those behind it from there on.
class Replay : public FrameSource {
 public:
  Replay(const std::string& path, double speed)
      : FrameSource(path), log_(read_log(path)), speed_(speed) {}

  double speed() const override { return speed_; }
  bool next(ZelkLogBlock& block) override {
    block.frames.Clear();
    block.malformed.clear();
    block.counts = {};
    if (taken_ == held_.frames.Size()) {
      taken_ = 0;
      if (!log_->next(held_)) return false;
      block.counts = held_.counts;
      block.malformed = held_.malformed;
    }
    if (taken_ < held_.frames.Size()) wait_for(held_.frames.Times()[taken_]);
    take_due(block.frames);
    return !NotedStop::is_requested();
  }

 private:
  bool is_due(std::int64_t time, Clock::time_point now) const {
    if (time == kZelkNoTime) return true;
    const std::chrono::duration<double, std::nano> passed = now - start_;
    return static_cast<double>(time) <= first_ + passed.count() * speed_;
  }

  void wait_for(std::int64_t time) {
    constexpr auto kStopInterval = std::chrono::milliseconds(50);
    if (time == kZelkNoTime) return;
    if (last_ == kZelkNoTime || time < last_) begin_at(time);
    while (!is_due(time, Clock::now()) && !NotedStop::is_requested()) {
      const double left = (static_cast<double>(time) - first_) / speed_;
      const std::chrono::duration<double, std::nano> passed = Clock::now() - start_;
      const std::chrono::duration<double, std::nano> wanted(std::max(left - passed.count(), 0.0));
      std::this_thread::sleep_for(std::min<std::chrono::duration<double, std::nano>>(
          wanted + std::chrono::microseconds(50), kStopInterval));
    }
  }

  void begin_at(std::int64_t time) {
    last_ = time;
    first_ = static_cast<double>(time);
    start_ = Clock::now();
  }

  void take_due(ZelkFrameBlock& frames) {
    const Clock::time_point now = Clock::now();
    for (; taken_ < held_.frames.Size(); ++taken_) {
      const std::int64_t time = held_.frames.Times()[taken_];
      const bool is_backwards = last_ != kZelkNoTime && time != kZelkNoTime && time < last_;
      if (is_backwards || !is_due(time, now)) return;
      if (time != kZelkNoTime) last_ = time;
      const auto& channel = held_.frames.ChannelNames()[held_.frames.Channels()[taken_]];
      frames.Append(time, held_.frames.Ids()[taken_], held_.frames.Flags()[taken_],
                    frames.ChannelIndex(channel), held_.frames.Data(taken_));
    }
  }

  std::unique_ptr<FrameSource> log_;
  double speed_;
  ZelkLogBlock held_;
  std::size_t taken_ = 0;  // of the frames of `held_`
  double first_ = 0;       // time that was due at `start_`
  Clock::time_point start_;
  std::int64_t last_ = kZelkNoTime;
};

}  // namespace

void add_lines(const ZelkLogBlock& block, ZelkLogBlock& summary) {
  summary.counts += block.counts;
  for (const ZelkMalformedLine& line : block.malformed)
    if (summary.malformed.size() < ZelkLogBlock::kMostMalformed) summary.malformed.push_back(line);
}

std::unique_ptr<FrameSource> read_log(const std::optional<std::string>& path) {
  return std::make_unique<LogSource>(path);
}

std::unique_ptr<FrameSource> replay_log(const std::string& path, double speed) {
  return std::make_unique<Replay>(path, speed);
}

}  // namespace zelk::tool
