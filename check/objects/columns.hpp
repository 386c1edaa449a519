/// \file
/// The columns in which each kind of objects is listed; for `objects.cpp` alone.

#ifndef ZELK_CHECK_OBJECTS_COLUMNS_HPP
#define ZELK_CHECK_OBJECTS_COLUMNS_HPP

#include <string_view>
#include <type_traits>

#include "base/frame_id.hpp"
#include "base/list.hpp"
#include "base/multiplexing.hpp"
#include "check/objects/attribute_words.hpp"
#include "check/objects/cell.hpp"
#include "check/objects/objects.hpp"
#include "check/objects/record_words.hpp"

namespace zelk::check {

template <typename Record>
struct Column {
  std::string_view heading;
  Cell (*value)(const Record&);  ///< with texts as in the record
};

/// A member as it stands in the record: a number, a text, or the name of a record that is pointed
/// to.
template <auto kMember, typename Record>
Cell field(const Record& record) {
  const auto& value = record.*kMember;
  if constexpr (std::is_arithmetic_v<std::remove_cvref_t<decltype(value)>>) {
    return number(value);
  } else if constexpr (requires { value->name; }) {
    return value ? text(view(value->name)) : none();
  } else {
    return text(view(value));
  }
}

// Of a signal or signal type.

template <typename Record>
Cell order_of(const Record& record) {
  return text(byte_order(record.flags));
}

template <typename Record>
Cell format_of(const Record& record) {
  return text(number_format(record.flags, record.value_type));
}

inline Cell transmitters_of(const msgblk& message) {
  CellList names;
  const auto add = [&names](const symblk* node) {
    if (node) names.push_back({std::string(view(node->name))});
  };
  add(message.transmitter);
  for (const rxblk& link : each(message.tx_nodes))
    if (link.node != message.transmitter) add(link.node);
  return {names};
}

inline Cell members_of(const siggroupblk& group) {
  CellList names;
  for (const siglistblk& member : each(group.signals))
    names.push_back({std::string(view(member.signal->name))});
  return {names};
}

inline Cell items_of(const attr_def& definition) {
  if (definition.value_type != ZELK_ATTR_ENUM) return none();
  CellList items;
  if (!definition.enum_values) return {items};
  for (const std::string_view item : EnumItems(definition.enum_values)) {
    items.push_back({std::string(item)});
  }
  return {items};
}

inline constexpr Column<symblk> kNodeColumns[] = {
    {"name", field<&symblk::name>},
    {"category", field<&symblk::category>},
};

inline constexpr Column<msgblk> kMessageColumns[] = {
    {"name", field<&msgblk::name>},
    {"id", [](const msgblk& m) { return hexadecimal(bare_id(m.id), id_digits(m.id)); }},
    {"format", [](const msgblk& m) { return text(id_format(m.id)); }},
    {"dlc", field<&msgblk::dlc>},
    {"signals",
     [](const msgblk& m) { return number(static_cast<double>(each(m.signals).size())); }},
    {"category", field<&msgblk::category>},
    {"transmitters", transmitters_of},
};

inline constexpr Column<sigblk> kSignalColumns[] = {
    {"message", field<&sigblk::message>},
    {"name", field<&sigblk::name>},
    {"start", field<&sigblk::start_bit>},
    {"length", field<&sigblk::length>},
    {"order", order_of},
    {"type", format_of},
    {"factor", field<&sigblk::factor>},
    {"offset", field<&sigblk::offset>},
    {"min", field<&sigblk::minimum>},
    {"max", field<&sigblk::maximum>},
    {"unit", field<&sigblk::unit>},
    {"multiplexor", [](const sigblk& s) { return yes_or_no(is_multiplexor(s)); }},
    {"selected_by", field<&sigblk::mux_signal>},
    {"selected_for",
     [](const sigblk& s) { return s.mux_ranges ? text(presence_values(s)) : none(); }},
    {"receivers", [](const sigblk& s) { return node_names(s.receivers); }},
    {"signal_type", field<&sigblk::sigtype>},
};

inline constexpr Column<siggroupblk> kGroupColumns[] = {
    {"message", field<&siggroupblk::message>},
    {"name", field<&siggroupblk::name>},
    {"repetitions", field<&siggroupblk::repetitions>},
    {"signals", members_of},
};

inline constexpr Column<env_var_blk> kVariableColumns[] = {
    {"name", field<&env_var_blk::name>},
    {"id", field<&env_var_blk::id>},
    {"type", [](const env_var_blk& v) { return text(env_var_type(v.type)); }},
    {"min", field<&env_var_blk::minimum>},
    {"max", field<&env_var_blk::maximum>},
    {"initial", field<&env_var_blk::initial>},
    {"unit", field<&env_var_blk::unit>},
    {"bytes",
     [](const env_var_blk& v) {
       return v.type == ZELK_ENVVAR_DATA ? number(v.data_size) : none();
     }},
    {"access", [](const env_var_blk& v) { return hexadecimal(v.access_type, 1); }},
    {"category", field<&env_var_blk::category>},
    {"nodes", [](const env_var_blk& v) { return node_names(v.access_nodes); }},
};

inline constexpr Column<valtable> kTableColumns[] = {
    {"name", field<&valtable::name>},
    {"values", [](const valtable& t) { return value_descriptions(t.values); }},
};

inline constexpr Column<sigtype> kTypeColumns[] = {
    {"name", field<&sigtype::name>},
    {"length", field<&sigtype::length>},
    {"order", order_of},
    {"type", format_of},
    {"factor", field<&sigtype::factor>},
    {"offset", field<&sigtype::offset>},
    {"min", field<&sigtype::minimum>},
    {"max", field<&sigtype::maximum>},
    {"unit", field<&sigtype::unit>},
    {"default", field<&sigtype::default_value>},
    {"table", field<&sigtype::valtable>},
};

inline constexpr Column<cat> kCategoryColumns[] = {
    {"name", field<&cat::name>},
    {"number", field<&cat::number>},
    {"level", field<&cat::level>},
};

inline constexpr Column<attr_def> kDefinitionColumns[] = {
    {"name", field<&attr_def::name>},
    {"object", [](const attr_def& d) { return text(object_kind(d)); }},
    {"type", [](const attr_def& d) { return text(type_name(d)); }},
    {"min", [](const attr_def& d) { return has_range(d) ? number(d.minimum) : none(); }},
    {"max", [](const attr_def& d) { return has_range(d) ? number(d.maximum) : none(); }},
    {"default", default_cell},
    {"items", items_of},
};

inline constexpr Column<AttributeValue> kValueColumns[] = {
    {"name", field<&AttributeValue::name>},
    {"value", [](const AttributeValue& v) { return value_cell(*v.record); }},
    {"type", [](const AttributeValue& v) { return text(v.type); }},
    {"message", field<&AttributeValue::message>},
    {"object", [](const AttributeValue& v) { return v.object ? text(v.object) : none(); }},
    {"node", field<&AttributeValue::partner>},
};

inline constexpr Column<Description> kDescriptionColumns[] = {
    {"message", field<&Description::message>},
    {"name", field<&Description::name>},
    {"value", [](const Description& d) { return number(d.record->value); }},
    {"text", [](const Description& d) { return text(view(d.record->text)); }},
};

}  // namespace zelk::check

#endif
