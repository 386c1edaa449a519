#include <algorithm>
#include <array>
#include <limits>
#include <map>
#include <optional>
#include <span>
#include <utility>

#include "base/list.hpp"
#include "base/quoting.hpp"
#include "logs/lookup/unique_names.hpp"
#include "logs/texts/wide_columns.hpp"
#include "zelk/logs/reader.hpp"
#include "zelk/logs/times.hpp"

using zelk::LineBuffer;
using zelk::logs::DecodedFrame;
using zelk::logs::NamedDatabase;
using zelk::logs::PreparedMessage;
using zelk::logs::PreparedSignal;
using zelk::logs::TextPlan;

namespace {

/// A text in the buffer of the block.
struct Piece {
  std::size_t begin;
  std::size_t size;
};

/// A new value.
struct Cell {
  std::size_t column;
  Piece text;
};

/// A frame with new values.
struct Event {
  std::int64_t time;  ///< at which it counts: the latest one up to it
  Piece time_text;
  std::size_t message;
  std::uint16_t channel;
  std::size_t cells_end;  ///< behind those of the event in front
};

/// The new values of a block.
struct BlockValues {
  zelk::logs::FrameWalk walk;
  LineBuffer text;
  std::vector<Event> events;
  std::vector<Cell> cells;
  std::vector<std::string> channels;
  std::optional<std::pair<std::int64_t, std::int64_t>> times;  ///< the first, and the latest
};

constexpr std::int64_t kMostTime = std::numeric_limits<std::int64_t>::max();

/// The largest multiple of `step` that is not above `time`, as far as there is one.
std::int64_t rounded_down(std::int64_t time, std::int64_t step) {
  const std::int64_t rest = time % step;
  if (rest >= 0) return time - rest;
  const std::int64_t below = step + rest;  // from the multiple below to the time
  return time < std::numeric_limits<std::int64_t>::min() + below ? time : time - below;
}

}  // namespace

struct ZelkTimelineValues::Content : BlockValues {};

ZelkTimelineValues::ZelkTimelineValues() : content_(std::make_unique<Content>()) {}
ZelkTimelineValues::~ZelkTimelineValues() = default;

const ZelkFrameCounts& ZelkTimelineValues::Counts() const { return content_->walk.counts(); }

struct ZelkTimeline::State {
  State(const zelk::logs::Choosing& chosen, const ZelkWideOptions& options)
      : plan(chosen, zelk::logs::text_options(options)) {}

  /// A message with chosen signals.
  struct Source {
    std::size_t first_column = 0;
    std::string name{};
    std::optional<std::string> channel{};  ///< of its first frame
    bool is_mixed = false;
  };

  void name_columns(bool units);
  void write_row(std::string_view of);
  void write_grid(std::int64_t until);
  void put_event(const BlockValues& values, const Event& event);
  void flush();

  TextPlan plan;
  std::int64_t step = 0;
  std::function<void(std::string_view)> write;
  std::string heading = "time";
  std::vector<Source> sources;  ///< by the message's number
  std::vector<std::string> row;
  LineBuffer lines;
  std::string time;
  std::optional<std::int64_t> next;  ///< time of the grid; none before the first frame
  std::int64_t latest = 0;
};

/// A signal's name, with that of its message where two have it, and of the database where two
/// messages have it too.
void ZelkTimeline::State::name_columns(bool units) {
  std::map<std::string, int> uses;
  const auto for_each_name = [this](const auto& act) {
    zelk::logs::for_each_shown(plan, [&](const NamedDatabase& database, const PreparedMessage& m) {
      const std::string owner = database.text_of(m.decoder.Message().name);
      for (const PreparedSignal& signal : m.signals) {
        const std::string name = database.text_of(m.decoder.Signal(signal.index).name);
        std::string full = owner;
        full.append(".").append(name);
        std::string whole = database.name;
        whole.append(".").append(full);
        act(database, m, signal, std::array{name, full, whole});
      }
    });
  };
  for_each_name([&](const NamedDatabase&, const PreparedMessage&, const PreparedSignal&,
                    const std::array<std::string, 3>& names) {
    for (const std::string& name : names) ++uses[name];
  });
  zelk::logs::UniqueNames unique;
  for_each_name([&](const NamedDatabase& database, const PreparedMessage& message,
                    const PreparedSignal& signal, const std::array<std::string, 3>& names) {
    const std::string& name = uses[names[0]] == 1 ? names[0] : names[uses[names[1]] == 1 ? 1 : 2];
    const sigblk& record = message.decoder.Signal(signal.index);
    zelk::logs::append_headings(heading, unique.unique(name), signal,
                                units ? database.text_of(record.unit) : "");
  });
  heading += zelk::logs::kLineEnd;
}

ZelkTimeline::ZelkTimeline(const ZelkWideChoice& choice, const ZelkWideOptions& options,
                           std::int64_t step, std::function<void(std::string_view)> write)
    : state_(std::make_unique<State>(choice.state_->chosen, options)) {
  State& state = *state_;
  state.step = std::max<std::int64_t>(step, 0);
  state.write = std::move(write);
  state.name_columns(options.units);
  state.sources.resize(state.plan.messages().size());
  std::size_t columns = 0;
  const PreparedMessage* const first = state.plan.messages().data();
  zelk::logs::for_each_shown(
      state.plan, [&](const NamedDatabase& database, const PreparedMessage& message) {
        State::Source& source = state.sources[static_cast<std::size_t>(&message - first)];
        source.first_column = columns;
        source.name = database.text_of(message.decoder.Message().name);
        for (const PreparedSignal& signal : message.signals) columns += cell_count(signal);
      });
  state.row.resize(columns);
}
ZelkTimeline::~ZelkTimeline() = default;

