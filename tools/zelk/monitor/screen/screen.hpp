/// \file
/// The full screen of `zelk monitor`.

#ifndef ZELK_TOOL_MONITOR_SCREEN_SCREEN_HPP
#define ZELK_TOOL_MONITOR_SCREEN_SCREEN_HPP

#include <optional>
#include <string>

namespace zelk::tool {

class Session;

/// Shows what a session receives on the terminal of standard output, until the user quits, there is
/// a `NotedStop`, or the session ends without any frame. Keys come from the terminal that controls
/// the process, because standard input may be a pipe. However it ends, the terminal is left as it
/// was.
///
/// @return why the terminal cannot do that, and then nothing was shown
std::optional<std::string> show_on_screen(Session& session);

}  // namespace zelk::tool

#endif
