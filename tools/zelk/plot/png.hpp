/// \file
/// Pictures as pixels.

#ifndef ZELK_TOOL_PLOT_PNG_HPP
#define ZELK_TOOL_PLOT_PNG_HPP

#include <string>

#include "plot/svg.hpp"

namespace zelk::tool {

/// Why this system writes no PNG, as an end of a sentence about a file; null when it does.
extern const char* const kWhyNoPng;

/// A picture of `plot_svg` in the form PNG, in the light scheme.
///
/// @param size   of the picture, as it was drawn
/// @param scale  pixels for each one of the picture, above 0
/// @throws RequestError that says why when it cannot be drawn
std::string png_of(const std::string& svg, const PictureSize& size, double scale);

}  // namespace zelk::tool

#endif
