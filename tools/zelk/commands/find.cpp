#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/j1939.hpp"
#include "commands/commands.hpp"
#include "commands/mending_options.hpp"
#include "input/lookup.hpp"
#include "table/search.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

struct FindArguments {
  Query query;
  std::vector<std::string> words;  // of the command line, the files among them
  bool json = false;
  Mending mending;
};

ExitCode find(const FindArguments& arguments, Output& out) {
  const Query& query = arguments.query;
  DatabaseSet databases(arguments.mending);
  const bool all = databases.open(arguments.words);
  if (databases.databases().empty()) return kExitFailure;
  const std::vector<Hit> hits = find_all(databases, query);
  if (hits.empty()) print_nothing_found(databases, query);
  if (arguments.json) {
    print_hits_as_json(hits, out);
  } else {
    print_hits(hits, out);
  }
  return all && !hits.empty() ? kExitSuccess : kExitFailure;
}

/// Takes the object off the words, unless a group is looked for; what is left are the files.
///
/// @throws CLI::RequiredError when there are none
void part_words(FindArguments& arguments) {
  std::vector<std::string>& words = arguments.words;
  if (!arguments.query.is_by_group()) {
    arguments.query.object = words.front();
    words.erase(words.begin());
  }
  if (words.empty()) throw CLI::RequiredError("FILE");
}

/// Accepts whole numbers up to `largest`.
CLI::Validator number_up_to(std::uint32_t largest) {
  const auto check = [largest](const std::string& text) {
    const std::optional<std::uint32_t> number = parse_id(text);
    if (number && *number <= largest) return std::string();
    return fmt::format("{} is no number from 0 to 0x{:X}", in_quotes(text), largest);
  };
  return CLI::Validator(check, "");
}

}  // namespace

void add_find_command(CLI::App& app, Action& action) {
  CLI::App* command = app.add_subcommand("find", "Tell in which databases there is an object");
  const auto arguments = std::make_shared<FindArguments>();
  command
      ->add_option("OBJECT FILE", arguments->words,
                   "Name of an object of any kind, of signals and groups also MESSAGE.NAME, in\n"
                   "which * stands for any characters and ? for one; or identifier of a message,\n"
                   "decimal or hexadecimal behind 0x, with or without bit 31 for an extended\n"
                   "frame; and the databases to read. With --pgn and --j1939 there is no OBJECT.")
      ->required()
      ->option_text("...");
  CLI::Option* const group =
      command
          ->add_option("--pgn", arguments->query.group,
                       "Finds the messages of this J1939 parameter group number instead")
          ->type_name("N")
          ->check(number_up_to(j1939::kLargestGroupNumber));
  command
      ->add_option("--j1939", arguments->query.frame,
                   "Finds the message that describes the J1939 frame with this identifier")
      ->type_name("ID")
      ->check(number_up_to(0xFFFFFFFF))
      ->excludes(group);
  command->add_flag("--json", arguments->json, "An array of JSON objects, one in a line");
  add_mending_options(*command, arguments->mending);
  command->callback([arguments, &action] {
    part_words(*arguments);
    action = [arguments](Output& out) { return find(*arguments, out); };
  });
}

}  // namespace zelk::tool
