/// \file
/// What stands under a path.

#ifndef ZELK_TOOL_TERM_FILE_TYPE_HPP
#define ZELK_TOOL_TERM_FILE_TYPE_HPP

#include <filesystem>
#include <string>
#include <system_error>

namespace zelk::tool {

/// Type of the file that `path`, in UTF-8, leads to; `not_found` or `none` when there is none.
inline std::filesystem::file_type file_type(const std::string& path) {
  std::error_code ignored;
  const std::filesystem::path native(std::u8string(path.begin(), path.end()));
  return std::filesystem::status(native, ignored).type();
}

inline bool exists(const std::string& path) {
  const std::filesystem::file_type type = file_type(path);
  return type != std::filesystem::file_type::not_found && type != std::filesystem::file_type::none;
}

}  // namespace zelk::tool

#endif
