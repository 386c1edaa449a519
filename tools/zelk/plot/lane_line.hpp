/// \file
/// Lanes as lines of characters.

#ifndef ZELK_TOOL_PLOT_LANE_LINE_HPP
#define ZELK_TOOL_PLOT_LANE_LINE_HPP

#include <cstddef>
#include <set>
#include <string>
#include <vector>

#include "plot/figure.hpp"
#include "plot/styled_line.hpp"
#include "plot/ticks.hpp"
#include "plot/traces.hpp"

namespace zelk::tool {

/// Draws lanes, and remembers the letters that stood for texts that did not
/// fit.
///
///   |Park----|Drive-------|N|R|N-|Drive--
class LaneTexts {
 public:
  explicit LaneTexts(bool ascii) : ascii_(ascii) {}

  /// Appends `width` columns.
  void append(StyledLine& line, const Lane& lane, const Span& times, std::size_t width);

  /// What the letters mean: a line for each lane that has any.
  std::vector<std::string> legend() const;

 private:
  struct Letters {
    const Lane* lane;
    std::set<std::size_t> texts;  // `Stretch::kSeveral` too
  };

  std::string run(const Band& band, std::size_t columns, Letters& letters) const;

  bool ascii_;
  std::vector<Letters> used_;
};

}  // namespace zelk::tool

#endif
