#include "plot/series.hpp"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

#include "base/quoting.hpp"

namespace zelk::tool {

namespace {

constexpr std::int64_t kSecond = 1'000'000'000;
constexpr std::size_t kMostTitles = 3;  // names of logs in the title

/// Later times are dates: no log counts for twenty years.
constexpr std::int64_t kFirstDate = std::int64_t{20} * 365 * 24 * 3600 * kSecond;

double seconds_between(std::int64_t from, std::int64_t to) {
  if (to < from) return -seconds_between(to, from);
  return static_cast<double>(static_cast<std::uint64_t>(to) - static_cast<std::uint64_t>(from)) /
         static_cast<double>(kSecond);
}

/// Sources that become one curve or lane.
struct Part {
  Series* series;
  std::vector<Source*> sources;
  std::string name = {};
};

bool overlap(const std::vector<Source*>& sources) {
  for (std::size_t i = 1; i < sources.size(); ++i)
    if (sources[i]->first_time() < sources[i - 1]->latest_time()) return true;
  return false;
}

/// What one interface has of a series: one part when its logs come one behind the other, else one
/// of each log.
void add_parts(Series& series, std::vector<Source*> sources, bool relative,
               std::vector<Part>& parts) {
  std::ranges::stable_sort(
      sources, [](const Source* a, const Source* b) { return a->first_time() < b->first_time(); });
  if (!relative && !overlap(sources)) return parts.push_back({&series, std::move(sources)});
  std::ranges::sort(sources, {}, &Source::log);
  for (Source* const source : sources) parts.push_back({&series, {source}});
}

std::vector<Part> parts_of(Series& series, bool relative) {
  std::vector<std::pair<std::string, std::vector<Source*>>> by_channel;
  for (Source& source : series.sources) {
    const auto same = [&](const auto& entry) { return entry.first == source.channel; };
    auto entry = std::ranges::find_if(by_channel, same);
    if (entry == by_channel.end()) entry = by_channel.insert(entry, {source.channel, {}});
    entry->second.push_back(&source);
  }
  std::vector<Part> parts;
  for (auto& [channel, sources] : by_channel)
    add_parts(series, std::move(sources), relative, parts);
  return parts;
}

/// The name of a part, with its log and interface as far as they tell it from the others.
std::string name_of(const Part& part, const std::string& name, const std::vector<Part>& all,
                    const std::vector<std::string>& logs) {
  const std::string& channel = part.sources.front()->channel;
  const auto has_channel = [&](const Part& other) {
    return other.sources.front()->channel == channel;
  };
  const auto same_channel = static_cast<std::size_t>(std::ranges::count_if(all, has_channel));
  std::string tags = same_channel > 1 ? utf8(logs[part.sources.front()->log]) : "";
  if (same_channel < all.size() && !channel.empty())
    tags += (tags.empty() ? "" : ", ") + utf8(channel);
  return tags.empty() ? name : name + " (" + tags + ")";
}

class FigureMaker {
 public:
  FigureMaker(const std::vector<Part>& parts, bool relative) {
    std::int64_t begin = std::numeric_limits<std::int64_t>::max();
    std::int64_t end = std::numeric_limits<std::int64_t>::min();
    for (const Part& part : parts) {
      for (const Source* const source : part.sources) {
        begin = std::min(begin, source->first_time());
        end = std::max(end, source->latest_time());
      }
    }
    figure_.is_dated = !relative && begin >= kFirstDate;
    if (figure_.is_dated) figure_.origin = begin / kSecond * kSecond;
    figure_.begin = seconds(begin);
    figure_.end = seconds(end);
  }

  void add(const Part& part) {
    for (std::size_t i = 1; i < part.sources.size(); ++i) {
      std::visit([&](auto& content) { append(content, part.sources[i]->content); },
                 part.sources.front()->content);
    }
    if (part.series->values) {
      add_lane(part);
    } else {
      add_curve(part);
    }
  }

  Figure& figure() { return figure_; }

 private:
  double seconds(std::int64_t time) const { return seconds_between(figure_.origin, time); }

  template <typename Content>
  static void append(Content& content, std::variant<CurvePoints, LaneRuns>& other) {
    content.append(std::get<Content>(other));
  }

