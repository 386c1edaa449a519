#include <memory>
#include <string>

#include "commands.hpp"
#include "database.hpp"
#include "system.hpp"

namespace zelk::tool {

namespace {

struct Arguments {
  std::string in;
  std::string out;
  bool allow_cut = false;
};

ExitCode rewrite(const Arguments& arguments) {
  DatabaseFile file;
  ZelkDatabase* const database = open_and_report(file, arguments.in);
  if (!database) return kExitFailure;
  if (arguments.allow_cut) database->symbols_shortened = 0;
  const HeldSignals held;
  const ZelkError error = database->Write(arguments.out.c_str());
  if (error == ZelkErrorOk) return kExitSuccess;
  print_error(behind_path(arguments.out, write_complaint(error, *database)));
  return kExitFailure;
}

}  // namespace

void add_rewrite_command(CLI::App& app, Action& action) {
  CLI::App* command = app.add_subcommand(
      "rewrite", "Read a database and write it again, in the library's own order and form");
  const auto arguments = std::make_shared<Arguments>();
  command->add_option("IN", arguments->in, "Database to read")->required()->option_text(" ");
  command
      ->add_option("OUT", arguments->out,
                   "File to write; one that is there is replaced once all is written, or stays")
      ->required()
      ->option_text(" ");
  command->add_flag("--allow-cut", arguments->allow_cut,
                    "Write although names or units were too long for the library, and were cut");
  command->callback(
      [arguments, &action] { action = [arguments](Output&) { return rewrite(*arguments); }; });
}

}  // namespace zelk::tool
