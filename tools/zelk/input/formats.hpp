/// \file
/// File formats, and the modules that read and write them.

#ifndef ZELK_TOOL_INPUT_FORMATS_HPP
#define ZELK_TOOL_INPUT_FORMATS_HPP

#include <optional>
#include <string>
#include <string_view>

namespace zelk::tool {

/// What reads or writes a file: the library itself, or a module.
struct Format {
  std::string module;  ///< file of the module; empty for the library's own format

  bool is_own() const { return module.empty(); }
};

/// File of a module that comes with the program; these lie in a folder beside the library.
///
/// @param module  its name without folder and extension: "zelk-json"
std::string module_path(std::string_view module);

/// The format of a name, "dbc", "kcd" or "json" (case ignored), or else of the module in the file
/// `name`.
Format format_named(const std::string& name);

/// The format that the extension of a file names, case ignored; none for another extension.
std::optional<Format> format_of_file(std::string_view path);

/// Why a command that writes the library's own format only does not take the file `path`, by its
/// extension; empty when it does.
std::string fault_of_other_format(const std::string& path);

/// "dbc, kcd, json".
std::string format_names();

}  // namespace zelk::tool

#endif
