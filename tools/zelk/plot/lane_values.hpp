/// \file
/// Signals that are enumerations or switches, and the texts of their values.

#ifndef ZELK_TOOL_PLOT_LANE_VALUES_HPP
#define ZELK_TOOL_PLOT_LANE_VALUES_HPP

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/seeded_hash.hpp"
#include "zelk/records.h"

namespace zelk::tool {

/// Whether a signal is an enumeration or a switch, and not a quantity: it has one bit, or value
/// descriptions for half of its range, or has no unit and descriptions that count from 0 on. One
/// that has descriptions for a few special values only ("not available") is a quantity.
bool is_enumeration(const sigblk& signal);

/// The values of an enumeration, with a number for each.
class LaneValues {
 public:
  /// Undescribed values that are told apart; the others have one number.
  static constexpr std::size_t kMostOthers = 1000;

  /// @param signal  one for which `is_enumeration`
  explicit LaneValues(const sigblk& signal);

  /// The number of a value.
  std::size_t number_of(double physical);

  /// The texts of all values that are described or were asked for, in the order of the values, and
  /// for each number the index of its text.
  std::pair<std::vector<std::string>, std::vector<std::size_t>> texts() const;

 private:
  struct Value {
    std::int64_t raw;
    std::string text;
  };

  std::size_t enter(std::int64_t raw, std::string text);
  std::size_t number_of_raw(std::int64_t raw);

  double factor_;
  double offset_;
  std::vector<Value> values_;
  std::unordered_map<std::int64_t, std::size_t, SeededHash> numbers_;  // by raw values
  std::size_t described_ = 0;
  std::optional<std::size_t> rest_;  // the number of all values that are too many
  std::optional<std::pair<double, std::size_t>> last_;
};

}  // namespace zelk::tool

#endif
