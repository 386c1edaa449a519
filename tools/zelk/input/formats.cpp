#include "input/formats.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "term/system.hpp"
#include "term/text.hpp"
#include "zelk/library.h"

namespace zelk::tool {

namespace {

struct NamedFormat {
  std::string_view name;    // and extension
  std::string_view module;  // without folder and extension; empty for the library's own format
};

constexpr NamedFormat kFormats[] = {{"dbc", ""}, {"kcd", "zelk-kcd"}, {"json", "zelk-json"}};

std::optional<Format> find(std::string_view name) {
  const auto found = std::ranges::find(kFormats, lowered(name), &NamedFormat::name);
  if (found == std::end(kFormats)) return std::nullopt;
  return Format{found->module.empty() ? "" : module_path(found->module)};
}

}  // namespace

std::string module_path(std::string_view module) {
  constexpr int kNewestInterface = 0;  // the answer about the interface does not count
  std::array<char, 1 << 15> library{};
  ZELKMSGetModuleParameters(library.data(), static_cast<int>(library.size()), nullptr, 0,
                            kNewestInterface);
  const std::string_view path = library.data();
  std::string result(path.substr(0, path.find_last_of("/\\") + 1));
  return result.append("zelkms/").append(module).append(kModuleExtension);
}

Format format_named(const std::string& name) {
  if (const std::optional<Format> format = find(name)) return *format;
  // A bare name would be looked for in the system's folders only.
  const bool is_bare = name.find_first_of("/\\") == std::string::npos;
  return {is_bare ? "./" + name : name};
}

std::optional<Format> format_of_file(std::string_view path) {
  const std::size_t point = path.find_last_of("./\\");
  if (point == std::string_view::npos || path[point] != '.') return std::nullopt;
  return find(path.substr(point + 1));
}

std::string fault_of_other_format(const std::string& path) {
  const std::optional<Format> format = format_of_file(path);
  if (!format || format->is_own()) return "";
  return fmt::format(
      "{} is no DBC file, and this command writes no others; zelk convert converts them",
      in_quotes(path));
}

std::string format_names() {
  std::string names;
  for (const NamedFormat& format : kFormats)
    names.append(names.empty() ? "" : ", ").append(format.name);
  return names;
}

}  // namespace zelk::tool