const std::string& ZelkTimeline::Heading() const { return state_->heading; }

namespace {

/// Appends the values of a frame.
///
/// @param column  the first one of the message
void add_cells(BlockValues& values, const DecodedFrame& frame, std::size_t column, bool raw) {
  LineBuffer& text = values.text;
  const auto end_cell = [&](std::size_t at, std::size_t begin) {
    values.cells.push_back({at, {begin, text.size() - begin}});
  };
  for (const PreparedSignal& signal : frame.message->signals) {
    if (zelk::logs::is_present(frame, signal)) {
      const std::int64_t value = frame.raw[signal.index];
      std::size_t begin = text.size();
      append_value(text, signal, value, raw, zelk::NonFinite::kAsText);
      end_cell(column, begin);
      begin = text.size();
      text.append(signal.descriptions.find(value));
      if (!signal.descriptions.empty()) end_cell(column + 1, begin);
    }
    column += cell_count(signal);
  }
}

/// The first time of a block, and its latest one.
std::optional<std::pair<std::int64_t, std::int64_t>> times_of(const ZelkFrameBlock& frames) {
  const std::span<const std::int64_t> times = frames.Times();
  if (times.empty()) return std::nullopt;
  if (std::ranges::find(times, kZelkNoTime) != times.end())
    throw ZelkLogError("a frame has no time, which an even grid of times needs");
  return std::pair(times.front(), *std::ranges::max_element(times));
}

}  // namespace

void ZelkTimeline::Decode(const ZelkFrameBlock& frames, ZelkTimelineValues& values) const {
  ZelkTimelineValues::Content& content = *values.content_;
  content.text.clear();
  content.events.clear();
  content.cells.clear();
  content.channels = frames.ChannelNames();
  if (state_->step > 0) content.times = times_of(frames);
  const PreparedMessage* const first = state_->plan.messages().data();
  const std::span<const std::int64_t> times = frames.Times();
  std::size_t seen = 0;
  std::int64_t latest = kZelkNoTime;  // of all frames so far, chosen or not
  content.walk.walk(state_->plan, frames, [&](const DecodedFrame& frame, std::size_t index) {
    for (; seen <= index; ++seen) latest = std::max(latest, times[seen]);
    const auto message = static_cast<std::size_t>(frame.message - first);
    const std::size_t before = content.cells.size();
    add_cells(content, frame, state_->sources[message].first_column, state_->plan.is_raw());
    if (content.cells.size() == before) return;
    const Piece time{content.text.size(), frame.time.size()};
    content.text.append(frame.time);
    content.events.push_back(
        {latest, time, message, frames.Channels()[index], content.cells.size()});
  });
}

void ZelkTimeline::State::flush() {
  if (lines.size() > 0) write(lines.view());
  lines.clear();
}

void ZelkTimeline::State::write_row(std::string_view of) {
  constexpr std::size_t kMostHeld = 1 << 18;
  lines.append(of);
  for (const std::string& cell : row) {
    lines.append(',');
    lines.append(cell);
  }
  lines.append(zelk::logs::kLineEnd);
  if (lines.size() >= kMostHeld) flush();
}

/// Writes the rows of the grid in front of a time.
void ZelkTimeline::State::write_grid(std::int64_t until) {
  if (!next || *next >= until) return;
  // The difference of two times may not fit into 64 bits with a sign.
  const std::uint64_t gap = static_cast<std::uint64_t>(until) - static_cast<std::uint64_t>(*next);
  if (gap / static_cast<std::uint64_t>(step) > static_cast<std::uint64_t>(kMostRowsOfGap)) {
    throw ZelkLogError("more than " + std::to_string(kMostRowsOfGap) +
                       " rows of the even grid of times have no frame between them");
  }
  while (*next < until) {
    time.clear();
    ZelkAppendTime(*next, time);
    write_row(time);
    *next = *next > kMostTime - step ? kMostTime : *next + step;
  }
}

void ZelkTimeline::State::put_event(const BlockValues& values, const Event& event) {
  Source& source = sources[event.message];
  const std::string& channel = values.channels[event.channel];
  if (!source.channel) source.channel = channel;
  source.is_mixed |= *source.channel != channel;
  if (step > 0) write_grid(event.time);
}

void ZelkTimeline::Put(const ZelkTimelineValues& values) {
  State& state = *state_;
  const ZelkTimelineValues::Content& content = *values.content_;
  const std::string_view text = content.text.view();
  if (content.times && !state.next) {
    state.next = rounded_down(content.times->first, state.step);
    state.latest = content.times->first;
  }
  std::size_t cell = 0;
  for (const Event& event : content.events) {
    state.put_event(content, event);
    for (; cell < event.cells_end; ++cell) {
      const Cell& fresh = content.cells[cell];
      state.row[fresh.column] = text.substr(fresh.text.begin, fresh.text.size);
    }
    if (state.step == 0) state.write_row(text.substr(event.time_text.begin, event.time_text.size));
  }
  if (content.times) {
    state.latest = std::max(state.latest, content.times->second);
    state.write_grid(state.latest);
  }
  state.flush();
}

void ZelkTimeline::End() {
  State& state = *state_;
  if (state.next && *state.next <= state.latest) {
    state.time.clear();
    ZelkAppendTime(*state.next, state.time);
    state.write_row(state.time);
  }
  state.flush();
}

std::vector<std::string> ZelkTimeline::MixedMessages() const {
  std::vector<std::string> names;
  for (const State::Source& source : state_->sources)
    if (source.is_mixed) names.push_back(source.name);
  return names;
}
