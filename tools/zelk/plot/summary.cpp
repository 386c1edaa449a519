#include "plot/summary.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

namespace zelk::tool {

Summary summary_of(const Curve& curve) {
  constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
  Summary result{kNone, kNone, kNone};
  double total = 0;
  double total_time = 0;
  for (std::size_t i = 0; i < curve.values.size(); ++i) {
    const double value = curve.values[i];
    if (!std::isfinite(value)) continue;
    result.least = std::fmin(result.least, value);
    result.most = std::fmax(result.most, value);
    if (i + 1 == curve.values.size()) break;
    const double lasts = curve.times[i + 1] - curve.times[i];
    total += value * lasts;
    total_time += lasts;
  }
  result.mean = total_time > 0 ? total / total_time : (result.least + result.most) / 2;
  return result;
}

std::vector<TextShare> shares_of(const Lane& lane) {
  std::map<std::size_t, double> seconds;
  double total = 0;
  for (const Stretch& stretch : lane.stretches) {
    seconds[stretch.text] += stretch.end - stretch.begin;
    total += stretch.end - stretch.begin;
  }
  std::vector<TextShare> shares;
  shares.reserve(seconds.size());
  for (const auto& [text, time] : seconds) shares.push_back({text, total > 0 ? time / total : 1});
  std::ranges::stable_sort(shares, std::ranges::greater{}, &TextShare::share);
  return shares;
}

}  // namespace zelk::tool
