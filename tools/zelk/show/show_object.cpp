#include "show/show_object.hpp"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "base/name_filter.hpp"
#include "base/wildcards.hpp"
#include "check/picture/message_picture.hpp"
#include "input/lookup.hpp"
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

/// Shows the messages with this identifier.
bool show_id(const ZelkDatabase& database, const Describer& describer, std::uint32_t id,
             Output& out) {
  bool found = false;
  for (const msgblk& message : each(database.messages)) {
    if (!has_id(message, id)) continue;
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

/// Names that a user who typed `wanted` may have meant.
std::string suggestion_for(EncodedDatabase database, const Describer& describer,
                           std::string_view wanted) {
  NameSuggestion names(wanted);
  for_each_named(
      database, describer,
      [&](std::string_view name, std::string_view owner, const auto&) { names.add(name, owner); });
  return names.text();
}

std::string complaint(EncodedDatabase database, const Describer& describer,
                      const std::string& object, std::optional<std::uint32_t> id) {
  if (id) return unknown_id_text(*id);
  return fmt::format("nothing is named {}{}", in_quotes(object),
                     suggestion_for(database, describer, object));
}

}  // namespace

bool show_object(const std::string& path, EncodedDatabase database, const std::string& object,
                 Output& out) {
  const Describer describer(database, out);
  const std::optional<std::uint32_t> id = parse_id(object);
  const bool found = id ? show_id(database.records, describer, *id, out)
                        : show_name(database, describer, object, out);
  if (!found)
    print_error(fmt::format("{}: {}", escaped(path), complaint(database, describer, object, id)));
  return found;
}

bool show_picture(const std::string& path, EncodedDatabase database, const std::string& wanted,
                  Output& out) {
  try {
    const std::vector<const msgblk*> found = find_messages(database.records, wanted);
    if (found.size() > 1) {
      throw RequestError(fmt::format("{} are {}, and a picture is one of a single message",
                                     counted(found.size(), "message"), in_quotes(wanted)));
    }
    out.write_through(check::message_picture(*found.front(), database.encoding));
    return true;
  } catch (const RequestError& error) {
    print_error(fmt::format("{}: {}", escaped(path), error.what()));
    return false;
  }
}

}  // namespace zelk::tool
