#include "commands/name_filter_options.hpp"

namespace zelk::tool {

void add_name_filter_options(CLI::App& command, NameFilter& filter) {
  command
      .add_option("--message", filter.messages,
                  "Only messages of this name, in which * stands for any characters and ? for\n"
                  "one; may be given several times")
      ->type_name("NAME")
      ->allow_extra_args(false);
  command
      .add_option("--signal", filter.signals,
                  "Only signals of this name, or of this message and name \"M.S\"; likewise")
      ->type_name("NAME")
      ->allow_extra_args(false);
}

}  // namespace zelk::tool
