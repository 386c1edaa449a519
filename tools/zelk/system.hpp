/// \file
/// What the program needs of the operating system it runs on.

#ifndef ZELK_TOOL_SYSTEM_HPP
#define ZELK_TOOL_SYSTEM_HPP

namespace zelk::tool {

/// Sees to it that a closed pipe is a failed write and not the end of the process, and that every
/// system gets the same bytes on standard output.
void prepare_process();

}  // namespace zelk::tool

#endif
