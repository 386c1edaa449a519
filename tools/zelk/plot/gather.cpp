#include "plot/gather.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "base/list.hpp"
#include "base/quoting.hpp"
#include "base/text_view.hpp"
#include "base/wildcards.hpp"
#include "check/lint/known_attributes.hpp"
#include "input/lookup.hpp"
#include "plot/batches.hpp"
#include "plot/series.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

/// Points that are kept of all curves and lanes together, as far as each has some thousands.
constexpr std::size_t kMostPointsOfAll = 8 * PlotGatherer::kMostPoints;
constexpr std::size_t kFewestPoints = 8000;

/// The index among the sources of a series, as far as it has one.
using SourceIndex = std::optional<std::size_t>;
using Rows = std::pair<std::size_t, std::size_t>;  // begin and end

/// The series of a message, and the sources of the log at hand.
struct Table {
  std::string name;
  std::vector<std::size_t> series{};  ///< of each column
  /// Of each channel, behind that without a name, for each column.
  std::vector<std::vector<SourceIndex>> sources{};
  std::vector<std::optional<std::int64_t>> last_times{};  ///< of frames, of each channel

  void make_room(std::size_t channel) {
    if (sources.size() <= channel)
      sources.resize(channel + 1, std::vector<SourceIndex>(series.size()));
  }
};

std::unique_ptr<ZelkColumnDecoder> make_decoder(const LogDatabases& databases,
                                                const NameFilter& filter, bool match_groups) {
  if (filter.messages.empty() && filter.signals.empty()) return nullptr;
  ZelkColumnOptions options;
  options.match_groups = match_groups;
  auto decoder = std::make_unique<ZelkColumnDecoder>(options);
  databases.choose(*decoder, filter);
  static_cast<void>(decoder->Tables());
  return decoder;
}

/// The time between two frames that the database of a message states, in milliseconds.
std::optional<double> cycle_time_ms(const LogDatabases& databases, const msgblk& message,
                                    const std::string& attribute) {
  for (const LogDatabases::Entry& entry : databases.entries()) {
    const ZelkDatabase& records = entry.content.records;
    if (!contains<const msgblk>(records.messages, message)) continue;
    const check::KnownAttribute cycle_time(records.attr_defs, ZELK_OBJ_MESSAGE, attribute);
    const std::optional<double> time = cycle_time.number(message.attrs);
    return time && *time > 0 ? time : std::nullopt;
  }
  return std::nullopt;
}

/// The index of the first pattern that a signal matches.
std::size_t pattern_of(const std::vector<std::string>& patterns, std::string_view name,
                       std::string_view owner) {
  const auto matches = [&](const std::string& p) { return matches_object(p, name, owner); };
  return static_cast<std::size_t>(std::ranges::find_if(patterns, matches) - patterns.begin());
}

}  // namespace

struct PlotGatherer::State {
  PlotChoice choice;
  std::unique_ptr<ZelkColumnDecoder> signals;   ///< null when none are chosen
  std::unique_ptr<ZelkColumnDecoder> messages;  ///< likewise
  std::vector<Series> series;
  std::vector<Table> signal_tables;
  std::vector<Table> message_tables;
  std::vector<std::string> logs;
  std::size_t points_of_source = kMostPoints;
  std::size_t sources_of_log = 0;

  void add_signals();
  void add_messages(const LogDatabases& databases);
  void take(bool is_end);
  std::pair<Series&, Source&> source(Table& table, std::size_t column, std::size_t channel,
                                     const BatchColumn& channels);
  void put_signals(Table& table, const Batch& batch, std::size_t channel, const Rows& rows);
  void put_intervals(Table& table, const Batch& batch, std::size_t channel, const Rows& rows);
};

void PlotGatherer::State::add_signals() {
  if (!signals) return;
  for (const ZelkColumnTable& table : signals->Tables()) {
    Table& added = signal_tables.emplace_back(Table{table.name});
    for (std::size_t i = kFirstSignalColumn; i < table.columns.size(); ++i) {
      const ZelkColumn& column = table.columns[i];
      Series one;
      one.name = utf8(view(column.signal->name));
      one.full_name = table.name + '.' + column.name;
      one.message = table.name;
      one.unit = column.unit;
      one.order = pattern_of(choice.signals, one.name, utf8(view(table.message->name)));
      if (is_enumeration(*column.signal)) one.values.emplace(*column.signal);
      added.series.push_back(series.size());
      series.push_back(std::move(one));
    }
  }
}

