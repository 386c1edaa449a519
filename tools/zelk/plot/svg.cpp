#include "plot/svg.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <utility>

#include "base/numbers.hpp"
#include "check/picture/style.hpp"
#include "check/picture/svg.hpp"
#include "input/lookup.hpp"
#include "page/page.hpp"
#include "plot/texts.hpp"
#include "plot/ticks.hpp"
#include "plot/traces.hpp"
#include "term/text.hpp"
#include "words/record_words.hpp"

namespace zelk::tool {

namespace {

using nlohmann::json;

// In pixels.
constexpr double kUsualWidth = 1200;
constexpr double kUsualPanel = 210;  // height of one of several
constexpr double kUsualAlone = 420;
constexpr double kLeastPanel = 70;
constexpr double kLeft = 76;
constexpr double kLabelGap = 6;     // between an axis and its labels
constexpr double kLabelWidth = 71;  // of ten digits, which take not quite 70
constexpr double kRight = 24;
constexpr double kTop = 36;
constexpr double kBottom = 46;
constexpr double kLegendLine = 19;
constexpr double kBetween = 12;   // panels
constexpr double kLaneName = 17;  // above its band
constexpr double kLaneBand = 20;
constexpr double kLane = kLaneName + kLaneBand + 5;
constexpr double kSample = 34;    // of a curve, in front of its name
constexpr double kPerTick = 110;  // of the axis of time
constexpr double kPerRow = 28;
constexpr double kPerMark = 170;
constexpr std::size_t kColorCount = 8;
constexpr std::size_t kShapes = 7;

constexpr check::Font kNameFont{"name", 12};
constexpr check::Font kLabelFont{"label", 11};
constexpr check::Font kTitleFont{"title", 16, true};

/// A coordinate, to a tenth of a pixel.
json pixel(double at) { return std::round(at * 10) / 10; }

std::string fitted(std::string_view text, double width, const check::Font& font) {
  return check::fitted(text, static_cast<int>(width), font);
}

/// The names of a panel's curves, in lines above it.
struct Legend {
  struct Entry {
    std::string text;
    double x;
    std::size_t line;
  };
  std::vector<Entry> entries{};
  std::size_t lines = 1;
};

Legend make_legend(const Axis& axis, double width) {
  constexpr double kGap = 18;
  Legend legend;
  double x = 0;
  for (const Curve& curve : axis.curves) {
    std::string text = fitted(curve.name, width - kSample, kNameFont);
    const double own = kSample + check::text_width(text, kNameFont);
    if (x > 0 && x + own > width) {
      x = 0;
      ++legend.lines;
    }
    legend.entries.push_back({std::move(text), x, legend.lines - 1});
    x += own + kGap;
  }
  return legend;
}

/// The figure for those who hear it.
std::string description_of(const Figure& figure) {
  std::string text =
      "From " + time_text(figure, figure.begin) + " to " + time_text(figure, figure.end) + '.';
  for (const Axis& axis : figure.axes) {
    for (const Curve& curve : axis.curves) {
      const std::optional<Span> span = value_range(curve);
      text += span ? fmt::format(" {}: {} to {} {}.", curve.name, check::number_text(span->low),
                                 check::number_text(span->high), axis.unit)
                   : fmt::format(" {}: no numbers.", curve.name);
    }
  }
  for (const Lane& lane : figure.lanes) {
    text +=
        fmt::format(" {}: {}.", lane.name, counted(lane.stretches.size(), "stretch", "stretches"));
  }
  return text;
}

/// Draws a figure into the data of the template.
class Drawing {
 public:
  Drawing(const Figure& figure, const PictureOptions& options)
      : figure_(figure), times_(time_span(figure)) {
    width_ = options.size ? options.size->width : kUsualWidth;
    for (const Axis& axis : figure.axes) legends_.push_back(make_legend(axis, inner_width()));
    height_ = options.size ? options.size->height : std::ceil(fixed_height() + usual_panels());
    panel_height_ = (height_ - fixed_height()) / std::max<double>(1, panel_count());
    if (panel_height_ < (figure.axes.empty() ? 0 : kLeastPanel)) fail();
  }

  PictureSize size() const { return {static_cast<int>(width_), static_cast<int>(height_)}; }

  json draw() {
    double y = kTop;
    for (std::size_t i = 0; i < figure_.axes.size(); ++i) y = draw_panel(i, y);
    for (const Lane& lane : figure_.lanes) y = draw_lane(lane, y);
    draw_time(y);
    add_head();
    return std::move(data_);
  }

