#include "plot/traces.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <limits>

namespace zelk::tool {

namespace {

/// The places of one column of pixels.
class PixelColumn {
 public:
  explicit PixelColumn(std::vector<Place>& places) : places_(places) {}

  void add(const Place& place) {
    if (count_ > 0 && std::floor(place.x) != std::floor(first_.x)) end();
    if (count_ == 0) first_ = low_ = high_ = place;
    if (place.y < low_.y) {
      low_ = place;
      low_at_ = count_;
    }
    if (place.y > high_.y) {
      high_ = place;
      high_at_ = count_;
    }
    last_ = place;
    ++count_;
  }

  void end() {
    if (count_ == 0) return;
    const std::array<Place, 4> four = low_at_ < high_at_ ? std::array{first_, low_, high_, last_}
                                                         : std::array{first_, high_, low_, last_};
    for (std::size_t i = 0; i < four.size(); ++i) {
      if (i == 0 || four[i].x != four[i - 1].x || four[i].y != four[i - 1].y)
        places_.push_back(four[i]);
    }
    count_ = low_at_ = high_at_ = 0;
  }

 private:
  std::vector<Place>& places_;
  std::size_t count_ = 0;
  std::size_t low_at_ = 0;  // among them
  std::size_t high_at_ = 0;
  Place first_{};
  Place low_{};
  Place high_{};
  Place last_{};
};

bool is_gap(const Place& place) { return std::isnan(place.y); }

}  // namespace

std::vector<Place> trace(const Curve& curve, const PlotArea& area, const Span& times,
                         const Span& values) {
  std::vector<Place> places;
  PixelColumn column(places);
  for (std::size_t i = 0; i < curve.times.size(); ++i) {
    const double x = area.across(times, curve.times[i]);
    if (std::isfinite(curve.values[i])) {
      column.add({x, area.up(values, curve.values[i])});
      continue;
    }
    column.end();
    if (!places.empty() && !is_gap(places.back()))
      places.push_back({x, std::numeric_limits<double>::quiet_NaN()});
  }
  column.end();
  return places;
}

std::string path_data(const std::vector<Place>& places) {
  std::string data;
  for (std::size_t i = 0; i < places.size(); ++i) {
    if (is_gap(places[i])) continue;
    const bool begins = i == 0 || is_gap(places[i - 1]);
    const bool ends = i + 1 == places.size() || is_gap(places[i + 1]);
    fmt::format_to(std::back_inserter(data), "{}{:.1f} {:.1f}", begins ? 'M' : 'L', places[i].x,
                   places[i].y);
    if (begins && ends) data += "h0";
  }
  return data;
}

std::vector<Band> bands(const Lane& lane, const PlotArea& area, const Span& times) {
  std::vector<Band> result;
  bool is_narrow_before = false;
  for (const Stretch& stretch : lane.stretches) {
    const Band band{area.across(times, stretch.begin), area.across(times, stretch.end),
                    stretch.text};
    const bool is_narrow = band.end - band.begin < 1;
    if (is_narrow && is_narrow_before && band.begin - result.back().end < 1) {
      Band& last = result.back();
      last.end = band.end;
      if (last.text != band.text) last.text = Stretch::kSeveral;
    } else {
      result.push_back(band);
    }
    is_narrow_before = is_narrow;
  }
  return result;
}

}  // namespace zelk::tool
