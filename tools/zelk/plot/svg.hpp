/// \file
/// Plots as pictures.

#ifndef ZELK_TOOL_PLOT_SVG_HPP
#define ZELK_TOOL_PLOT_SVG_HPP

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "plot/figure.hpp"

namespace zelk::tool {

/// Width and height of a picture, in pixels.
struct PictureSize {
  static constexpr int kLeast = 200;
  static constexpr int kMost = 20'000;

  int width;
  int height;
};

/// "1200x700", within the limits.
std::optional<PictureSize> parse_picture_size(std::string_view text);

struct PictureOptions {
  std::optional<PictureSize> size{};  ///< none: as wide as a page, and as high as it takes
};

/// A picture as it was drawn.
struct Picture {
  std::string svg;
  PictureSize size;
};

/// A picture in SVG that needs no other file: a panel for each axis, lanes below them, one axis of
/// time for all. It follows the light or dark scheme of its viewer.
///
/// @throws RequestError when the size has no room for all of it
Picture plot_svg(const Figure& figure, const PictureOptions& options);

}  // namespace zelk::tool

#endif
