#include <memory>
#include <string>

#include "commands/commands.hpp"
#include "commands/mending_options.hpp"
#include "input/formats.hpp"
#include "input/lookup.hpp"
#include "repair/repair_file.hpp"

namespace zelk::tool {

namespace {

constexpr const char* kRepairExitCodes =
    "Exit codes:\n"
    "  0  OUT is written, mended or as IN is\n"
    "  1  IN cannot be mended, and nothing is written\n"
    "  2  a file cannot be read or written, or the command line is wrong";

ExitCode repair(const FileRepair& repair, Output& out) {
  try {
    return repair_file(repair, out) ? kExitSuccess : kExitFailure;
  } catch (const RequestError& error) {
    print_error(error.what());
    return kExitTrouble;
  }
}

}  // namespace

void add_repair_command(CLI::App& app, Action& action, ExitCode& failure) {
  CLI::App* command = app.add_subcommand(
      "repair", "Make of a file that cannot be read one that can, and tell each change");
  command->footer(kRepairExitCodes);
  const auto arguments = std::make_shared<FileRepair>();
  command->add_option("IN", arguments->in, "File to mend")
      ->required()
      ->option_text(" ")
      ->check(fault_of_other_format);
  CLI::Option* const out =
      command
          ->add_option(
              "OUT", arguments->out,
              "File to write; one that is there is replaced once all is written, or stays.\n"
              "Of a file that needs no mending it is a copy, byte for byte.")
          ->option_text(" ")
          ->check(fault_of_other_format);
  command->add_flag("--in-place", arguments->in_place, "Replace IN itself")->excludes(out);
  command->add_flag("-n,--dry-run", arguments->dry_run, "Only tell what would change");
  add_mend_options(*command, arguments->options);
  add_report_options(*command, arguments->findings);
  command->callback([arguments, &action, &failure] {
    if (arguments->out.empty() && !arguments->in_place && !arguments->dry_run)
      throw CLI::RequiredError("OUT, --in-place or --dry-run");
    failure = kExitTrouble;
    action = [arguments](Output& output) { return repair(*arguments, output); };
  });
}

}  // namespace zelk::tool
