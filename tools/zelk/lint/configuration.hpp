/// \file
/// Configuration files of lint.
///
///     {
///       "fail-on": "warning",
///       "rules": {
///         "unused-node": "off",
///         "long-name": "error",
///         "narrow-range": {"severity": "warning", "share": 0.1}
///       }
///     }
///
/// A rule has "off" or a severity, or an object with a severity and its parameter, each of which
/// may be missing.

#ifndef ZELK_TOOL_LINT_CONFIGURATION_HPP
#define ZELK_TOOL_LINT_CONFIGURATION_HPP

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "check/lint/settings.hpp"

namespace zelk::tool {

struct LintConfiguration {
  check::LintSettings settings{};
  std::optional<std::string> fail_on{};  ///< name of a severity
};

/// The name of a configuration file that is found by itself.
inline constexpr const char* kConfigurationName = ".zelk-lint.json";

/// The nearest configuration file: in the folder of `path`, or one around it.
///
/// @return empty when there is none
std::filesystem::path nearest_configuration(const std::filesystem::path& path);

/// @param path  for messages
/// @throws RequestError with the place, for what is no JSON, and for unknown keys and values
LintConfiguration parse_configuration(const std::string& path, std::string_view text);

/// `parse_configuration` of a file.
///
/// @throws RequestError also when it cannot be read
LintConfiguration read_configuration(const std::string& path);

/// The rule of this name.
///
/// @throws RequestError when there is none, with the names that come near
const check::Rule& rule_named(std::string_view name);

}  // namespace zelk::tool

#endif
