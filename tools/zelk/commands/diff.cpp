#include <memory>
#include <string>

#include "commands/commands.hpp"
#include "commands/mending_options.hpp"
#include "diff/diff_json.hpp"
#include "diff/diff_text.hpp"
#include "input/opening.hpp"

namespace zelk::tool {

namespace {

constexpr const char* kDiffExitCodes =
    "Exit codes:\n"
    "  0  the databases are the same, but perhaps for their order\n"
    "  1  they differ\n"
    "  2  a file cannot be read, the output cannot be written, or the command line is wrong";

struct DiffArguments {
  std::string before;
  std::string after;
  bool json = false;
  Mending mending;
};

ExitCode diff(const DiffArguments& arguments, Output& out) {
  DatabaseFile old_file(arguments.mending);
  DatabaseFile new_file(arguments.mending);
  const bool has_before = old_file.open_and_report(arguments.before) != nullptr;
  const bool has_after = new_file.open_and_report(arguments.after) != nullptr;
  if (!has_before || !has_after) return kExitTrouble;
  bool differs = false;
  JsonArray array(out);
  check::for_each_difference(old_file.encoded(), new_file.encoded(),
                             [&](const check::Difference& difference) {
                               differs = true;
                               if (arguments.json) {
                                 add_difference(array, difference);
                               } else {
                                 print_difference(difference, out);
                               }
                             });
  if (arguments.json) array.finish();
  return differs ? kExitDifferent : kExitSuccess;
}

}  // namespace

void add_diff_command(CLI::App& app, Action& action, ExitCode& failure) {
  CLI::App* command =
      app.add_subcommand("diff", "Tell what differs between two databases, object by object");
  command->footer(kDiffExitCodes);
  const auto arguments = std::make_shared<DiffArguments>();
  command->add_option("A", arguments->before, "Database to compare")->required()->option_text(" ");
  command
      ->add_option(
          "B", arguments->after,
          "Database to compare it with: + stands before objects that only this one has,\n"
          "- before those that only A has, and ~ before those that both have, with what\n"
          "they have in A and in B. Messages are the same by identifier, or else by name,\n"
          "all other objects by name. Order is no difference.")
      ->required()
      ->option_text(" ");
  command->add_flag("--json", arguments->json, "An array of JSON objects, one in a line");
  add_mending_options(*command, arguments->mending);
  command->callback([arguments, &action, &failure] {
    failure = kExitTrouble;
    action = [arguments](Output& out) { return diff(*arguments, out); };
  });
}

}  // namespace zelk::tool
