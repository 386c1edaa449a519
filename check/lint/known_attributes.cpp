#include "check/lint/known_attributes.hpp"

#include <string>

#include "base/attribute_text.hpp"
#include "base/characters.hpp"
#include "base/j1939.hpp"
#include "base/list.hpp"

namespace zelk::check {

KnownAttribute::KnownAttribute(const attr_def* definitions, zelk_obj_t object,
                               std::string_view name)
    : definition_(find_first(definitions, [&](const attr_def& definition) {
        return definition.object_type == object && view(definition.name) == name;
      })) {
  if (!definition_ || definition_->value_type != ZELK_ATTR_ENUM) return;
  for (const std::string_view item : EnumItems(view(definition_->enum_values)))
    items_.push_back(item);
}

const attr* KnownAttribute::find(const attr* values) const {
  if (!definition_) return nullptr;
  return find_first(values, [this](const attr& value) { return value.def == definition_; });
}

std::optional<double> KnownAttribute::number(const attr* values) const {
  if (!definition_ || has_text_default(*definition_)) return std::nullopt;
  const attr* const own = find(values);
  return own ? own->value.number : definition_->default_value.number;
}

std::optional<std::string_view> KnownAttribute::text(const attr* values) const {
  if (!definition_ || !has_text_default(*definition_)) return std::nullopt;
  const attr* const own = find(values);
  if (!own) return view(definition_->default_value.text);
  if (definition_->value_type == ZELK_ATTR_STRING) return view(own->value.text);
  return item(own->value.number);
}

std::optional<std::string_view> KnownAttribute::item(double index) const {
  if (!(index >= 0) || !(index < static_cast<double>(items_.size()))) return std::nullopt;
  return items_[static_cast<std::size_t>(index)];
}

namespace {

bool is_above_0(const RecordsView& records, std::string_view name) {
  const KnownAttribute attribute(records.attr_defs, ZELK_OBJ_NETWORK, name);
  return attribute.number(records.attr_values).value_or(0) > 0;
}

}  // namespace

KnownAttributes::KnownAttributes(const RecordsView& records)
    : bus_type(records.attr_defs, ZELK_OBJ_NETWORK, "BusType"),
      protocol(records.attr_defs, ZELK_OBJ_NETWORK, "ProtocolType"),
      frame_format(records.attr_defs, ZELK_OBJ_MESSAGE, j1939::kFrameFormatAttribute),
      send_type(records.attr_defs, ZELK_OBJ_MESSAGE, "GenMsgSendType"),
      cycle_time(records.attr_defs, ZELK_OBJ_MESSAGE, "GenMsgCycleTime"),
      station(records.attr_defs, ZELK_OBJ_NODE, "NmStationAddress"),
      has_j1939_protocol(protocol.text(records.attr_values).value_or("").starts_with("J1939")),
      has_j1939(has_j1939_protocol || frame_format.allows([](std::string_view text) {
        return j1939::is_j1939_format(text);
      })),
      has_group_numbers(is_above_0(records, "J1939PGN") || is_above_0(records, "IsNMEA")) {}

/// A message's own frame format counts more than what the network says.
bool KnownAttributes::is_j1939(const msgblk& message) const {
  if (frame_format.is_set(message.attrs) || !has_j1939_protocol)
    return j1939::is_j1939_format(frame_format.text(message.attrs).value_or(""));
  return (message.id & ZELK_ID_EXTENDED) != 0;
}

bool is_cyclic(std::string_view send_type) {
  std::string text(send_type);
  for (char& c : text) c = to_upper(c);
  return text.starts_with("CYCLIC") && text.find("IFACTIVE") == std::string::npos;
}

}  // namespace zelk::check
