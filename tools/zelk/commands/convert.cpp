#include <memory>
#include <optional>
#include <string>

#include "commands/commands.hpp"
#include "edit/read_back.hpp"
#include "input/database.hpp"
#include "input/formats.hpp"
#include "input/importing.hpp"
#include "input/lookup.hpp"
#include "term/quoting.hpp"
#include "term/system.hpp"
#include "term/text.hpp"
#include "zelk/converter.hpp"

namespace zelk::tool {

namespace {

struct Arguments {
  std::string in;
  std::string out;
  std::string from_name;  // empty: by the extension
  std::string to_name;
  Format from;
  Format to;
  std::string option;
  std::string import_function = "zelk_import";
  std::string export_function = "zelk_export";
};

/// Tells what the library and a module noted about a file.
///
/// @param fallback  what is told of a failure of which nothing was noted
void tell_notes(const std::string& path, bool is_success, const char* fallback) {
  const std::vector<std::string> lines = escaped_lines(utf8(zelk_get_error_text()));
  for (const std::string& line : lines)
    print_error(behind_path(path, is_success ? "warning: " + line : line));
  if (!is_success && lines.empty()) print_error(behind_path(path, fallback));
}

/// Writes a file of another format.
///
/// @return false when that fails, which has been told
bool export_database(const Arguments& arguments, ZelkWriteManager& manager, const char* name) {
  const ModuleCall call = {arguments.to.module, arguments.export_function, arguments.option};
  ZelkExporter exporter(manager, call.module.c_str(), call.function.c_str());
  const std::string fault = fault_of(manager, exporter, call);
  if (!fault.empty()) {
    print_error(behind_path(call.module, fault));
    return false;
  }
  exporter.SetOption(call.option.c_str());
  const HeldSignals held;
  const ZelkError error = exporter.Export(name, arguments.out.c_str());
  tell_notes(arguments.out, error == ZelkErrorOk, "cannot be exported");
  return error == ZelkErrorOk;
}

bool write(const Arguments& arguments, ZelkWriteManager& manager, const OpenedDatabase& opened) {
  try {
    check_read_back({*opened.database, opened.encoding}, arguments.out);
  } catch (const RequestError& error) {
    print_error(behind_path(arguments.out, error.what()));
    return false;
  }
  const HeldSignals held;
  zelk_clear_error_text();
  const ZelkError error = manager.WriteDatabase(opened.name, arguments.out.c_str());
  if (error == ZelkErrorOk) {
    tell_save_notes(*opened.database, arguments.out);
    return true;
  }
  print_error(behind_path(arguments.out, write_complaint(error, *opened.database)));
  return false;
}

ExitCode convert(const Arguments& arguments) {
  ZelkWriteManager manager(static_cast<void*>(nullptr));
  if (exists(manager, arguments.out)) {
    print_error(behind_path(arguments.out, "exists already, and is not replaced"));
    return kExitFailure;
  }
  const OpenedDatabase opened =
      arguments.from.is_own()
          ? open_database(manager, arguments.in)
          : import_database(manager, arguments.in, "converted",
                            {arguments.from.module, arguments.import_function, arguments.option});
  tell_reports(opened, arguments.in);
  if (!opened.database) return kExitFailure;
  const bool is_written = arguments.to.is_own() ? write(arguments, manager, opened)
                                                : export_database(arguments, manager, opened.name);
  return is_written ? kExitSuccess : kExitFailure;
}

/// @throws CLI::ValidationError when neither the option nor the file's extension tells it
Format format_of(const std::string& path, const char* option, const std::string& name) {
  if (!name.empty()) return format_named(name);
  if (const std::optional<Format> format = format_of_file(path)) return *format;
  throw CLI::ValidationError(
      option, fmt::format("the extension of {} tells no format; this option does: {}, or the "
                          "file of a module",
                          in_quotes(path), format_names()));
}

void add_module_options(CLI::App& command, Arguments& arguments) {
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
  const auto arguments = std::make_shared<Arguments>();
  command->add_option("IN", arguments->in, "Database to read; its extension tells the format")
      ->required()
      ->option_text(" ");
  command->add_option("OUT", arguments->out, "File to write, which must not exist; likewise")
      ->required()
      ->option_text(" ");
  add_module_options(*command, *arguments);
  command->callback([arguments, &action] {
    arguments->from = format_of(arguments->in, "--from", arguments->from_name);
    arguments->to = format_of(arguments->out, "--to", arguments->to_name);
    action = [arguments](Output&) { return convert(*arguments); };
  });
}

}  // namespace zelk::tool
