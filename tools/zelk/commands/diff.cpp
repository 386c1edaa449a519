#include <memory>
#include <string>

#include "commands/commands.hpp"
#include "diff/differences.hpp"
#include "input/database.hpp"
#include "table/rows.hpp"

namespace zelk::tool {

namespace {

constexpr const char* kDiffExitCodes =
    "Exit codes:\n"
    "  0  the databases are the same, but perhaps for their order\n"
    "  1  they differ\n"
    "  2  a file cannot be read, the output cannot be written, or the command line is wrong";

struct Arguments {
  std::string before;
  std::string after;
  bool json = false;
};

void tell(const Difference& difference, Output& out) {
  out.line("{} {}", sign_of(difference), difference.object);
  const Output::Indent indent(out);
  const Output::Indent indent_more(out);
  for (const Change& change : difference.changes)
    out.line("{}: {} -> {}", change.field, change.before.shown, change.after.shown);
}

Json json_of(const Difference& difference) {
  Json object;
  object["difference"] = difference.presence == Presence::kAdded     ? "added"
                         : difference.presence == Presence::kRemoved ? "removed"
                                                                     : "changed";
  object.update(difference.identity);
  if (difference.presence != Presence::kChanged) return object;
  Json& changes = object["changes"] = Json::array();
  for (const Change& change : difference.changes) {
    Json entry = change.labels;
    entry["before"] = change.before.value;
    entry["after"] = change.after.value;
    changes.push_back(std::move(entry));
  }
  return object;
}

ExitCode diff(const Arguments& arguments, Output& out) {
  DatabaseFile old_file;
  DatabaseFile new_file;
  const bool has_before = open_and_report(old_file, arguments.before) != nullptr;
  const bool has_after = open_and_report(new_file, arguments.after) != nullptr;
  if (!has_before || !has_after) return kExitTrouble;
  bool differs = false;
  JsonArray array(out);
  for_each_difference(old_file.encoded(), new_file.encoded(), [&](const Difference& difference) {
    differs = true;
    if (arguments.json) {
      array.element(json_of(difference));
    } else {
      tell(difference, out);
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
  const auto arguments = std::make_shared<Arguments>();
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
  command->callback([arguments, &action, &failure] {
    failure = kExitTrouble;
    action = [arguments](Output& out) { return diff(*arguments, out); };
  });
}

}  // namespace zelk::tool
