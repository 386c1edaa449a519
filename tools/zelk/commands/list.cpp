#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "commands/commands.hpp"
#include "commands/mending_options.hpp"
#include "table/listing.hpp"

namespace zelk::tool {

namespace {

struct ListArguments : Listing {
  std::string kind_name;
  std::vector<std::string> paths;
  bool count = false;
  bool json = false;
  bool csv = false;
  Mending mending;
};

ExitCode list(const ListArguments& arguments, Output& out) {
  DatabaseSet databases(arguments.mending);
  const bool all = databases.open(arguments.paths);
  if (databases.databases().empty()) return kExitFailure;
  if (!check_attributes(arguments, databases)) return kExitFailure;
  if (arguments.count) {
    out.line("{}", count_objects(arguments, databases));
  } else {
    list_objects(arguments, databases,
                 arguments.json  ? make_json_rows
                 : arguments.csv ? make_csv_rows
                                 : make_text_rows,
                 out);
  }
  return all ? kExitSuccess : kExitFailure;
}

/// @throws CLI::ValidationError when the kind does not have what is asked for
void check_columns(const ListArguments& arguments) {
  const ObjectKind& kind = *arguments.kind;
  if (!arguments.attributes.empty() && !kind.attribute_type)
    throw CLI::ValidationError("--attribute", fmt::format("{} have no attributes", kind.plural));
  if (arguments.comments && !kind.has_comments)
    throw CLI::ValidationError("--comments", fmt::format("{} have no comments", kind.plural));
}

std::vector<std::string> kind_names() {
  std::vector<std::string> names;
  for (const ObjectKind& kind : object_kinds()) names.emplace_back(kind.plural);
  return names;
}

void add_column_options(CLI::App& command, ListArguments& arguments) {
  command
      .add_option("--attribute", arguments.attributes,
                  "Adds a column with the values of this attribute, the default where an object\n"
                  "has none of its own; may be given several times")
      ->type_name("NAME")
      ->allow_extra_args(false);
  command.add_flag("--comments", arguments.comments, "Adds a column with the comments");
}

void add_form_options(CLI::App& command, ListArguments& arguments) {
  CLI::Option* const json = command.add_flag(
      "--json", arguments.json, "An array of JSON objects in place of a table, one in a line");
  command.add_flag("--csv", arguments.csv, "CSV (RFC 4180) in place of a table")->excludes(json);
  command.add_flag("--count", arguments.count, "Only the number of rows");
}

}  // namespace

void add_list_command(CLI::App& app, Action& action) {
  CLI::App* command = app.add_subcommand("list", "List all objects of a kind, one in a row");
  const auto arguments = std::make_shared<ListArguments>();
  command
      ->add_option("KIND", arguments->kind_name,
                   fmt::format("What to list:\n{}", fmt::join(kind_names(), ", ")))
      ->required()
      ->option_text(" ")
      ->check(CLI::IsMember(kind_names()).description(""));
  command
      ->add_option("FILE", arguments->paths,
                   "Databases to read; of several, each row begins with its database's name")
      ->required()
      ->option_text("...");
  command
      ->add_option("--where", arguments->patterns,
                   "Only objects of this name, in which * stands for any characters and ? for\n"
                   "one; of signals and groups also of \"Message.Name\"; of values and\n"
                   "descriptions that of the attribute, signal or variable; may be given several\n"
                   "times")
      ->type_name("NAME")
      ->allow_extra_args(false);
  command->add_flag("-i,--ignore-case", arguments->ignore_case,
                    "Names match whatever the case of their letters");
  add_column_options(*command, *arguments);
  add_form_options(*command, *arguments);
  add_mending_options(*command, arguments->mending);
  command->callback([arguments, &action] {
    arguments->kind =
        &*std::ranges::find(object_kinds(), arguments->kind_name, &ObjectKind::plural);
    arguments->database_names = arguments->paths.size() > 1;
    check_columns(*arguments);
    action = [arguments](Output& out) { return list(*arguments, out); };
  });
}

}  // namespace zelk::tool
