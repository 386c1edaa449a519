/// \file
/// The folder from which files are included.

#ifndef ZELK_CHECK_INCLUDES_INCLUDE_FOLDER_HPP
#define ZELK_CHECK_INCLUDES_INCLUDE_FOLDER_HPP

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace zelk::check {

class IncludeFolder {
 public:
  /// @param path  in UTF-8
  explicit IncludeFolder(const std::string& path);

  /// What a name leads to.
  struct Place {
    std::filesystem::path path;   ///< canonical
    std::string name;             ///< below the folder, in UTF-8
    std::string_view fault = {};  ///< why the file is refused; empty when it is not; static
  };
  Place find(std::string_view name) const;

 private:
  bool is_below(const std::filesystem::path& path) const;

  std::filesystem::path path_;       ///< as it was given
  std::filesystem::path canonical_;  ///< empty when there is no such folder
};

/// A path of a text in UTF-8.
std::filesystem::path path_of(std::string_view text);

/// All bytes; none when they cannot be read, or are more than `most`.
std::optional<std::string> bytes_of(const std::filesystem::path& path, std::size_t most);

}  // namespace zelk::check

#endif
