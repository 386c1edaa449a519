#include "diff/diff_json.hpp"

#include <nlohmann/json.hpp>
#include <utility>

#include "base/frame_id.hpp"
#include "table/objects.hpp"
#include "words/attribute_words.hpp"
#include "words/record_words.hpp"

namespace zelk::tool {

using check::Change;
using check::Changed;
using check::Difference;
using check::Presence;

namespace {

/// Adds the members that say which object it is.
void add_identity(Json& json, const Difference& difference) {
  json["kind"] = difference.kind ? difference.kind->singular : "network";
  if (!difference.kind) return;
  const Object& object = difference.object;
  if (object.owner) json["message"] = object.owner_text();
  if (const msgblk* const message = object.as<msgblk>()) {
    json["id"] = bare_id(message->id);
    json["format"] = id_format(message->id);
  }
  if (const attr_def* const definition = object.as<attr_def>())
    json["object"] = object_kind(*definition);
  json["name"] = object.name_text();
}

Json json_of_change(const Change& change) {
  Json json;
  switch (change.what) {
    case Changed::kAttribute:
      json = {{"field", "attribute"}, {"attribute", change.name}};
      if (!change.node.empty()) json["node"] = change.node;
      break;
    case Changed::kDescription:
      json = {{"field", "value"}, {"value", change.number}};
      break;
    default:
      json["field"] = change.name;
  }
  json["before"] = json_of(change.before.cell);
  json["after"] = json_of(change.after.cell);
  return json;
}

}  // namespace

void add_difference(JsonArray& array, const Difference& difference) {
  constexpr const char* kPresences[] = {"removed", "added", "changed"};
  Json json;
  json["difference"] = kPresences[static_cast<std::size_t>(difference.presence)];
  add_identity(json, difference);
  if (difference.presence == Presence::kChanged) {
    Json& changes = json["changes"] = Json::array();
    for (const Change& change : difference.changes) changes.push_back(json_of_change(change));
  }
  array.element(json);
}

}  // namespace zelk::tool