 private:
  double inner_width() const { return width_ - kLeft - kRight; }
  double panel_count() const { return static_cast<double>(figure_.axes.size()); }

  double fixed_height() const {
    double height = kTop + kBottom + static_cast<double>(figure_.lanes.size()) * kLane;
    for (const Legend& legend : legends_)
      height += static_cast<double>(legend.lines) * kLegendLine + kBetween;
    return height;
  }
  double usual_panels() const {
    return panel_count() == 1 ? kUsualAlone : panel_count() * kUsualPanel;
  }

  [[noreturn]] void fail() const {
    const double least = fixed_height() + panel_count() * kLeastPanel;
    throw RequestError(
        fmt::format("--size {:.0f}x{:.0f} has no room for {} and {}: its height must "
                    "be {:.0f} at least",
                    width_, height_, counted(figure_.axes.size(), "axis", "axes"),
                    counted(figure_.lanes.size(), "lane"), std::ceil(least)));
  }

  double draw_panel(std::size_t index, double y);
  json draw_curves(const Axis& axis, std::size_t index, const PlotArea& area, const Span& values);
  static json draw_marks(const std::vector<Place>& places, std::size_t number);
  json draw_legend(const Legend& legend, double y) const;
  double draw_lane(const Lane& lane, double y);
  static json draw_band(const Lane& lane, const Band& band, const PlotArea& area);
  void draw_time(double y);
  void add_head();

