/// \file
/// The options by which files are mended: those of `zelk repair`, and of every command that reads.

#ifndef ZELK_TOOL_COMMANDS_MENDING_OPTIONS_HPP
#define ZELK_TOOL_COMMANDS_MENDING_OPTIONS_HPP

#include <CLI/CLI.hpp>

#include "input/opening.hpp"

namespace zelk::tool {

/// "--keep", "--no-node" and "--include".
///
/// @param options  must outlive `command`
std::vector<CLI::Option*> add_mend_options(CLI::App& command, check::MendOptions& options);

/// "--repair", with which these count, and "--verbose".
///
/// @param mending  must outlive `command`
void add_mending_options(CLI::App& command, Mending& mending);

}  // namespace zelk::tool

#endif
