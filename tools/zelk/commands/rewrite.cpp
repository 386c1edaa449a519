#include <memory>
#include <string>

#include "commands/commands.hpp"
#include "commands/mending_options.hpp"
#include "input/formats.hpp"
#include "input/lookup.hpp"
#include "input/opening.hpp"
#include "save/rounding.hpp"
#include "save/saving.hpp"

namespace zelk::tool {

namespace {

struct RewriteArguments {
  std::string in;
  std::string out;
  bool allow_cut = false;
  bool allow_rounding = false;
  Mending mending;
};

/// @throws RequestError when the database cannot be written, or not without loss
void write(const RewriteArguments& arguments, const DatabaseFile& file, ZelkDatabase& database) {
  if (arguments.allow_cut) database.symbols_shortened = 0;
  check_roundings(roundings_of(file.encoded()), arguments.out, arguments.allow_rounding);
  // A module may give what no DBC file can hold.
  if (!format_of_file(arguments.in).value_or(Format{}).is_own())
    check_trial_write(file.encoded(), arguments.out);
  save(database, arguments.out, [&] { return database.Write(arguments.out.c_str()); });
}

ExitCode rewrite(const RewriteArguments& arguments) {
  DatabaseFile file(arguments.mending);
  ZelkDatabase* const database = file.open_and_report(arguments.in);
  if (!database) return kExitFailure;
  try {
    write(arguments, file, *database);
  } catch (const RequestError& error) {
    print_error(behind_path(arguments.out, error.what()));
    return kExitFailure;
  }
  return kExitSuccess;
}

}  // namespace

void add_rewrite_command(CLI::App& app, Action& action) {
  CLI::App* command = app.add_subcommand(
      "rewrite", "Read a database and write it again, in the library's own order and form");
  const auto arguments = std::make_shared<RewriteArguments>();
  command->add_option("IN", arguments->in, "Database to read")->required()->option_text(" ");
  command
      ->add_option("OUT", arguments->out,
                   "File to write; one that is there is replaced once all is written, or stays")
      ->required()
      ->option_text(" ")
      ->check(fault_of_other_format);
  command->add_flag("--allow-cut", arguments->allow_cut,
                    "Write although names or units were too long for the library, and were cut");
  command->add_flag(
      "--allow-rounding", arguments->allow_rounding,
      "Write although numbers have more digits than the 14 that a file keeps, and are\n"
      "rounded");
  add_mending_options(*command, arguments->mending);
  command->callback(
      [arguments, &action] { action = [arguments](Output&) { return rewrite(*arguments); }; });
}

}  // namespace zelk::tool
