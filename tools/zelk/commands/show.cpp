#include <memory>
#include <optional>
#include <string>

#include "commands/commands.hpp"
#include "commands/mending_options.hpp"
#include "input/opening.hpp"
#include "show/describe.hpp"
#include "show/show_object.hpp"

namespace zelk::tool {

namespace {

struct ShowArguments {
  std::string path;
  std::optional<std::string> object;
  bool svg = false;
  Mending mending;
};

ExitCode show(const ShowArguments& arguments, Output& out) {
  const auto& [path, object, svg, mending] = arguments;
  DatabaseFile file(mending);
  if (!file.open_and_report(path)) return kExitFailure;
  if (svg) return show_picture(path, file.encoded(), *object, out) ? kExitSuccess : kExitFailure;
  if (object) return show_object(path, file.encoded(), *object, out) ? kExitSuccess : kExitFailure;
  Describer(file.encoded(), out).database(path);
  return kExitSuccess;
}

}  // namespace

void add_show_command(CLI::App& app, Action& action) {
  CLI::App* command =
      app.add_subcommand("show", "Show a whole database, or what bears a name or identifier");
  const auto arguments = std::make_shared<ShowArguments>();
  command->add_option("FILE", arguments->path, "Database to read")->required()->option_text(" ");
  CLI::Option* const object =
      command
          ->add_option("OBJECT", arguments->object,
                       "Name of a node, message, signal, signal group, environment variable,\n"
                       "value table, signal type, attribute or category, of signals and groups\n"
                       "also MESSAGE.NAME, in which * stands for any characters and ? for one;\n"
                       "or identifier of a message, decimal or hexadecimal behind 0x, with or\n"
                       "without bit 31 for an extended frame. All that match are shown,\n"
                       "messages with a drawing of their bits: [ marks the most and ] the\n"
                       "least significant bit of a signal, # bits of several signals.")
          ->option_text(" ");
  command
      ->add_flag("--svg", arguments->svg,
                 "A picture of the message's bits, with a table of its signals, as an SVG\n"
                 "file on standard output")
      ->needs(object);
  add_mending_options(*command, arguments->mending);
  command->callback([arguments, &action] {
    action = [arguments](Output& out) { return show(*arguments, out); };
  });
}

}  // namespace zelk::tool
