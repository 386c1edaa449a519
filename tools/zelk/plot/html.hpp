/// \file
/// Plots as pages.

#ifndef ZELK_TOOL_PLOT_HTML_HPP
#define ZELK_TOOL_PLOT_HTML_HPP

#include <string>

#include "plot/figure.hpp"

namespace zelk::tool {

/// Whether this build has the plotting library that pages contain.
bool can_plot_pages();

/// A self-contained page of HTML that needs no network: charts to zoom, pan and read, and a table.
///
/// A curve takes three to five bytes for each point as a rule, at most 22; the rest of a page 90
/// kB.
///
/// Precondition: `can_plot_pages`.
std::string plot_page(const Figure& figure);

}  // namespace zelk::tool

#endif
