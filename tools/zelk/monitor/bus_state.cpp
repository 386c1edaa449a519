#include "monitor/bus_state.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <span>
#include <unordered_map>
#include <utility>

#include "base/list.hpp"
#include "base/quoting.hpp"
#include "base/seeded_hash.hpp"
#include "log/log_copy.hpp"
#include "monitor/cycle_watch.hpp"
#include "monitor/message_plan.hpp"
#include "monitor/row_decoder.hpp"
#include "zelk/logs/messages.hpp"

namespace zelk::tool {

namespace {

constexpr std::int64_t kSecond = 1'000'000'000;
constexpr std::size_t kMostPages = 256;  // of a message from one interface
constexpr std::size_t kNoRow = static_cast<std::size_t>(-1);
constexpr double kNanosecondsPerMs = 1e6;

/// What a row needs beside what is shown.
struct Track {
  const MessagePlan* plan = nullptr;  ///< null: unknown
  CycleWatch cycle;
  RowValues values;
  bool is_stale = true;  ///< there were frames since its figures were computed
};

/// An identifier from one interface.
struct Source {
  const MessagePlan* plan = nullptr;                         ///< null: unknown
  std::size_t row = kNoRow;                                  ///< without pages
  std::map<std::vector<std::int64_t>, std::size_t> pages{};  ///< rows by the multiplexors' values
};

}  // namespace

struct BusState::State {
  State(const LogDatabases& databases, const Options& chosen);

  void expect(const LogDatabases& databases);
  const std::string* channel_name(const std::string& name) const;
  void clock(std::int64_t time);
  void add_frame(const ZelkFrameBlock& frames, std::size_t index, std::uint32_t channel,
                 std::int64_t time);
  Source* source_of(std::uint32_t channel, std::uint32_t id);
  std::size_t row_of(Source& source, std::uint32_t channel, std::uint32_t id,
                     std::span<const unsigned char> data);
  std::size_t page_of(Source& source, std::uint32_t channel, std::uint32_t id,
                      std::span<const unsigned char> data);
  std::size_t new_row(const MessagePlan* plan, std::uint32_t channel, std::uint32_t id,
                      std::string page, std::span<const unsigned char> data);
  void update(std::size_t index, std::span<const unsigned char> data, std::int64_t time);
  void follow_watched(const Track& track, std::int64_t time);
  void refresh(std::size_t index);

