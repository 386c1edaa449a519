#include "base/database_names.hpp"

#include "base/characters.hpp"

namespace zelk {

namespace {

constexpr std::size_t kLongestName = 32;

}  // namespace

std::string database_name(std::string_view path) {
  std::string name;
  const std::string_view file = path.substr(path.find_last_of("/\\") + 1);
  for (const char c : file.substr(0, file.rfind('.'))) {
    if (is_letter(c) || (is_digit(c) && !name.empty())) name += c;
  }
  return name.empty() ? "database" : name.substr(0, kLongestName);
}

std::string numbered_name(std::string_view name, unsigned number) {
  const std::string suffix = "_" + std::to_string(number);
  return std::string(name.substr(0, kLongestName - suffix.size())) + suffix;
}

}  // namespace zelk
