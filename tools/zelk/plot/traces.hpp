/// \file
/// Curves and lanes at the resolution of a picture.

#ifndef ZELK_TOOL_PLOT_TRACES_HPP
#define ZELK_TOOL_PLOT_TRACES_HPP

#include <cstddef>
#include <string>
#include <vector>

#include "plot/figure.hpp"
#include "plot/ticks.hpp"

namespace zelk::tool {

/// A rectangle of a picture, in pixels.
struct PlotArea {
  double x;
  double y;
  double width;
  double height;

  double across(const Span& times, double time) const { return x + times.part(time) * width; }
  double up(const Span& values, double value) const {
    return y + height - values.part(value) * height;
  }
};

/// A place in a picture.
struct Place {
  double x;
  double y;  ///< NaN: the line ends in front of the next place
};

/// The places of a curve. Of those in one column of pixels the first, lowest, highest and last
/// stay: joined by lines they look as all do.
std::vector<Place> trace(const Curve& curve, const PlotArea& area, const Span& times,
                         const Span& values);

/// The data of an SVG path through the places: lines, and dots for lonely ones.
std::string path_data(const std::vector<Place>& places);

/// Where a lane shows one text, or several that are too narrow.
struct Band {
  double begin;
  double end;
  std::size_t text;  ///< as in `Stretch`
};

/// The stretches of a lane; neighbours narrower than a pixel are one band.
std::vector<Band> bands(const Lane& lane, const PlotArea& area, const Span& times);

}  // namespace zelk::tool

#endif