  const Figure& figure_;
  Span times_;
  double width_ = 0;
  double height_ = 0;
  double panel_height_ = 0;
  std::vector<Legend> legends_;
  json data_;
};

std::string color_of(std::size_t number) { return "k" + std::to_string(number % kColorCount); }

double Drawing::draw_panel(std::size_t index, double y) {
  const Axis& axis = figure_.axes[index];
  const Legend& legend = legends_[index];
  const double top = y + static_cast<double>(legend.lines) * kLegendLine;
  const PlotArea area{kLeft, top, inner_width(), panel_height_};
  const Span values = value_span(axis);
  json rows = json::array();
  const auto most_rows = static_cast<std::size_t>(std::max(2.0, area.height / kPerRow));
  for (const Tick& tick : number_ticks(values, most_rows)) {
    const double at = area.up(values, tick.at);
    rows.push_back({{"y", pixel(at)},
                    {"label", fitted(tick.label, kLabelWidth, kLabelFont)},
                    {"x1", area.x},
                    {"x2", area.x + area.width},
                    {"text_x", area.x - kLabelGap},
                    {"text_y", pixel(at + 4)}});
  }
  json columns = json::array();
  for (const Tick& tick : time_ticks(figure_, static_cast<std::size_t>(area.width / kPerTick))) {
    columns.push_back(
        {{"x", pixel(area.across(times_, tick.at))}, {"y1", top}, {"y2", top + area.height}});
  }
  data_["clips"].push_back({{"number", index},
                            {"x", area.x},
                            {"y", area.y},
                            {"width", area.width},
                            {"height", pixel(area.height)}});
  data_["panels"].push_back({{"x", area.x},
                             {"y", top},
                             {"width", area.width},
                             {"height", pixel(area.height)},
                             {"rows", std::move(rows)},
                             {"columns", std::move(columns)},
                             {"unit", fitted(axis.unit, kLeft - 10, kLabelFont)},
                             {"unit_title", axis.unit.empty() ? "no unit" : axis.unit},
                             {"unit_x", area.x - 6},
                             {"unit_y", top - 7},
                             {"curves", draw_curves(axis, index, area, values)},
                             {"legend", draw_legend(legend, y)}});
  return top + panel_height_ + kBetween;
}

json Drawing::draw_curves(const Axis& axis, std::size_t index, const PlotArea& area,
                          const Span& values) {
  json curves = json::array();
  for (std::size_t i = 0; i < axis.curves.size(); ++i) {
    const std::vector<Place> places = trace(axis.curves[i], area, times_, values);
    curves.push_back({{"name", axis.curves[i].name},
                      {"color", color_of(i)},
                      {"clip", index},
                      {"path", path_data(places)},
                      {"marks", axis.curves.size() > 1 ? draw_marks(places, i) : json::array()}});
  }
  return curves;
}

/// The shape of a curve every so many pixels, at other places than those of its neighbours.
json Drawing::draw_marks(const std::vector<Place>& places, std::size_t number) {
  json marks = json::array();
  double next = kLeft + 15 + static_cast<double>(number % kShapes) * (kPerMark / kShapes);
  for (const Place& place : places) {
    if (place.x < next || std::isnan(place.y)) continue;
    marks.push_back({{"x", pixel(place.x)}, {"y", pixel(place.y)}, {"shape", number % kShapes}});
    next = place.x + kPerMark;
  }
  return marks;
}

json Drawing::draw_legend(const Legend& legend, double y) const {
  json entries = json::array();
  for (std::size_t i = 0; i < legend.entries.size(); ++i) {
    const Legend::Entry& entry = legend.entries[i];
    const double x = kLeft + entry.x;
    const double line = y + static_cast<double>(entry.line) * kLegendLine + 12;
    json shape = json::array();
    if (legend.entries.size() > 1) shape.push_back({{"id", i % kShapes}, {"mark_x", x + 13}});
    entries.push_back({{"x", x},
                       {"y", line},
                       {"line_y", line - 4},
                       {"text_x", x + kSample},
                       {"text", entry.text},
                       {"color", color_of(i)},
                       {"shape", std::move(shape)}});
  }
  return entries;
}

double Drawing::draw_lane(const Lane& lane, double y) {
  const PlotArea area{kLeft, y + kLaneName, inner_width(), kLaneBand};
  json all = json::array();
  for (const Band& band : bands(lane, area, times_)) all.push_back(draw_band(lane, band, area));
  data_["lanes"].push_back({{"name", lane.name},
                            {"text", fitted(lane.name, inner_width(), kNameFont)},
                            {"left", kLeft},
                            {"text_y", y + kLaneName - 4},
                            {"middle", area.y + area.height / 2},
                            {"x1", kLeft},
                            {"x2", kLeft + inner_width()},
                            {"bands", std::move(all)}});
  return y + kLane;
}

json Drawing::draw_band(const Lane& lane, const Band& band, const PlotArea& area) {
  const bool is_several = band.text == Stretch::kSeveral;
  const std::string value = is_several ? "several values" : lane.texts[band.text];
  const double width = std::max(band.end - band.begin, 1.0);
  const std::string text = is_several ? "" : fitted(value, width - 8, kLabelFont);
  json label = json::array();
  // An ellipsis with a letter or two says nothing.
  if (text == value || text.size() > 6) {
    label.push_back({{"text", text},
                     {"label_x", pixel(band.begin + 4)},
                     {"label_y", area.y + area.height / 2 + 4}});
  }
  return {{"x", pixel(band.begin)},
          {"y", area.y},
          {"width", pixel(width)},
          {"height", area.height},
          {"value", value},
          {"color", is_several ? "several" : "b" + std::to_string(band.text % kColorCount)},
          {"label", std::move(label)}};
}

void Drawing::draw_time(double y) {
  const PlotArea area{kLeft, y, inner_width(), 0};
  json ticks = json::array();
  for (const Tick& tick : time_ticks(figure_, static_cast<std::size_t>(area.width / kPerTick))) {
    const double x = area.across(times_, tick.at);
    ticks.push_back({{"x", pixel(x)},
                     {"y", pixel(y)},
                     {"text_y", pixel(y + 17)},
                     {"label", tick.label},
                     {"anchor", x > kLeft + area.width - 20 ? "end" : "middle"}});
  }
  data_["ticks"] = std::move(ticks);
  data_["bottom"] = pixel(y);
  data_["caption_y"] = pixel(y + 34);
}

void Drawing::add_head() {
  data_["width"] = width_;
  data_["height"] = height_;
  data_["left"] = kLeft;
  data_["right"] = width_ - kRight;
  data_["title"] = figure_.title;
  data_["heading"] = fitted(figure_.title, inner_width(), kTitleFont);
  data_["description"] = description_of(figure_);
  data_["caption"] = time_caption(figure_);
  data_["style"] = check::fill_rules(".zelk-plot .b") + std::string(plot_texts::picture_css);
}

}  // namespace

std::optional<PictureSize> parse_picture_size(std::string_view text) {
  const std::size_t mark = text.find('x');
  if (mark == std::string_view::npos) return std::nullopt;
  const auto width = parse_whole<int>(text.substr(0, mark));
  const auto height = parse_whole<int>(text.substr(mark + 1));
  const auto is_good = [](std::optional<int> length) {
    return length && *length >= PictureSize::kLeast && *length <= PictureSize::kMost;
  };
  if (!is_good(width) || !is_good(height)) return std::nullopt;
  return PictureSize{*width, *height};
}

Picture plot_svg(const Figure& figure, const PictureOptions& options) {
  Drawing drawing(figure, options);
  return {render(plot_texts::picture_mustache, drawing.draw()), drawing.size()};
}

}  // namespace zelk::tool
