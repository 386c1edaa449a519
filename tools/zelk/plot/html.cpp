#include "plot/html.hpp"

#include <fmt/format.h>

#include <cmath>
#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <string_view>
#include <utility>
#include <vector>

#include "page/page.hpp"
#include "plot/packing.hpp"
#include "plot/summary.hpp"
#include "plot/texts.hpp"

namespace zelk::tool {

namespace {

using nlohmann::json;

constexpr std::size_t kMostShares = 6;  // texts of a lane whose share of the time is given
constexpr std::string_view kSeveralTexts = "several, too short to be kept apart";

/// Columns of times: curves of one message mostly have the same.
class TimeColumns {
 public:
  /// Index of the column in `columns`.
  std::size_t index_of(const Curve& curve) {
    const auto [known, is_new] = by_message_.try_emplace(curve.message, &curve, columns_.size());
    if (!is_new && known->second.first->times == curve.times) return known->second.second;
    known->second = {&curve, columns_.size()};
    columns_.push_back(packed_times(curve.times));
    return columns_.size() - 1;
  }
  json take() { return std::move(columns_); }

 private:
  std::map<std::string_view, std::pair<const Curve*, std::size_t>> by_message_;
  json columns_ = json::array();
};

json axis_data(const Axis& axis, TimeColumns& times) {
  json curves = json::array();
  for (const Curve& curve : axis.curves) {
    curves.push_back({{"name", curve.name},
                      {"times", times.index_of(curve)},
                      {"values", packed_values(curve.values)}});
  }
  return {{"unit", axis.unit}, {"curves", std::move(curves)}};
}

json lane_data(const Lane& lane) {
  std::vector<double> begins;
  std::vector<double> ends;
  std::vector<double> texts;  // -1 for several
  for (const Stretch& stretch : lane.stretches) {
    const bool is_one = stretch.text != Stretch::kSeveral;
    begins.push_back(stretch.begin);
    ends.push_back(stretch.end);
    texts.push_back(is_one ? static_cast<double>(stretch.text) : -1);
  }
  return {{"name", lane.name},
          {"texts", lane.texts},
          {"begins", packed_times(begins)},
          {"ends", packed_times(ends)},
          {"codes", packed_values(texts)}};
}

json figure_data(const Figure& figure) {
  TimeColumns times;
  json axes = json::array();
  for (const Axis& axis : figure.axes) axes.push_back(axis_data(axis, times));
  json lanes = json::array();
  for (const Lane& lane : figure.lanes) lanes.push_back(lane_data(lane));
  // As a text, for a script's numbers are doubles.
  return {{"origin", std::to_string(figure.origin)},
          {"isDated", figure.is_dated},
          {"begin", figure.begin},
          {"end", figure.end},
          {"times", times.take()},
          {"axes", std::move(axes)},
          {"lanes", std::move(lanes)}};
}

std::string number(double value) { return std::isnan(value) ? "–" : fmt::format("{:.7g}", value); }

json curve_row(const Curve& curve, const std::string& unit) {
  const Summary summary = summary_of(curve);
  return {{"name", curve.name},
          {"message", curve.message},
          {"unit", unit},
          {"least", number(summary.least)},
          {"most", number(summary.most)},
          {"mean", number(summary.mean)},
          {"count", curve.point_count}};
}

/// "Drive 80 %, Park 20 %".
std::string shares_text(const Lane& lane) {
  std::string result;
  std::size_t count = 0;
  for (const TextShare& each : shares_of(lane)) {
    if (count > 0) result += ", ";
    if (count++ == kMostShares) return result + "…";
    const bool is_one = each.text != Stretch::kSeveral;
    result += is_one ? std::string_view(lane.texts[each.text]) : kSeveralTexts;
    result += fmt::format(" {:.3g} %", each.share * 100);
  }
  return result;
}

json curve_rows(const Figure& figure) {
  json rows = json::array();
  for (const Axis& axis : figure.axes) {
    for (const Curve& curve : axis.curves) rows.push_back(curve_row(curve, axis.unit));
  }
  return rows;
}

json lane_rows(const Figure& figure) {
  json rows = json::array();
  for (const Lane& lane : figure.lanes) {
    rows.push_back({{"name", lane.name},
                    {"message", lane.message},
                    {"shares", shares_text(lane)},
                    {"count", lane.point_count}});
  }
  return rows;
}

/// Each uses what those in front of it declare.
std::vector<std::string_view> scripts() {
  namespace texts = plot_texts;
  return {texts::data_js,   texts::time_js,  texts::draw_js, texts::state_js,  texts::charts_js,
          texts::curves_js, texts::lanes_js, texts::view_js, texts::cursor_js, texts::page_js};
}

}  // namespace

bool can_plot_pages() { return !plot_texts::uPlot_iife_min_js.empty(); }

std::string plot_page(const Figure& figure) {
  return render(plot_texts::page_mustache, {{"title", figure.title},
                                            {"isDated", figure.is_dated},
                                            {"hasCurves", !figure.axes.empty()},
                                            {"hasLanes", !figure.lanes.empty()},
                                            {"curves", curve_rows(figure)},
                                            {"lanes", lane_rows(figure)},
                                            {"data", script_json(figure_data(figure))},
                                            {"licence", plot_texts::uplot_licence_txt},
                                            {"libraryStyle", plot_texts::uPlot_min_css},
                                            {"libraryScript", plot_texts::uPlot_iife_min_js},
                                            {"style", plot_texts::page_css},
                                            {"scripts", scripts()}});
}

}  // namespace zelk::tool
