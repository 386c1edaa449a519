#include <algorithm>
#include <chrono>
#include <utility>

#include "input/lookup.hpp"
#include "monitor/screen/curses_terminal.hpp"
#include "monitor/screen/screen.hpp"
#include "monitor/session.hpp"
#include "term/system.hpp"

namespace zelk::tool {

namespace {

using Clock = std::chrono::steady_clock;

/// Frames in a second, measured over about one.
class FrameRate {
 public:
  double update(std::uint64_t count) {
    const Clock::time_point now = Clock::now();
    const double seconds = std::chrono::duration<double>(now - since_).count();
    if (seconds < 1) return rate_;
    rate_ = static_cast<double>(count - count_) / seconds;
    since_ = now;
    count_ = count;
    return rate_;
  }

 private:
  Clock::time_point since_ = Clock::now();
  std::uint64_t count_ = 0;
  double rate_ = 0;
};

class Screen {
 public:
  Screen(Session& session, CursesTerminal& terminal)
      : session_(session), terminal_(terminal), view_(terminal.characters()) {}

  void run() {
    constexpr std::chrono::milliseconds kInterval(80);
    Clock::time_point next = Clock::now();
    while (!NotedStop::is_requested() && show()) {
      next = std::max(next + kInterval, Clock::now());
      if (!follow_user(next)) return;
    }
  }

 private:
  /// @return false when there is nothing to show, and never will be
  bool show() {
    for (std::string& notice : session_.take_notices()) view_.say(std::move(notice));
    const bool has_ended = session_.has_ended();  // before its last frames are looked at
    std::vector<ScreenLine> lines;
    std::uint64_t frame_count = 0;
    session_.look([&](BusState& state) {
      frame_count = state.frame_count();
      update(state, has_ended);
      lines = view_.draw(terminal_.columns(), terminal_.lines());
    });
    if (has_ended && frame_count == 0) return false;
    terminal_.paint(lines);
    return true;
  }

  void update(BusState& state, bool has_ended) {
    BusFacts facts = facts_of(state, has_ended);
    facts.watched = state.take_watched();
    view_.update(state.rows(), std::move(facts));
  }

  BusFacts facts_of(const BusState& state, bool has_ended) {
    BusFacts facts;
    facts.source = session_.source_name();
    facts.now = state.now();
    facts.frame_count = state.frame_count();
    facts.frames_per_second = has_ended ? 0 : rate_.update(facts.frame_count);
    facts.error_frame_count = state.error_frame_count();
    facts.unlisted_frame_count = state.unlisted_frame_count();
    facts.has_ended = has_ended;
    if (const auto recording = session_.recording()) facts.recording = recording->path;
    return facts;
  }

  /// Follows the user until the next drawing is due: at `until`, or for a key soon after it.
  ///
  /// @return false when it is over
  bool follow_user(Clock::time_point until) {
    while (!NotedStop::is_requested()) {
      const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - Clock::now());
      if (left.count() <= 0) return true;
      const auto event = terminal_.wait(left);
      if (!event) continue;
      if (event->kind == TerminalEvent::Kind::kGone) return false;
      if (event->kind == TerminalEvent::Kind::kClick) view_.click(event->column, event->line);
      if (event->kind == TerminalEvent::Kind::kKey && !answer(press(event->press))) return false;
      constexpr std::chrono::milliseconds kSoon(20);
      until = std::min(until, Clock::now() + kSoon);
    }
    return false;
  }

  /// Keys may keep what rows hold: no frames come in meanwhile, and figures fit the data.
  Request press(const KeyPress& press) {
    const bool has_ended = session_.has_ended();
    Request request;
    session_.look([&](BusState& state) {
      update(state, has_ended);
      request = view_.press(press);
      state.watch(view_.watched());
    });
    return request;
  }

  /// @return false when the user quits
  bool answer(const Request& request) {
    switch (request.kind) {
      case Request::Kind::kQuit:
        return false;
      case Request::Kind::kRecord:
        record(request.path);
        break;
      case Request::Kind::kStopRecording:
        stop_recording();
        break;
      case Request::Kind::kNone:
        break;
    }
    return true;
  }

  void record(const std::string& path) {
    try {
      session_.record(path);
    } catch (const RequestError& error) {
      view_.say(error.what());
    }
  }

  void stop_recording() {
    const auto recording = session_.recording();
    session_.stop_recording();
    if (recording) {
      view_.say(recording->path + ": " + std::to_string(recording->frame_count) +
                " frames recorded");
    }
  }

  Session& session_;
  CursesTerminal& terminal_;
  ScreenView view_;
  FrameRate rate_;
};

}  // namespace

std::optional<std::string> show_on_screen(Session& session) {
  std::string why_not;
  const std::unique_ptr<CursesTerminal> terminal = CursesTerminal::open(why_not);
  if (!terminal) return why_not;
  Screen(session, *terminal).run();
  return std::nullopt;
}

}  // namespace zelk::tool
