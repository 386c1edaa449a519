#include "table/search.hpp"

#include <functional>
#include <nlohmann/json.hpp>
#include <string_view>

#include "base/j1939.hpp"
#include "base/name_filter.hpp"
#include "base/wildcards.hpp"
#include "input/lookup.hpp"
#include "table/json.hpp"
#include "term/text.hpp"
#include "words/j1939.hpp"

namespace zelk::tool {

namespace {

using Matches = std::function<bool(const Object&)>;

Matches matches_name(const std::string& wanted) {
  return [wanted, id = parse_id(wanted)](const Object& object) {
    if (matches_object(wanted, object.name_text(), object.owner_text())) return true;
    const msgblk* const message = object.as<msgblk>();
    return id && message && has_id(*message, *id);
  };
}

Matches matches_group(const ZelkDatabase& database, std::uint32_t group) {
  return [groups = ParameterGroups(database),
          key = j1939::group_of_number(group).key](const Object& object) {
    const msgblk* const message = object.as<msgblk>();
    return message && groups.number(*message) == key;
  };
}

/// The lookup takes 11-bit identifiers for those of frames as well, which no J1939 frame has.
Matches matches_frame(const ZelkDatabase& database, std::uint32_t id) {
  const msgblk* const message = database.GetJ1939Message(id | ZELK_ID_EXTENDED, 0);
  const bool is_frame = message && (message->id & ZELK_ID_EXTENDED);
  return [message, is_frame](const Object& object) {
    return is_frame && object.as<msgblk>() == message;
  };
}

Matches matches_in(const ZelkDatabase& database, const Query& query) {
  if (query.group) return matches_group(database, parse_id(*query.group).value());
  if (query.object) return matches_name(*query.object);
  return matches_frame(database, parse_id(*query.frame).value());
}

std::string line_of(const Hit& hit) {
  std::string details;
  std::vector<Cell> cells;
  hit.kind->append_cells(hit.object, cells);
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const std::string_view heading = hit.kind->headings[i];
    const std::string value = shown(cells[i]);
    if (heading != "name" && !value.empty())
      details += fmt::format("{} {} {}", details.empty() ? ":" : ",", heading, value);
  }
  return fmt::format("{}: {} {}{}", escaped(hit.database->name), hit.kind->singular,
                     escaped(hit.object.name_text()), details);
}

}  // namespace

std::vector<Hit> find_all(const DatabaseSet& databases, const Query& query) {
  std::vector<Hit> hits;
  for (const DatabaseSet::Entry& entry : databases.databases()) {
    const Matches matches = matches_in(entry.texts.records, query);
    for (const ObjectKind& kind : object_kinds()) {
      if (!kind.is_named) continue;
      kind.for_each(entry.texts, [&](const Object& object) {
        if (matches(object)) hits.push_back({&entry, &kind, object});
      });
    }
  }
  return hits;
}

void print_nothing_found(const DatabaseSet& databases, const Query& query) {
  if (query.is_by_group()) {
    const std::uint32_t number = parse_id(query.group ? *query.group : *query.frame).value();
    const std::string_view what = query.group ? "parameter group" : "J1939 frame";
    return print_error(
        fmt::format("zelk: no message is of the {} 0x{:X} ({})", what, number, number));
  }
  if (const std::optional<std::uint32_t> id = parse_id(*query.object))
    return print_error("zelk: " + unknown_id_text(*id));
  NameSuggestion names(*query.object);
  for (const DatabaseSet::Entry& entry : databases.databases()) {
    for (const ObjectKind& kind : object_kinds()) {
      kind.for_each(entry.texts, [&](const Object& object) {
        names.add(object.name_text(), object.owner_text());
      });
    }
  }
  print_error(fmt::format("zelk: nothing is named {}{}", in_quotes(*query.object), names.text()));
}

void print_hits(const std::vector<Hit>& hits, Output& out) {
  for (const Hit& hit : hits) out.line("{}", line_of(hit));
}

void print_hits_as_json(const std::vector<Hit>& hits, Output& out) {
  JsonArray array(out);
  for (const Hit& hit : hits) {
    std::vector<std::string> keys = {"database", "kind"};
    keys.insert(keys.end(), hit.kind->headings.begin(), hit.kind->headings.end());
    std::vector<Cell> cells = {text(hit.database->name), text(hit.kind->singular)};
    hit.kind->append_cells(hit.object, cells);
    array.element(object_of(keys, cells));
  }
  array.finish();
}

}  // namespace zelk::tool
