/// \file
/// Plots in characters.

#ifndef ZELK_TOOL_PLOT_TERMINAL_HPP
#define ZELK_TOOL_PLOT_TERMINAL_HPP

#include <string>

#include "plot/figure.hpp"
#include "term/system.hpp"

namespace zelk::tool {

/// Lines that show a figure: a chart for each axis, a line for each lane, and
/// the axis of time. They fit the terminal's columns, from 40 on, and its
/// lines, unless there is too much to show: a chart has at least four lines.
std::string draw_in_terminal(const Figure& figure, const TerminalForm& form);

}  // namespace zelk::tool

#endif
