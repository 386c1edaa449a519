#include "plot/lane_values.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <unordered_set>

#include "base/list.hpp"
#include "base/quoting.hpp"
#include "base/seeded_hash.hpp"
#include "base/signal_bits.hpp"
#include "base/text_view.hpp"
#include "words/record_words.hpp"

namespace zelk::tool {

namespace {

constexpr std::uint16_t kMostBits = 32;  // that value descriptions have

/// A number of a value description as the signal's raw value.
std::int64_t raw_value(const sigblk& signal, std::int32_t described) {
  return is_signed(signal) ? described
                           : static_cast<std::int64_t>(static_cast<std::uint32_t>(described));
}

/// How many values the signal's range has, or its bits where that says nothing.
double value_count(const sigblk& signal) {
  const double bits = std::ldexp(1.0, signal.length);
  const double range = (signal.maximum - signal.minimum) / std::abs(signal.factor) + 1;
  return range > 1 && range < bits ? range : bits;
}

/// Whether each raw value has a physical one of its own, from which it follows.
bool keeps_values_apart(const sigblk& signal) {
  const double factor = std::abs(signal.factor);
  const double most = std::abs(signal.offset) + std::ldexp(factor, signal.length);
  return std::isfinite(most) && most * std::numeric_limits<double>::epsilon() < factor;
}

}  // namespace

bool is_enumeration(const sigblk& signal) {
  if (is_ieee(signal) || signal.length > kMostBits || !keeps_values_apart(signal)) return false;
  if (signal.length == 1) return true;
  std::unordered_set<std::int32_t, SeededHash> described;
  for (const val& value : each<const val>(signal.values)) described.insert(value.value);
  const auto count = static_cast<double>(described.size());
  if (count < 2) return false;
  if (count * 2 >= value_count(signal)) return true;
  return view(signal.unit).empty() && described.contains(0) && described.contains(1);
}

LaneValues::LaneValues(const sigblk& signal) : factor_(signal.factor), offset_(signal.offset) {
  for (const val& value : each<const val>(signal.values))
    enter(raw_value(signal, value.value), utf8(view(value.text)));
  described_ = values_.size();
}

/// Of several descriptions of a value the first counts.
std::size_t LaneValues::enter(std::int64_t raw, std::string text) {
  const auto [entry, is_new] = numbers_.try_emplace(raw, values_.size());
  if (is_new) values_.push_back({raw, std::move(text)});
  return entry->second;
}

std::size_t LaneValues::number_of_raw(std::int64_t raw) {
  const auto known = numbers_.find(raw);
  if (known != numbers_.end()) return known->second;
  if (rest_) return *rest_;
  if (values_.size() - described_ < kMostOthers)
    return enter(raw, check::number_text(static_cast<double>(raw) * factor_ + offset_));
  rest_ = values_.size();
  values_.push_back({std::numeric_limits<std::int64_t>::max(), "other values"});
  return *rest_;
}

std::size_t LaneValues::number_of(double physical) {
  if (last_ && last_->first == physical) return last_->second;
  const double raw = std::round((physical - offset_) / factor_);
  last_ = {physical, number_of_raw(static_cast<std::int64_t>(raw))};
  return last_->second;
}

std::pair<std::vector<std::string>, std::vector<std::size_t>> LaneValues::texts() const {
  std::vector<std::size_t> order(values_.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::ranges::stable_sort(
      order, [this](std::size_t a, std::size_t b) { return values_[a].raw < values_[b].raw; });
  std::pair<std::vector<std::string>, std::vector<std::size_t>> result;
  result.second.resize(order.size());
  for (const std::size_t number : order) {
    result.second[number] = result.first.size();
    result.first.push_back(values_[number].text);
  }
  return result;
}

}  // namespace zelk::tool
