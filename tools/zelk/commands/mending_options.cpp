#include "commands/mending_options.hpp"

#include <fmt/ranges.h>

#include <algorithm>
#include <string>
#include <vector>

#include "check/includes/mend.hpp"
#include "input/lookup.hpp"
#include "term/system.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

/// What is wrong with the name of a mend; empty when nothing is.
std::string fault_of_mend_name(const std::string& name) {
  const std::vector<std::string_view> names = check::mend_names();
  if (std::ranges::find(names, name) != names.end()) return "";
  return fmt::format("there is no mend {}; the mends are {}", in_quotes(name),
                     fmt::join(names, ", "));
}

std::string fault_of_folder(const std::string& path) {
  if (file_type(path) == std::filesystem::file_type::directory) return "";
  return fmt::format("there is no folder {}", in_quotes(path));
}

}  // namespace

std::vector<CLI::Option*> add_mend_options(CLI::App& command, check::MendOptions& options) {
  const auto keep = [&options](const std::string& name) { options.kept.insert(name); };
  const auto no_node = [&options](const std::string& name) { options.no_node.insert(name); };
  CLI::Option* const kept =
      command.add_option_function<std::string>("--keep", keep, "Leave out the mends of this name")
          ->type_name("MEND")
          ->check(CLI::Validator(fault_of_mend_name, ""));
  CLI::Option* const placeholder =
      command
          .add_option_function<std::string>("--no-node", no_node,
                                            "This name of a node only stands for no node")
          ->type_name("NAME");
  for (CLI::Option* const option : {kept, placeholder}) {
    option->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->trigger_on_parse();
  }
  CLI::Option* const include =
      command
          .add_option("--include", options.include_folder,
                      "Take files below this folder in for comments that name them:\n"
                      "CM_ \"IMPORT other.dbc\";")
          ->type_name("DIR")
          ->check(CLI::Validator(fault_of_folder, ""));
  return {kept, placeholder, include};
}

void add_mending_options(CLI::App& command, Mending& mending) {
  CLI::Option* const repair =
      command.add_flag("--repair", mending.is_wanted,
                       "Mend files that cannot be read on the way, in memory, as zelk repair does");
  std::vector<CLI::Option*> options = add_mend_options(command, mending.options);
  options.push_back(command.add_flag("--verbose", mending.lists_all, "Tell each mend"));
  for (CLI::Option* const option : options) option->needs(repair);
}

}  // namespace zelk::tool
