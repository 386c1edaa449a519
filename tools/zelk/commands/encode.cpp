#include <algorithm>
#include <memory>
#include <string>
#include <string_view>

#include "commands/commands.hpp"
#include "commands/mending_options.hpp"
#include "encode/encode_message.hpp"
#include "input/lookup.hpp"
#include "input/opening.hpp"
#include "term/text.hpp"
#include "zelk/logs/candump.hpp"

namespace zelk::tool {

namespace {

struct EncodeArguments : FrameValues {
  std::string database;
  bool log = false;  // a whole line of a log, and not the frame alone
  std::string time = "0";
  std::string interface_name = "can0";
  Mending mending;
};

/// Seconds with six decimals, as every reader of logs expects them; empty when `text` is no time.
std::string log_time(std::string_view text) {
  constexpr std::size_t kDecimals = 6;
  constexpr std::size_t kMostDigits = 20;
  const auto are_digits = [](std::string_view part) {
    return part.find_first_not_of("0123456789") == std::string_view::npos;
  };
  const std::size_t point = std::min(text.find('.'), text.size());
  const std::string_view whole = text.substr(0, point);
  const std::string_view decimals = text.substr(std::min(point + 1, text.size()));
  if (whole.empty() || whole.size() > kMostDigits || decimals.size() > kDecimals) return "";
  if (!are_digits(whole) || !are_digits(decimals)) return "";
  return fmt::format("{}.{:0<{}}", whole, decimals, kDecimals);
}

/// What stands in front of the frame.
std::string lead_of(const EncodeArguments& arguments) {
  if (!arguments.log) return "";
  return fmt::format("({}) {} ", log_time(arguments.time), arguments.interface_name);
}

std::string check_time(const std::string& text) {
  return log_time(text).empty()
             ? "seconds with at most six decimals are wanted, not " + in_quotes(text)
             : "";
}

/// The name must come back as one word when the line is read.
std::string check_interface(const std::string& name) {
  const bool is_name =
      !name.empty() && name.size() <= kZelkLongestChannel && std::ranges::all_of(name, [](char c) {
        return static_cast<unsigned char>(c) > ' ' && c != '(' && c != '\x7F';
      });
  return is_name ? "" : "an interface name is wanted, not " + in_quotes(name);
}

ExitCode encode(const EncodeArguments& arguments, Output& out) {
  DatabaseFile file(arguments.mending);
  if (!file.open_and_report(arguments.database)) return kExitFailure;
  try {
    out.line("{}", lead_of(arguments) + ZelkFrameText(encode_message(file.encoded(), arguments)));
  } catch (const RequestError& error) {
    print_error(behind_path(arguments.database, error.what()));
    return kExitFailure;
  }
  return kExitSuccess;
}

}  // namespace

void add_encode_command(CLI::App& app, Action& action) {
  CLI::App* command = app.add_subcommand(
      "encode", "Make a frame of values, such as 123#DEADBEEF, as decode takes it");
  const auto arguments = std::make_shared<EncodeArguments>();
  command->add_option("DATABASE", arguments->database, "Database to read")
      ->required()
      ->option_text(" ");
  command
      ->add_option("MESSAGE", arguments->message,
                   "Name or identifier of the message, decimal or hexadecimal behind 0x")
      ->required()
      ->option_text(" ");
  command
      ->add_option("SIGNAL=VALUE", arguments->signals,
                   "Physical value of a signal, or the text of a value description. A multiplexor\n"
                   "of which only one value selects what is given need not be given. All other\n"
                   "bits are 0.")
      ->option_text("...");
  command
      ->add_option("--from", arguments->from,
                   "Frame to change, such as 123#DEADBEEF, instead of one of zeros")
      ->type_name("FRAME");
  CLI::Option* const log =
      command->add_flag("--log", arguments->log, "Write a whole line of a log, as candump does");
  command
      ->add_option("--time", arguments->time,
                   "Time of that line in seconds, with at most six decimals; else 0")
      ->type_name("SECONDS")
      ->check(CLI::Validator(check_time, ""))
      ->needs(log);
  command->add_option("--interface", arguments->interface_name, "Interface of that line; else can0")
      ->type_name("NAME")
      ->check(CLI::Validator(check_interface, ""))
      ->needs(log);
  command->add_flag("--raw", arguments->options.raw, "Values are raw ones");
  command->add_flag("--force", arguments->options.force,
                    "Take values that are out of range; of what the bits cannot hold the nearest");
  add_mending_options(*command, arguments->mending);
  command->callback([arguments, &action] {
    action = [arguments](Output& out) { return encode(*arguments, out); };
  });
}

}  // namespace zelk::tool