  Axis& axis(const std::string& unit) {
    const auto same = [&](const Axis& axis) { return axis.unit == unit; };
    const auto found = std::ranges::find_if(figure_.axes, same);
    if (found != figure_.axes.end()) return *found;
    figure_.axes.push_back({unit, {}});
    return figure_.axes.back();
  }

  void add_curve(const Part& part) {
    auto& content = std::get<CurvePoints>(part.sources.front()->content);
    Axis& axis = this->axis(part.series->unit);
    Curve curve{part.name, part.series->message, {}, {}, content.count()};
    const std::vector<Point> points = content.finish();
    curve.times.reserve(points.size());
    curve.values.reserve(points.size());
    for (const Point& point : points) {
      curve.times.push_back(seconds(point.time));
      curve.values.push_back(point.value);
    }
    axis.curves.push_back(std::move(curve));
    if (part.series->nominal_ms) add_nominal(part, axis);
  }

  /// One for all interfaces and logs of a message.
  void add_nominal(const Part& part, Axis& axis) const {
    const double nominal = *part.series->nominal_ms;
    const std::string name = part.series->message + ", nominal cycle";
    if (std::ranges::find(axis.curves, name, &Curve::name) != axis.curves.end()) return;
    axis.curves.push_back(
        {name, part.series->message, {figure_.begin, figure_.end}, {nominal, nominal}, 2});
  }

  void add_lane(const Part& part) {
    auto& content = std::get<LaneRuns>(part.sources.front()->content);
    auto [texts, indices] = part.series->values->texts();
    Lane lane{part.name, part.series->message, std::move(texts), {}, content.count()};
    for (const Run& run : content.finish()) {
      const std::size_t text = run.value == Run::kSeveral ? Stretch::kSeveral : indices[run.value];
      lane.stretches.push_back({seconds(run.begin), seconds(run.end), text});
    }
    figure_.lanes.push_back(std::move(lane));
  }

  Figure figure_;
};

std::string title_of(const std::vector<std::string>& logs) {
  std::string title;
  for (std::size_t i = 0; i < std::min(logs.size(), kMostTitles); ++i)
    title += (i > 0 ? ", " : "") + utf8(logs[i]);
  if (logs.size() > kMostTitles)
    title += " and " + std::to_string(logs.size() - kMostTitles) + " more";
  return title;
}

}  // namespace

std::size_t Source::count() const {
  return std::visit([](const auto& c) { return c.count(); }, content);
}
std::int64_t Source::first_time() const {
  return std::visit([](const auto& c) { return c.first_time(); }, content);
}
std::int64_t Source::latest_time() const {
  return std::visit([](const auto& c) { return c.latest_time(); }, content);
}
bool Source::ran_backwards() const {
  return std::visit([](const auto& c) { return c.ran_backwards(); }, content);
}

Source& Series::add_source(std::size_t log, std::string channel, std::size_t limit) {
  using Content = std::variant<CurvePoints, LaneRuns>;
  return sources.emplace_back(
      Source{log, std::move(channel),
             values ? Content(LaneRuns(limit)) : Content(CurvePoints(limit, has_gaps))});
}

Figure make_figure(std::vector<Series>& all, const std::vector<std::string>& logs, bool relative) {
  std::vector<Series*> shown;
  std::map<std::string, std::size_t> uses;
  for (Series& series : all) {
    if (series.sources.empty()) continue;
    shown.push_back(&series);
    ++uses[series.name];
  }
  std::ranges::stable_sort(shown, {}, &Series::order);
  std::vector<Part> parts;
  for (Series* const series : shown) {
    std::vector<Part> own = parts_of(*series, relative);
    const std::string& name = uses[series->name] == 1 ? series->name : series->full_name;
    std::vector<std::string> names;
    names.reserve(own.size());
    for (const Part& part : own) names.push_back(name_of(part, name, own, logs));
    for (std::size_t i = 0; i < own.size(); ++i) {
      own[i].name = std::move(names[i]);
      parts.push_back(std::move(own[i]));
    }
  }
  FigureMaker maker(parts, relative);
  for (const Part& part : parts) maker.add(part);
  maker.figure().title = title_of(logs);
  return std::move(maker.figure());
}

}  // namespace zelk::tool
