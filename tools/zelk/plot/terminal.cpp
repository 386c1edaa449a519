#include "plot/terminal.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <string_view>
#include <utility>
#include <vector>

#include "plot/lane_line.hpp"
#include "plot/raster.hpp"
#include "plot/styled_line.hpp"
#include "plot/ticks.hpp"
#include "plot/traces.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

constexpr std::size_t kLeastColumns = 40;
constexpr std::size_t kLeastRows = 4;  // of a chart
constexpr std::size_t kMostRows = 20;
constexpr std::size_t kMargin = 4;           // for the marks of curves at the right
constexpr std::size_t kColumnsPerTick = 12;  // of the time axis
constexpr std::size_t kRowsPerTick = 3;      // of a chart

/// What tells the curves of a chart apart, in its key and in ASCII.
char mark_of(const Axis& axis, std::size_t index) {
  constexpr std::string_view kMarks = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
  return axis.curves.size() == 1 ? '*' : kMarks[index % kMarks.size()];
}

/// A chart before it is drawn.
struct Chart {
  const Axis* axis;
  Span values;
  std::vector<StyledLine> key;
  std::vector<Tick> ticks{};
};

class Drawing {
 public:
  Drawing(const Figure& figure, const TerminalForm& form)
      : figure_(figure),
        form_(form),
        columns_(std::max(form.columns, kLeastColumns)),
        times_(time_span(figure)) {}

  std::string text() {
    prepare();
    add_title();
    for (const Chart& chart : charts_) add_chart(chart);
    LaneTexts texts(!form_.has_unicode);
    for (const Lane& lane : figure_.lanes) add_lane(lane, texts);
    add_time_axis();
    for (const std::string& line : texts.legend()) add_legend(line);
    return std::move(text_);
  }

 private:
  void prepare() {
    for (const Axis& axis : figure_.axes)
      charts_.push_back({&axis, value_span(axis), key_of(axis), {}});
    std::size_t used = 4 + 2 * figure_.lanes.size();  // with legends
    for (const Chart& chart : charts_) used += chart.key.size();
    const std::size_t room = form_.lines > used ? form_.lines - used : 0;
    rows_ = std::clamp(room / std::max<std::size_t>(charts_.size(), 1), kLeastRows, kMostRows);
    for (Chart& chart : charts_) chart.ticks = number_ticks(chart.values, rows_ / kRowsPerTick + 1);
    gutter_ = gutter();
    const bool has_marks =
        std::ranges::any_of(figure_.axes, [](const Axis& axis) { return axis.curves.size() > 1; });
    width_ = columns_ - std::min(columns_ / 2, gutter_ + 1 + (has_marks ? kMargin : 0));
  }

  /// Columns left of the charts.
  std::size_t gutter() const {
    std::size_t result = 4;
    for (const Lane& lane : figure_.lanes)
      result = std::max(result, std::min(width_of(escaped(lane.name)) + 1, columns_ / 4));
    for (const Chart& chart : charts_)
      for (const Tick& tick : chart.ticks) result = std::max(result, tick.label.size() + 1);
    return result;
  }

  StyledLine line() const { return StyledLine(form_.has_colors); }
  void add(const StyledLine& line) { (text_ += line.text()) += '\n'; }
  std::string cut(std::string_view text, std::size_t width) const {
    return cut_to(text, width, !form_.has_unicode);
  }

  /// The name of an only curve or, behind their marks, those of all, then the
  /// unit; in as many lines as it takes.
  std::vector<StyledLine> key_of(const Axis& axis) const {
    std::vector<StyledLine> lines{line()};
    const auto add_item = [&](const std::string& item, std::size_t style) {
      StyledLine& last = lines.back();
      const bool fits = last.width() + 2 + width_of(item) <= columns_;
      if (last.width() > 0 && !fits) lines.push_back(line());
      lines.back().append(lines.back().width() > 0 ? "  " : " ").append(item, style);
    };
    for (std::size_t i = 0; i < axis.curves.size(); ++i) {
      const bool is_only = axis.curves.size() == 1;
      const std::string mark = is_only ? "" : std::string{mark_of(axis, i), ' '};
      add_item(mark + cut(axis.curves[i].name, columns_ - 4), i + 1);
    }
    if (!axis.unit.empty()) add_item('[' + cut(axis.unit, columns_ - 4) + ']', 0);
    return lines;
  }

  void add_title() {
    const std::string dates = figure_.is_dated ? "  " + time_caption(figure_) : "";
    const std::size_t room = columns_ - std::min(columns_, dates.size() + 1);
    add(line().append(" ").append(cut(figure_.title, room)).append(dates));
  }

