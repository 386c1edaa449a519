/// \file
/// The options that choose messages and signals by name.

#ifndef ZELK_TOOL_COMMANDS_NAME_FILTER_OPTIONS_HPP
#define ZELK_TOOL_COMMANDS_NAME_FILTER_OPTIONS_HPP

#include <CLI/CLI.hpp>

#include "base/name_filter.hpp"

namespace zelk::tool {

/// Adds --message and --signal.
///
/// @param filter  must outlive the parsing
void add_name_filter_options(CLI::App& command, NameFilter& filter);

}  // namespace zelk::tool

#endif
