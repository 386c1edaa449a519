#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "commands/commands.hpp"
#include "input/database.hpp"
#include "input/lookup.hpp"
#include "input/name_filter.hpp"
#include "show/describe.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

/// Calls `visit(name, owner, show)` for every named record of the database, in the order in which
/// they are shown; the names are in UTF-8, `owner` is that of the message that has the record or
/// empty, and `show()` describes it.
template <typename Visit>
void for_each_named(EncodedDatabase of, const Describer& describer, const Visit& visit) {
  const ZelkDatabase& database = of.records;
  const auto name = [&of](const auto& record) { return to_utf8(view(record.name), of.encoding); };
  for (const symblk& node : each(database.nodes))
    visit(name(node), "", [&] { describer.node_and_traffic(node); });
  for (const msgblk& message : each(database.messages)) {
    const std::string owner = name(message);
    visit(owner, "", [&] { describer.message(message); });
    for (const sigblk& signal : each(message.signals))
      visit(name(signal), owner, [&] { describer.signal_alone(signal); });
    for (const siggroupblk& group : each(message.siggroups))
      visit(name(group), owner, [&] { describer.group_alone(group); });
  }
  for (const env_var_blk& variable : each(database.env_vars))
    visit(name(variable), "", [&] { describer.env_var(variable); });
  for (const valtable& table : each(database.value_tables))
    visit(name(table), "", [&] { describer.value_table(table); });
  for (const sigtype& type : each(database.signal_types))
    visit(name(type), "", [&] { describer.signal_type(type); });
  for (const attr_def& definition : each(database.attr_defs))
    visit(name(definition), "", [&] { describer.definition(definition); });
  for (const cat& category : each(database.categories))
    visit(name(category), "", [&] { describer.category(category); });
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

bool show_name(EncodedDatabase database, const Describer& describer, std::string_view pattern,
               Output& out) {
  bool found = false;
  for_each_named(database, describer,
                 [&](std::string_view name, std::string_view owner, const auto& show) {
                   if (!matches_object(pattern, name, owner)) return;
                   if (found) out.blank();
                   show();
                   found = true;
                 });
  return found;
}

/// What somebody who typed `wanted` may have meant.
std::string suggestion_for(EncodedDatabase database, const Describer& describer,
                           std::string_view wanted) {
  NameSuggestion names(wanted);
  for_each_named(
      database, describer,
      [&](std::string_view name, std::string_view owner, const auto&) { names.add(name, owner); });
  return names.text();
}

ExitCode show_object(const std::string& path, EncodedDatabase database, const Describer& describer,
                     const std::string& object, Output& out) {
  if (const std::optional<std::uint32_t> id = parse_id(object)) {
    if (show_id(database.records, describer, *id, out)) return kExitSuccess;
    print_error(
        fmt::format("{}: no message has the identifier 0x{:X} ({})", escaped(path), *id, *id));
    return kExitFailure;
  }
  if (show_name(database, describer, object, out)) return kExitSuccess;
  print_error(fmt::format("{}: nothing is named {}{}", escaped(path), in_quotes(object),
                          suggestion_for(database, describer, object)));
  return kExitFailure;
}

ExitCode show(const std::string& path, const std::optional<std::string>& object, Output& out) {
  DatabaseFile file;
  if (!open_and_report(file, path)) return kExitFailure;
  const Describer describer(file.encoded(), out);
  if (object) return show_object(path, file.encoded(), describer, *object, out);
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
                   "value table, signal type, attribute or category, of signals and groups\n"
                   "also MESSAGE.NAME, in which * stands for any characters and ? for one;\n"
                   "or identifier of a message, decimal or hexadecimal behind 0x, with or\n"
                   "without bit 31 for an extended frame. All that match are shown,\n"
                   "messages with a drawing of their bits: [ marks the most and ] the\n"
                   "least significant bit of a signal, # bits of several signals.")
      ->option_text(" ");
  command->callback([arguments, &action] {
    action = [arguments](Output& out) { return show(arguments->path, arguments->object, out); };
  });
}

}  // namespace zelk::tool