void PlotGatherer::State::add_messages(const LogDatabases& databases) {
  if (!messages) return;
  for (const ZelkColumnTable& table : messages->Tables()) {
    Series one;
    one.name = one.full_name = table.name + ", time between frames";
    one.message = table.name;
    one.unit = "ms";
    one.order = choice.signals.size();
    one.nominal_ms = cycle_time_ms(databases, *table.message, choice.cycle_attribute);
    one.has_gaps = false;
    message_tables.emplace_back(Table{table.name}).series.push_back(series.size());
    series.push_back(std::move(one));
  }
}

/// @throws RequestError when there are too many sources
std::pair<Series&, Source&> PlotGatherer::State::source(Table& table, std::size_t column,
                                                        std::size_t channel,
                                                        const BatchColumn& channels) {
  Series& of = series[table.series[column]];
  SourceIndex& index = table.sources[channel][column];
  if (!index) {
    if (++sources_of_log > kMostSeries) {
      throw RequestError(fmt::format("{}: more than {} signals match and have values; name fewer",
                                     escaped(logs.back()), kMostSeries));
    }
    index = of.sources.size();
    of.add_source(logs.size() - 1, channel == 0 ? "" : std::string(channels.text(channel - 1)),
                  points_of_source);
  }
  return {of, of.sources[*index]};
}

void PlotGatherer::State::put_signals(Table& table, const Batch& batch, std::size_t channel,
                                      const Rows& rows) {
  const BatchColumn times = batch.column(kTimeColumn);
  const BatchColumn channels = batch.column(kChannelColumn);
  for (std::size_t k = 0; k < table.series.size(); ++k) {
    const BatchColumn column = batch.column(kFirstSignalColumn + k);
    std::size_t row = rows.first;
    while (row < rows.second && !column.has(row)) ++row;
    if (row == rows.second) continue;
    auto [of, source] = this->source(table, k, channel, channels);
    auto* const curve = std::get_if<CurvePoints>(&source.content);
    auto* const lane = std::get_if<LaneRuns>(&source.content);
    for (; row < rows.second; ++row) {
      if (!column.has(row)) continue;
      const auto time = times.value<std::int64_t>(row);
      const auto value = column.value<double>(row);
      if (curve) {
        curve->add(time, value);
      } else {
        lane->add(time, of.values->number_of(value));
      }
    }
  }
}

void PlotGatherer::State::put_intervals(Table& table, const Batch& batch, std::size_t channel,
                                        const Rows& rows) {
  const BatchColumn times = batch.column(kTimeColumn);
  if (table.last_times.size() <= channel) table.last_times.resize(channel + 1);
  std::optional<std::int64_t>& last = table.last_times[channel];
  for (std::size_t row = rows.first; row < rows.second; ++row) {
    const auto time = times.value<std::int64_t>(row);
    if (last && time >= *last) {
      auto& content = source(table, 0, channel, batch.column(kChannelColumn)).second.content;
      const std::uint64_t interval =
          static_cast<std::uint64_t>(time) - static_cast<std::uint64_t>(*last);
      std::get<CurvePoints>(content).add(time, static_cast<double>(interval) / 1e6);
    }
    last = time;
  }
}

namespace {

/// Calls `put` for each stretch of rows that have one channel, with its index behind the one
/// without a name.
///
/// @throws RequestError when a row has no time
template <typename PutRows>
void for_each_channel(const Batch& batch, const std::string& log, const PutRows& put) {
  const BatchColumn times = batch.column(kTimeColumn);
  const BatchColumn channels = batch.column(kChannelColumn);
  const auto channel_of = [&](std::size_t row) {
    return channels.has(row) ? static_cast<std::size_t>(channels.value<std::int32_t>(row)) + 1 : 0;
  };
  std::size_t begin = 0;
  std::size_t channel = 0;
  for (std::size_t row = 0; row < batch.size(); ++row) {
    if (!times.has(row)) {
      throw RequestError(fmt::format("{}: a frame has no time, which a plot needs", escaped(log)));
    }
    const std::size_t own = channel_of(row);
    if (row > begin && own != channel) {
      put(channel, Rows(begin, row));
      begin = row;
    }
    channel = own;
  }
  if (begin < batch.size()) put(channel, Rows(begin, batch.size()));
}

}  // namespace

