/// \file
/// Whole files in and out.

#ifndef ZELK_MODULES_COMMON_FILE_HPP
#define ZELK_MODULES_COMMON_FILE_HPP

#include <string>
#include <string_view>

namespace zelk::modules {

/// All bytes of a file.
/// @throws Fault when it cannot be read, or has more than 2 GiB
std::string read_file(const char* path);

/// Writes a file that does not exist; it is there when it is whole.
/// @throws Fault
void write_new_file(const char* path, std::string_view content);

}  // namespace zelk::modules

#endif
