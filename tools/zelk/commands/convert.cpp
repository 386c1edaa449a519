#include <memory>
#include <optional>
#include <string>

#include "commands/commands.hpp"
#include "commands/mending_options.hpp"
#include "convert/conversion.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

struct ConvertArguments : Conversion {
  std::string from_name;  // empty: by the extension
  std::string to_name;
};

/// @throws CLI::ValidationError when neither the option nor the file's extension names a format
Format format_of(const std::string& path, const char* option, const std::string& name) {
  if (!name.empty()) return format_named(name);
  if (const std::optional<Format> format = format_of_file(path)) return *format;
  throw CLI::ValidationError(
      option, fmt::format("the extension of {} tells no format; this option does: {}, or the "
                          "file of a module",
                          in_quotes(path), format_names()));
}

void add_module_options(CLI::App& command, ConvertArguments& arguments) {
  command.add_option("--from", arguments.from_name, "Format of IN, whatever its extension")
      ->type_name("FORMAT|MODULE");
  command.add_option("--to", arguments.to_name, "Format of OUT, likewise")
      ->type_name("FORMAT|MODULE");
  command
      .add_option("--option", arguments.option, "What is asked of the modules, in their own words")
      ->type_name("TEXT");
  command
      .add_option("--import-function", arguments.import_function,
                  "Name of the function that reads IN, of a module that has another than\n"
                  "zelk_import")
      ->type_name("NAME");
  command
      .add_option("--export-function", arguments.export_function,
                  "Name of the function that writes OUT, likewise for zelk_export")
      ->type_name("NAME");
}

}  // namespace

void add_convert_command(CLI::App& app, Action& action) {
  CLI::App* command = app.add_subcommand("convert", "Convert a database to another file format");
  command->footer(
      fmt::format("A FORMAT is one of {}, in this order the library's own one and those of its\n"
                  "modules. A MODULE is the file of another converter module. Messages about what\n"
                  "OUT cannot hold are warnings.\n\n{}",
                  format_names(), command->get_footer()));
  const auto arguments = std::make_shared<ConvertArguments>();
  command->add_option("IN", arguments->in, "Database to read; its extension tells the format")
      ->required()
      ->option_text(" ");
  command->add_option("OUT", arguments->out, "File to write, which must not exist; likewise")
      ->required()
      ->option_text(" ");
  add_module_options(*command, *arguments);
  add_mending_options(*command, arguments->mending);
  command->callback([arguments, &action] {
    arguments->from = format_of(arguments->in, "--from", arguments->from_name);
    arguments->to = format_of(arguments->out, "--to", arguments->to_name);
    action = [arguments](Output&) { return convert(*arguments) ? kExitSuccess : kExitFailure; };
  });
}

}  // namespace zelk::tool
