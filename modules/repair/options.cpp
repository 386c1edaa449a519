#include "repair/options.hpp"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "common/records.hpp"

namespace zelk::modules {

namespace {

std::string_view trimmed(std::string_view text) {
  const std::size_t begin = std::min(text.find_first_not_of(' '), text.size());
  text.remove_prefix(begin);
  return text.substr(0, text.find_last_not_of(' ') + 1);
}

[[noreturn]] void fail(const std::string& why) { throw Fault("the option: " + why); }

void apply(check::MendOptions& options, std::string_view name, std::string value) {
  if (value.empty()) fail(std::string(name) + " has no value");
  if (name == "--include") {
    options.include_folder = std::move(value);
  } else if (name == "--no-node") {
    options.no_node.insert(std::move(value));
  } else if (name == "--keep") {
    const std::vector<std::string_view> names = check::mend_names();
    if (std::ranges::find(names, value) == names.end()) fail("there is no mend \"" + value + '"');
    options.kept.insert(std::move(value));
  } else {
    fail("\"" + std::string(name) + "\" is none of --keep, --no-node, --include");
  }
}

}  // namespace

check::MendOptions parse_options(std::string_view text) {
  check::MendOptions options;
  for (text = trimmed(text); !text.empty();) {
    const std::size_t end = std::min(text.find(" --"), text.size());
    const std::string_view part = text.substr(0, end);
    const std::size_t blank = std::min(part.find(' '), part.size());
    apply(options, part.substr(0, blank), std::string(trimmed(part.substr(blank))));
    text = trimmed(text.substr(end));
  }
  return options;
}

}  // namespace zelk::modules
