#include <memory>
#include <string>

#include "commands.hpp"
#include "database.hpp"
#include "text.hpp"

namespace zelk::tool {

namespace {

ExitCode rewrite(const std::string& in, const std::string& out_path) {
  Database database;
  const bool readable = database.read(in);
  for (const std::string& line : report_lines()) {
    print_error(behind_path(in, readable ? "warning: " + line : line));
  }
  if (!readable) return kExitFailure;
  if (zelk_symbols_shortened()) {
    print_error(fmt::format("{}: warning: {}", escaped(in), kShortenedWarning));
  }
  if (database.write(out_path)) return kExitSuccess;
  print_error(behind_path(out_path, zelk_format_error(ZELK_ERR_WRITE, 0, nullptr)));
  return kExitFailure;
}

}  // namespace

void add_rewrite_command(CLI::App& app, Action& action) {
  struct Arguments {
    std::string in;
    std::string out;
  };
  CLI::App* command = app.add_subcommand(
      "rewrite", "Read a database and write it again, in the library's own order and form");
  const auto arguments = std::make_shared<Arguments>();
  command->add_option("IN", arguments->in, "Database to read")->required()->option_text(" ");
  command
      ->add_option("OUT", arguments->out,
                   "File to write; it is created or replaced, and not checked for a full disk")
      ->required()
      ->option_text(" ");
  command->callback([arguments, &action] {
    action = [arguments](Output&) { return rewrite(arguments->in, arguments->out); };
  });
}

}  // namespace zelk::tool
