#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "commands.hpp"
#include "database.hpp"
#include "describe.hpp"
#include "lookup.hpp"
#include "text.hpp"

namespace zelk::tool {

namespace {

/// Calls `visit(name, show)` for every named record of the database, in the order in which they are
/// shown; `show()` describes it.
template <typename Visit>
void for_each_named(const ZelkDatabase& database, const Describer& describer, const Visit& visit) {
  for (const symblk& node : each(database.nodes))
    visit(view(node.name), [&] { describer.node_and_traffic(node); });
  for (const msgblk& message : each(database.messages)) {
    visit(view(message.name), [&] { describer.message(message); });
    for (const sigblk& signal : each(message.signals))
      visit(view(signal.name), [&] { describer.signal_alone(signal); });
    for (const siggroupblk& group : each(message.siggroups))
      visit(view(group.name), [&] { describer.group_alone(group); });
  }
  for (const env_var_blk& variable : each(database.env_vars))
    visit(view(variable.name), [&] { describer.env_var(variable); });
  for (const valtable& table : each(database.value_tables))
    visit(view(table.name), [&] { describer.value_table(table); });
  for (const sigtype& type : each(database.signal_types))
    visit(view(type.name), [&] { describer.signal_type(type); });
  for (const attr_def& definition : each(database.attr_defs))
    visit(view(definition.name), [&] { describer.definition(definition); });
  for (const cat& category : each(database.categories))
    visit(view(category.name), [&] { describer.category(category); });
}

/// Shows the messages with this identifier, whose format bit matters only when it is given.
bool show_id(const ZelkDatabase& database, const Describer& describer, std::uint32_t id,
             Output& out) {
  bool found = false;
  for (const msgblk& message : each(database.messages)) {
    if (message.id != id && message.id != (id | ZELK_ID_EXTENDED)) continue;
    if (found) out.blank();
    describer.message(message);
    found = true;
  }
  return found;
}

bool show_name(const ZelkDatabase& database, const Describer& describer, std::string_view name,
               Output& out) {
  bool found = false;
  for_each_named(database, describer, [&](std::string_view candidate, const auto& show) {
    if (candidate != name) return;
    if (found) out.blank();
    show();
    found = true;
  });
  return found;
}

/// All that `show_name` finds.
std::vector<std::string_view> all_names(const ZelkDatabase& database, const Describer& describer) {
  std::vector<std::string_view> names;
  for_each_named(database, describer,
                 [&](std::string_view name, const auto&) { names.push_back(name); });
  return names;
}

ExitCode show_object(const std::string& path, const ZelkDatabase& database,
                     const Describer& describer, const std::string& object, Output& out) {
  if (const std::optional<std::uint32_t> id = parse_id(object)) {
    if (show_id(database, describer, *id, out)) return kExitSuccess;
    print_error(
        fmt::format("{}: no message has the identifier 0x{:X} ({})", escaped(path), *id, *id));
    return kExitFailure;
  }
  if (show_name(database, describer, object, out)) return kExitSuccess;
  print_error(fmt::format("{}: nothing is named {}{}", escaped(path), in_quotes(object),
                          suggestion(all_names(database, describer), object)));
  return kExitFailure;
}

ExitCode show(const std::string& path, const std::optional<std::string>& object, Output& out) {
  DatabaseFile file;
  const ZelkDatabase* const opened = open_and_report(file, path);
  if (!opened) return kExitFailure;
  const ZelkDatabase& database = *opened;

  const Describer describer(database, out);
  if (object) return show_object(path, database, describer, *object, out);
  describer.database(path);
  return kExitSuccess;
}

}  // namespace

void add_show_command(CLI::App& app, Action& action) {
  struct Arguments {
    std::string path;
    std::optional<std::string> object;
  };
  CLI::App* command =
      app.add_subcommand("show", "Show a whole database, or what bears a name or identifier");
  const auto arguments = std::make_shared<Arguments>();
  command->add_option("FILE", arguments->path, "Database to read")->required()->option_text(" ");
  command
      ->add_option("OBJECT", arguments->object,
                   "Name of a node, message, signal, signal group, environment variable,\n"
                   "value table, signal type, attribute or category; or identifier of a\n"
                   "message, decimal or hexadecimal behind 0x, with or without bit 31 for\n"
                   "an extended frame. All that match are shown, messages with a drawing\n"
                   "of their bits: [ marks the most and ] the least significant bit of a\n"
                   "signal, # bits of several signals.")
      ->option_text(" ");
  command->callback([arguments, &action] {
    action = [arguments](Output& out) { return show(arguments->path, arguments->object, out); };
  });
}

}  // namespace zelk::tool