void PlotGatherer::State::take(bool is_end) {
  const auto take_all = [&](ZelkColumnDecoder* decoder, std::vector<Table>& tables,
                            const auto& put) {
    Batch batch;
    for (std::size_t i = 0; decoder && i < tables.size(); ++i) {
      const auto put_rows = [&](std::size_t channel, const Rows& rows) {
        tables[i].make_room(channel);
        put(tables[i], batch, channel, rows);
      };
      while (batch.take(*decoder, i, is_end)) for_each_channel(batch, logs.back(), put_rows);
    }
  };
  take_all(signals.get(), signal_tables, [this](auto&... arguments) { put_signals(arguments...); });
  take_all(messages.get(), message_tables,
           [this](auto&... arguments) { put_intervals(arguments...); });
}

PlotGatherer::PlotGatherer(const LogDatabases& databases, const PlotChoice& choice,
                           std::size_t log_count)
    : state_(std::make_unique<State>()) {
  State& state = *state_;
  state.choice = choice;
  state.signals = make_decoder(databases, {{}, choice.signals}, choice.match_groups);
  state.messages = make_decoder(databases, {choice.jitter, {}}, choice.match_groups);
  state.add_signals();
  state.add_messages(databases);
  const std::size_t sources = std::clamp<std::size_t>(state.series.size(), 1, kMostSeries) *
                              std::max<std::size_t>(log_count, 1);
  const std::size_t share = std::clamp(kMostPointsOfAll / sources, kFewestPoints, kMostPoints);
  state.points_of_source = share / 8 * 8;
}
PlotGatherer::~PlotGatherer() = default;

const ZelkFrameCounts& PlotRows::Counts() const {
  return has_signals ? signals.Counts() : messages.Counts();
}

void PlotGatherer::Decode(const ZelkFrameBlock& frames, PlotRows& rows) const {
  rows.has_signals = state_->signals != nullptr;
  if (state_->signals) state_->signals->Decode(frames, rows.signals);
  if (state_->messages) state_->messages->Decode(frames, rows.messages);
}

void PlotGatherer::begin_log(const std::string& name) {
  state_->logs.push_back(name);
  state_->sources_of_log = 0;
  for (auto* const tables : {&state_->signal_tables, &state_->message_tables}) {
    for (Table& table : *tables) {
      table.sources.clear();
      table.last_times.clear();
    }
  }
}

void PlotGatherer::put(PlotRows& rows) {
  if (state_->signals) state_->signals->Put(rows.signals);
  if (state_->messages) state_->messages->Put(rows.messages);
  state_->take(false);
}

void PlotGatherer::end_log() { state_->take(true); }

bool PlotGatherer::is_empty() const {
  return std::ranges::all_of(state_->series,
                             [](const Series& series) { return series.sources.empty(); });
}

bool PlotGatherer::ran_backwards() const {
  return std::ranges::any_of(state_->series, [](const Series& series) {
    return std::ranges::any_of(series.sources, &Source::ran_backwards);
  });
}

std::vector<std::string> PlotGatherer::missing() const {
  std::vector<std::string> missing = state_->choice.signals;
  for (std::size_t i = 0; i < state_->signal_tables.size(); ++i) {
    const std::string owner = utf8(view(state_->signals->Tables()[i].message->name));
    for (const std::size_t number : state_->signal_tables[i].series) {
      const Series& series = state_->series[number];
      if (series.sources.empty()) continue;
      std::erase_if(missing, [&](const std::string& pattern) {
        return matches_object(pattern, series.name, owner);
      });
    }
  }
  return missing;
}

std::vector<std::string> PlotGatherer::missing_messages() const {
  std::vector<std::string> missing = state_->choice.jitter;
  for (std::size_t i = 0; i < state_->message_tables.size(); ++i) {
    const std::string name = utf8(view(state_->messages->Tables()[i].message->name));
    if (state_->series[state_->message_tables[i].series.front()].sources.empty()) continue;
    std::erase_if(missing,
                  [&](const std::string& pattern) { return matches_wildcards(pattern, name); });
  }
  return missing;
}

Figure PlotGatherer::figure() {
  return make_figure(state_->series, state_->logs, state_->choice.relative);
}

}  // namespace zelk::tool
