#include "input/lookup.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <utility>

#include "base/edit_distance.hpp"
#include "base/numbers.hpp"
#include "term/text.hpp"

namespace zelk::tool {

std::optional<std::uint32_t> parse_id(std::string_view text) {
  const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
  if (hexadecimal) text.remove_prefix(2);
  return parse_whole<std::uint32_t>(text, hexadecimal ? 16 : 10);
}

bool has_id(const msgblk& message, std::uint32_t id) {
  return message.id == id || message.id == (id | ZELK_ID_EXTENDED);
}

std::string unknown_id_text(std::uint32_t id) {
  return fmt::format("no message has the identifier 0x{:X} ({})", id, id);
}

void NameSuggestion::add(std::string_view name, std::string_view owner) {
  const bool is_qualified = !owner.empty() && typed_.find('.') != std::string_view::npos;
  names_.push_back(is_qualified ? fmt::format("{}.{}", owner, name) : std::string(name));
}

std::string NameSuggestion::text() const {
  constexpr std::size_t kMaxNames = 6;
  const std::size_t limit = suggestion_distance(typed_);
  std::vector<std::pair<std::size_t, std::string_view>> near;
  for (const std::string& name : names_) {
    const std::size_t distance = edit_distance(name, typed_, limit);
    if (distance <= limit) near.emplace_back(distance, name);
  }
  std::ranges::sort(near);
  near.erase(std::unique(near.begin(), near.end()), near.end());
  near.resize(std::min(near.size(), kMaxNames));

  std::string text;
  for (const auto& [distance, name] : near)
    text += (text.empty() ? "; did you mean " : ", ") + escaped(name);
  return text.empty() ? text : text + "?";
}

std::vector<const msgblk*> find_messages(const ZelkDatabase& database, const std::string& wanted) {
  const std::optional<std::uint32_t> id = parse_id(wanted);
  std::vector<const msgblk*> found;
  NameSuggestion names(wanted);
  for (const msgblk& message : each(database.messages)) {
    if (id ? has_id(message, *id) : view(message.name) == wanted) found.push_back(&message);
    names.add(view(message.name));
  }
  if (!found.empty()) return found;
  if (id) throw RequestError(unknown_id_text(*id));
  throw RequestError(fmt::format("no message is named {}{}", in_quotes(wanted), names.text()));
}

const attr_def* find_definition(EncodedDatabase database, zelk_obj_t type, std::string_view name,
                                NameSuggestion* others) {
  for (const attr_def& definition : each(database.records.attr_defs)) {
    if (definition.object_type != type) continue;
    const std::string own = to_utf8(view(definition.name), database.encoding);
    if (own == name) return &definition;
    if (others) others->add(own);
  }
  return nullptr;
}

}  // namespace zelk::tool
