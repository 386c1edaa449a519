#include "monitor/session.hpp"

#include <algorithm>
#include <utility>

#include "input/lookup.hpp"
#include "term/system.hpp"

namespace zelk::tool {

namespace {

std::int64_t time_of_day() {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(
             std::chrono::system_clock::now().time_since_epoch())
      .count();
}

}  // namespace

Session::Session(std::unique_ptr<FrameSource> source, BusState& state, const std::string& record)
    : source_(std::move(source)), state_(state) {
  if (!record.empty()) this->record(record);
  source_->set_notice([this](std::string text) { note(std::move(text)); });
  thread_ = std::thread(&Session::run, this);
}

Session::~Session() {
  if (!thread_.joinable()) return;
  NotedStop::request();
  thread_.join();
}

void Session::run() noexcept {
  try {
    ZelkLogBlock block;
    while (!NotedStop::is_requested() && read_until_stop([&] { return source_->next(block); }))
      take(block);
  } catch (...) {
    failure_ = std::current_exception();
  }
  const std::lock_guard lock(end_mutex_);
  has_ended_ = true;
  end_.notify_all();
}

void Session::take(const ZelkLogBlock& block) {
  const std::int64_t arrival = time_of_day();
  write(block.frames, arrival);
  add_lines(block, summary_);
  const std::lock_guard lock(mutex_);
  state_.add(block.frames, arrival);
  if (block.frames.Size() == 0) return;
  const std::int64_t last = block.frames.Times().back();
  newest_ = last == kZelkNoTime ? arrival : last;
  arrived_ = Clock::now();
}

/// Frames on their way are not taken for missing: pipes and drivers hand them on in bundles.
void Session::advance() {
  constexpr std::chrono::duration<double, std::nano> kOnTheirWay = std::chrono::milliseconds(100);
  if (has_ended_ || newest_ == kZelkNoTime || source_->speed() == 0) return;
  const auto passed = Clock::now() - arrived_ - kOnTheirWay;
  if (passed.count() <= 0) return;
  const double now = static_cast<double>(newest_) + passed.count() * source_->speed();
  if (now < static_cast<double>(INT64_MAX)) state_.advance(static_cast<std::int64_t>(now));
}

bool Session::wait(std::chrono::nanoseconds time) {
  constexpr std::chrono::nanoseconds kStopInterval = std::chrono::milliseconds(50);
  const auto until = Clock::now() + time;
  std::unique_lock lock(end_mutex_);
  while (!has_ended_ && !NotedStop::is_requested() && Clock::now() < until)
    end_.wait_for(lock, std::min<std::chrono::nanoseconds>(kStopInterval, until - Clock::now()));
  return has_ended_ || NotedStop::is_requested();
}

void Session::note(std::string text) {
  const std::lock_guard lock(notices_mutex_);
  notices_.push_back(std::move(text));
}

std::vector<std::string> Session::take_notices() {
  const std::lock_guard lock(notices_mutex_);
  return std::exchange(notices_, {});
}

void Session::record(const std::string& path) {
  auto recording = std::make_unique<Recording>(path);
  const std::lock_guard lock(recording_mutex_);
  recording_ = std::move(recording);
}

void Session::stop_recording() {
  const std::lock_guard lock(recording_mutex_);
  recording_.reset();
}

std::optional<Session::RecordingState> Session::recording() const {
  const std::lock_guard lock(recording_mutex_);
  if (!recording_) return std::nullopt;
  return RecordingState{recording_->path(), recording_->frame_count()};
}

void Session::write(const ZelkFrameBlock& frames, std::int64_t arrival) {
  const std::lock_guard lock(recording_mutex_);
  if (!recording_) return;
  try {
    recording_->write(frames, arrival);
  } catch (const RequestError& error) {
    has_lost_frames_ = true;
    recording_.reset();
    note(error.what());
  }
}

void Session::finish() {
  if (!has_ended_) NotedStop::request();
  if (thread_.joinable()) thread_.join();
  if (failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
}

}  // namespace zelk::tool
