#include "edit/edit_target.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <vector>

#include "input/lookup.hpp"
#include "term/text.hpp"
#include "words/record_words.hpp"

namespace zelk::tool {

namespace {

/// The only record of a list with this name.
///
/// @param complaint  begins the message when there is none: "no node is named"
template <typename Record>
Record& only_named(const Record* list, std::string_view name, const std::string& complaint) {
  NameSuggestion names(name);
  const Record* found = nullptr;
  for (const Record& record : each(list)) {
    names.add(view(record.name));
    if (view(record.name) != name) continue;
    if (found) throw RequestError(fmt::format("several are named {}", in_quotes(name)));
    found = &record;
  }
  if (found) return *changeable(found);
  throw RequestError(fmt::format("{} {}{}", complaint, in_quotes(name), names.text()));
}

std::string shown_message(const msgblk& message) {
  return fmt::format("message {} {}", padded_id(message.id), escaped(view(message.name)));
}

/// In a file, comments and attribute values name their message by its identifier.
///
/// @throws RequestError when they would become another message's
void check_sole(const ZelkDatabase& database, const msgblk& message) {
  const auto count = std::ranges::count_if(
      each(database.messages), [&message](const msgblk& other) { return other.id == message.id; });
  if (count == 1) return;
  throw RequestError(
      fmt::format("{} shares its identifier, by which a file tells what belongs to it",
                  shown_message(message)));
}

struct ShowTarget {
  std::string operator()(std::monostate) const { return "network"; }
  std::string operator()(const symblk* node) const { return "node " + escaped(view(node->name)); }
  std::string operator()(const msgblk* message) const { return shown_message(*message); }
  std::string operator()(const sigblk* signal) const {
    return fmt::format("signal {}.{}", escaped(view(signal->message->name)),
                       escaped(view(signal->name)));
  }
  std::string operator()(const env_var_blk* variable) const {
    return "environment variable " + escaped(view(variable->name));
  }
};

}  // namespace

symblk& EditTargets::node(const std::string& name) const {
  return only_named(database_.nodes, name, "no node is named");
}

msgblk& EditTargets::message(const std::string& name) const {
  const std::vector<const msgblk*> found = find_messages(database_, name);
  if (found.size() == 1) return *changeable(found.front());
  const std::optional<std::uint32_t> id = parse_id(name);
  const auto is_exact = [id](const msgblk* message) { return message->id == id; };
  if (std::ranges::count_if(found, is_exact) == 1)
    return *changeable(*std::ranges::find_if(found, is_exact));
  throw RequestError(fmt::format("several messages are {}{}", id ? "" : "named ",
                                 id ? escaped(name) : in_quotes(name)));
}

sigblk& EditTargets::signal(const std::string& name) const {
  const std::size_t point = name.find('.');
  if (point == std::string::npos)
    throw RequestError(fmt::format("{} is not MESSAGE.SIGNAL", in_quotes(name)));
  return signal_of(message(name.substr(0, point)), std::string_view(name).substr(point + 1));
}

sigblk& EditTargets::signal_of(const msgblk& message, std::string_view name) const {
  return only_named(message.signals, name, fmt::format("{} has no signal", shown_message(message)));
}

valtable& EditTargets::table(const std::string& name) const {
  return only_named(database_.value_tables, name, "no value table is named");
}

env_var_blk& EditTargets::variable(const std::string& name) const {
  return only_named(database_.env_vars, name, "no environment variable is named");
}

EditTarget EditTargets::any_object(const std::string& name) const {
  if (name == "network") return std::monostate();
  const std::size_t colon = name.find(':');
  const std::string kind = name.substr(0, colon);
  const std::string rest = colon == std::string::npos ? "" : name.substr(colon + 1);
  if (kind == "node") return &node(rest);
  if (kind == "message") return &message(rest);
  if (kind == "signal") return &signal(rest);
  if (kind == "variable") return &variable(rest);
  throw RequestError(
      fmt::format("{} is no object: network, node:NAME, message:NAME, "
                  "signal:MESSAGE.SIGNAL and variable:NAME are",
                  in_quotes(name)));
}

EditTarget EditTargets::object(const std::string& name) const {
  const EditTarget found = any_object(name);
  if (auto* const* const message = std::get_if<msgblk*>(&found)) check_sole(database_, **message);
  if (auto* const* const signal = std::get_if<sigblk*>(&found))
    check_sole(database_, *(*signal)->message);
  return found;
}

zelk_obj_t attribute_type(const EditTarget& target) {
  constexpr zelk_obj_t kOfTargets[] = {ZELK_OBJ_NETWORK, ZELK_OBJ_NODE, ZELK_OBJ_MESSAGE,
                                       ZELK_OBJ_SIGNAL, ZELK_OBJ_ENVVAR};
  return kOfTargets[target.index()];
}

std::string shown_target(const EditTarget& target) { return std::visit(ShowTarget(), target); }

}  // namespace zelk::tool
