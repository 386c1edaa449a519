/// \file
/// The keys of the full screen, explained.

#ifndef ZELK_TOOL_MONITOR_SCREEN_HELP_HPP
#define ZELK_TOOL_MONITOR_SCREEN_HELP_HPP

#include <vector>

#include "monitor/screen/line.hpp"

namespace zelk::tool {

std::vector<ScreenLine> help_lines(std::size_t columns, const CharacterSet& characters);

}  // namespace zelk::tool

#endif
