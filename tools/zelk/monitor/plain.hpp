/// \file
/// The monitor without a screen.

#ifndef ZELK_TOOL_MONITOR_PLAIN_HPP
#define ZELK_TOOL_MONITOR_PLAIN_HPP

#include <chrono>

#include "monitor/session.hpp"
#include "monitor/state_table.hpp"

namespace zelk::tool {

/// Writes the state at even times, and at the end of the session, with notices on standard error.
///
/// @throws std::system_error when the output does not take it
void show_plain(Session& session, std::chrono::nanoseconds every, StateTable& table, Output& out);

}  // namespace zelk::tool

#endif
