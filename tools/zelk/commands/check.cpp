#include <memory>
#include <string>
#include <vector>

#include "commands/commands.hpp"
#include "input/opening.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

/// "3 nodes, 1 message, ...". What few databases have is left out when there is none.
std::string counts(const ZelkDatabase& database) {
  std::size_t signals = 0;
  std::size_t groups = 0;
  for (const msgblk& message : each(database.messages)) {
    signals += each(message.signals).size();
    groups += each(message.siggroups).size();
  }
  std::string text =
      fmt::format("{}, {}, {}, {}, {}, {}", counted(each(database.nodes).size(), "node"),
                  counted(each(database.messages).size(), "message"), counted(signals, "signal"),
                  counted(each(database.env_vars).size(), "environment variable"),
                  counted(each(database.value_tables).size(), "value table"),
                  counted(each(database.attr_defs).size(), "attribute definition"));
  const std::size_t types = each(database.signal_types).size();
  const std::size_t categories = each(database.categories).size();
  if (types) text += ", " + counted(types, "signal type");
  if (groups) text += ", " + counted(groups, "signal group");
  if (categories) text += ", " + counted(categories, "category", "categories");
  return text;
}

bool check_file(const std::string& path, Output& out) {
  DatabaseFile file;
  const ZelkDatabase* const database = file.open(path);
  if (!database) {
    out.flush();  // keeps the order of files where both outputs meet
    for (const std::string& line : file.reports()) print_error(behind_path(path, line));
    return false;
  }
  out.line("{}: ok, {}", escaped(path), counts(*database));
  const Output::Indent indent(out);
  for (const std::string& line : file.reports()) out.line("warning: {}", line);
  if (database->SymbolsShortenedOnRead()) out.line("warning: {}", kShortenedWarning);
  return true;
}

}  // namespace

void add_check_command(CLI::App& app, Action& action) {
  CLI::App* command =
      app.add_subcommand("check", "Read files and tell what they hold, or where they are at fault");
  const auto paths = std::make_shared<std::vector<std::string>>();
  command->add_option("FILE", *paths, "Databases to read")->required()->option_text("...");
  command->callback([paths, &action] {
    action = [paths](Output& out) {
      ExitCode code = kExitSuccess;
      for (const std::string& path : *paths)
        if (!check_file(path, out)) code = kExitFailure;
      return code;
    };
  });
}

}  // namespace zelk::tool