  void add_chart(const Chart& chart) {
    for (const StyledLine& line : chart.key) add(line);
    Raster raster(width_, rows_, form_.has_unicode);
    const std::vector<Curve>& curves = chart.axis->curves;
    for (std::size_t i = 0; i < curves.size(); ++i)
      raster.draw(curves[i], times_, chart.values, i, mark_of(*chart.axis, i));
    for (std::size_t row = 0; row < rows_; ++row) add(chart_row(chart, raster, row));
  }

  StyledLine chart_row(const Chart& chart, const Raster& raster, std::size_t row) const {
    StyledLine result = line();
    const std::string label = label_in(chart, row);
    result.pad(gutter_ - label.size() - 1).append(label).append(" ");
    if (form_.has_unicode) {
      result.append(label.empty() ? "│" : "┤");
    } else {
      result.append(label.empty() ? "|" : "+");
    }
    for (std::size_t column = 0; column < width_; ++column)
      result.append(raster.text_at(column, row), raster.curve_at(column, row) + 1);
    add_marks(result, chart, raster, row);
    return result;
  }

  std::string label_in(const Chart& chart, std::size_t row) const {
    for (const Tick& tick : chart.ticks) {
      const double down = (1 - chart.values.part(tick.at)) * static_cast<double>(rows_);
      const double last = static_cast<double>(rows_ - 1);
      if (std::clamp(std::floor(down), 0.0, last) == static_cast<double>(row)) return tick.label;
    }
    return "";
  }

  /// The marks of the curves that end in a row.
  void add_marks(StyledLine& line, const Chart& chart, const Raster& raster,
                 std::size_t row) const {
    const std::vector<Curve>& curves = chart.axis->curves;
    if (curves.size() == 1) return;
    std::size_t count = 0;
    for (std::size_t i = 0; i < curves.size() && count + 1 < kMargin; ++i) {
      if (raster.last_row_of(curves[i], chart.values) != row) continue;
      line.append(count++ == 0 ? " " : "").append(std::string{mark_of(*chart.axis, i)}, i + 1);
    }
  }

  void add_lane(const Lane& lane, LaneTexts& texts) {
    const std::string name = cut(lane.name, gutter_ - 1);
    StyledLine result = line();
    result.pad(gutter_ - 1 - width_of(name)).append(name).append("  ");
    texts.append(result, lane, times_, width_);
    add(result);
  }

  void add_time_axis() {
    const std::string_view across = form_.has_unicode ? "─" : "-";
    const std::string_view mark = form_.has_unicode ? "┴" : "+";
    std::vector<bool> is_tick(width_);
    std::string labels;
    for (const Tick& tick : time_ticks(figure_, width_ / kColumnsPerTick + 1)) {
      const double place = times_.part(tick.at) * static_cast<double>(width_);
      const auto at = static_cast<std::size_t>(
          std::clamp(std::floor(place), 0.0, static_cast<double>(width_ - 1)));
      is_tick[at] = true;
      add_label(labels, gutter_ + 1 + at, tick.label);
    }
    StyledLine axis = line();
    axis.pad(gutter_).append(form_.has_unicode ? "└" : "+");
    for (const bool is : is_tick) axis.append(is ? mark : across);
    add(axis);
    add(line().append(labels));
  }

  /// Puts a label in the middle around a column, unless it would meet another
  /// one.
  void add_label(std::string& labels, std::size_t column, const std::string& label) const {
    std::string text = label;
    if (!figure_.is_dated && labels.empty()) text += " s";
    const std::size_t half = std::min(column, label.size() / 2);
    const std::size_t begin = std::min(column - half, columns_ - std::min(columns_, text.size()));
    if (!labels.empty() && begin < labels.size() + 1) return;
    labels.resize(begin, ' ');
    labels += text;
  }

  void add_legend(const std::string& legend) {
    add(line().append(" ").append(cut(legend, columns_ - 1)));
  }

  const Figure& figure_;
  TerminalForm form_;
  std::size_t columns_;
  Span times_;
  std::vector<Chart> charts_;
  std::size_t rows_ = kLeastRows;  // of a chart
  std::size_t gutter_ = 0;
  std::size_t width_ = 0;  // of a chart, behind the gutter and its line
  std::string text_;
};

}  // namespace

std::string draw_in_terminal(const Figure& figure, const TerminalForm& form) {
  return Drawing(figure, form).text();
}

}  // namespace zelk::tool