  Options options;
  ZelkMessageFinder finder;
  std::unordered_map<const msgblk*, std::unique_ptr<const MessagePlan>> plans;
  std::unordered_map<const MessagePlan*, std::size_t> expected;  ///< rows without frames
  std::deque<RowState> rows;
  std::deque<Track> tracks;  ///< one for each row
  std::unordered_map<std::string, std::uint32_t, SeededHash> channels;
  std::vector<std::string> channel_names;
  std::unordered_map<std::uint64_t, Source, SeededHash> sources;  ///< by channel and identifier
  Source unwanted;  ///< stands for unknown identifiers where messages were chosen
  std::vector<std::uint32_t> block_channels;
  RowDecoder decoder;
  std::size_t unknown_rows = 0;
  std::int64_t now = kZelkNoTime;
  std::int64_t since = kZelkNoTime;  ///< when the clock was started or set
  std::uint64_t frame_count = 0;
  std::uint64_t error_count = 0;
  std::uint64_t remote_count = 0;
  std::uint64_t unlisted_count = 0;
  WatchedSignal watched;
  ValueTrack watched_values;
};

BusState::State::State(const LogDatabases& databases, const Options& chosen)
    : options(chosen), finder(chosen.match_groups) {
  databases.add_to(finder);
  finder.Prepare();
  for (const LogDatabases::Entry& entry : databases.entries()) {
    const CycleTimes cycles(entry.content.records, options.cycle_attribute);
    for (const msgblk& message : each<const msgblk>(entry.content.records.messages)) {
      plans[&message] = std::make_unique<const MessagePlan>(message, entry.content.encoding,
                                                            options.filter, cycles);
    }
  }
  expect(databases);
}

/// Makes rows for the messages that should come.
void BusState::State::expect(const LogDatabases& databases) {
  const FrameFilter filter{options.interfaces};
  for (const LogDatabases::Entry& entry : databases.entries()) {
    const std::string& name = entry.interface_name;
    if (!name.empty() && !filter.takes_interface(name)) continue;
    for (const msgblk& message : each<const msgblk>(entry.content.records.messages)) {
      const MessagePlan* const plan = plans.at(&message).get();
      const bool is_expected =
          plan->is_shown && plan->expected_cycle > 0 && !expected.contains(plan);
      if (!is_expected || finder.Find(name, message.id).message != &message) continue;
      if (rows.size() == kMostKnown) return;
      rows.push_back({.id = message.id, .channel = name, .message = &message, .name = plan->name});
      tracks.push_back({plan, CycleWatch(plan->expected_cycle), {}});
      expected.emplace(plan, rows.size() - 1);
    }
  }
}

void BusState::State::clock(std::int64_t time) {
  if (time == kZelkNoTime) return;
  const bool is_set_back =
      now != kZelkNoTime &&
      time<now&& static_cast<std::uint64_t>(now) -
           static_cast<std::uint64_t>(time)> static_cast<std::uint64_t>(kSecond);
  if (now == kZelkNoTime || is_set_back) since = time;
  now = is_set_back ? time : std::max(now, time);
}

void BusState::add(const ZelkFrameBlock& frames, std::int64_t arrival) {
  State& state = *state_;
  const FrameFilter filter{state.options.interfaces};
  constexpr std::uint32_t kUnwanted = UINT32_MAX;
  state.block_channels.clear();
  for (const std::string& name : frames.ChannelNames()) {
    const auto [found, is_new] =
        state.channels.try_emplace(name, static_cast<std::uint32_t>(state.channel_names.size()));
    if (is_new) state.channel_names.push_back(name);
    const bool is_wanted = filter.takes_interface(name.empty() ? kDefaultInterface : name);
    state.block_channels.push_back(is_wanted ? found->second : kUnwanted);
  }
  for (std::size_t i = 0; i < frames.Size(); ++i) {
    const std::int64_t time = frames.Times()[i] == kZelkNoTime ? arrival : frames.Times()[i];
    ++state.frame_count;
    state.clock(time);
    const std::uint32_t channel = state.block_channels[frames.Channels()[i]];
    if (channel != kUnwanted) state.add_frame(frames, i, channel, time);
  }
}

void BusState::State::add_frame(const ZelkFrameBlock& frames, std::size_t index,
                                std::uint32_t channel, std::int64_t time) {
  const std::uint16_t flags = frames.Flags()[index];
  error_count += (flags & kZelkFrameError) != 0;
  if (flags & kZelkFrameError) return;
  remote_count += (flags & kZelkFrameRemote) != 0;
  if (flags & kZelkFrameRemote) return;
  const std::uint32_t id = frames.Ids()[index];
  const std::span<const unsigned char> data = frames.Data(index);
  Source* const source = source_of(channel, id);
  if (source == &unwanted || (source && source->plan && !source->plan->is_shown)) return;
  const std::size_t row = source ? row_of(*source, channel, id, data) : kNoRow;
  if (row == kNoRow) {
    ++unlisted_count;
    return;
  }
  rows[row].flags = flags;
  update(row, data, time);
}

/// Null when there may be no more of them.
Source* BusState::State::source_of(std::uint32_t channel, std::uint32_t id) {
  const std::uint64_t key = static_cast<std::uint64_t>(channel) << 32 | id;
  if (const auto found = sources.find(key); found != sources.end()) return &found->second;
  const msgblk* const message = finder.Find(channel_names[channel], id).message;
  if (!message && options.filter.is_choice()) return &unwanted;
  const std::size_t most = message ? kMostKnown + kMostUnknown : kMostUnknown;
  if ((message ? sources.size() : unknown_rows) >= most) return nullptr;
  Source source{message ? plans.at(message).get() : nullptr};
  return &sources.emplace(key, std::move(source)).first->second;
}

std::size_t BusState::State::row_of(Source& source, std::uint32_t channel, std::uint32_t id,
                                    std::span<const unsigned char> data) {
  if (source.plan && !source.plan->multiplexors.empty()) return page_of(source, channel, id, data);
  if (source.row == kNoRow) source.row = new_row(source.plan, channel, id, "", data);
  return source.row;
}

std::size_t BusState::State::page_of(Source& source, std::uint32_t channel, std::uint32_t id,
                                     std::span<const unsigned char> data) {
  static const std::vector<std::int64_t> kFurther;
  const std::vector<std::int64_t>* key = &decoder.page_key(*source.plan, data);
  if (const auto found = source.pages.find(*key); found != source.pages.end()) return found->second;
  std::string page = decoder.page_name(*source.plan);
  if (source.pages.size() >= kMostPages) {
    key = &kFurther;
    page = "further";
    if (const auto found = source.pages.find(*key); found != source.pages.end())
      return found->second;
  }
  const std::vector<std::int64_t> held = *key;  // a new row decodes
  const std::size_t row = new_row(source.plan, channel, id, std::move(page),
                                  held.empty() ? std::span<const unsigned char>() : data);
  if (row != kNoRow) source.pages.emplace(held, row);
  return row;
}

std::size_t BusState::State::new_row(const MessagePlan* plan, std::uint32_t channel,
                                     std::uint32_t id, std::string page,
                                     std::span<const unsigned char> data) {
  const std::string& name = channel_names[channel];
  std::size_t row = rows.size();
  const auto waiting = expected.find(plan);
  if (waiting != expected.end() &&
      (rows[waiting->second].channel.empty() || rows[waiting->second].channel == name)) {
    row = waiting->second;
    expected.erase(waiting);
  } else {
    const std::size_t known_rows = rows.size() - unknown_rows;
    if (plan ? known_rows >= kMostKnown : unknown_rows >= kMostUnknown) return kNoRow;
    unknown_rows += !plan;
    rows.emplace_back();
    tracks.push_back({plan, CycleWatch(plan ? plan->expected_cycle : 0), {}});
  }
  RowState& made = rows[row];
  made.id = id;
  made.channel = utf8(name);
  made.page = std::move(page);
  if (!plan) return row;
  made.message = &plan->decoder.Message();
  made.name = plan->name;
  tracks[row].values = decoder.make_signals(*plan, data, made.signals);
  return row;
}

void BusState::State::update(std::size_t index, std::span<const unsigned char> data,
                             std::int64_t time) {
  RowState& row = rows[index];
  Track& track = tracks[index];
  const bool is_first = row.count == 0;
  const bool is_changed = !std::ranges::equal(row.data, data);
  if (is_first || is_changed) {
    row.change_count += !is_first;
    row.changed_at.resize(data.size(), is_first ? kZelkNoTime : time);
    for (std::size_t i = 0; i < std::min(data.size(), row.data.size()); ++i)
      if (row.data[i] != data[i]) row.changed_at[i] = time;
    row.data.assign(data.begin(), data.end());
    if (track.plan) decoder.update(*track.plan, row, track.values, time);
    if (&row == watched.row) follow_watched(track, time);
  }
  ++row.count;
  row.last_time = time;
  track.cycle.add(time);
  track.is_stale = true;
}

void BusState::State::follow_watched(const Track& track, std::int64_t time) {
  const RowState& row = *watched.row;
  if (watched.signal >= row.signals.size() || !row.signals[watched.signal].is_present) return;
  watched_values.add(time, decoder.physical(*track.plan, row, track.values[watched.signal]));
}

void BusState::State::refresh(std::size_t index) {
  RowState& row = rows[index];
  Track& track = tracks[index];
  row.is_missing = track.cycle.is_missing(now, since);
  if (!track.is_stale) return;
  track.is_stale = false;
  row.cycle_ms = track.cycle.mean() / kNanosecondsPerMs;
  row.deviation_ms = track.cycle.deviation() / kNanosecondsPerMs;
  row.gap_count = track.cycle.gaps();
  if (!track.plan) return;
  row.nominal_ms = static_cast<double>(track.plan->stated_cycle) / kNanosecondsPerMs;
  decoder.spell(*track.plan, row, track.values);
}

BusState::BusState(const LogDatabases& databases, const Options& options)
    : state_(std::make_unique<State>(databases, options)) {}
BusState::~BusState() = default;

void BusState::advance(std::int64_t now) {
  if (state_->now != kZelkNoTime) state_->now = std::max(state_->now, now);
}

const std::deque<RowState>& BusState::rows() {
  for (std::size_t i = 0; i < state_->rows.size(); ++i) state_->refresh(i);
  return state_->rows;
}

void BusState::watch(const WatchedSignal& signal) {
  if (signal == state_->watched) return;
  state_->watched = signal;
  state_->watched_values.clear();
}

ValueTrack BusState::take_watched() { return std::exchange(state_->watched_values, {}); }

std::int64_t BusState::now() const { return state_->now; }
std::vector<std::string> BusState::silent_interfaces() const {
  std::vector<std::string> silent = state_->options.interfaces;
  for (const std::string& name : state_->channel_names)
    std::erase(silent, name.empty() ? kDefaultInterface : std::string_view(name));
  return silent;
}

std::uint64_t BusState::frame_count() const { return state_->frame_count; }
std::uint64_t BusState::error_frame_count() const { return state_->error_count; }
std::uint64_t BusState::remote_frame_count() const { return state_->remote_count; }
std::uint64_t BusState::unlisted_frame_count() const { return state_->unlisted_count; }

}  // namespace zelk::tool
