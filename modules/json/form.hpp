/// \file
/// The form of a document: which keys its objects have, in which order, and the fields of the
/// records that they stand for. One description serves both directions, with the inputs or the
/// outputs for `Object` and `Value`. docs/json.md describes it for users.

#ifndef ZELK_MODULES_JSON_FORM_HPP
#define ZELK_MODULES_JSON_FORM_HPP

#include <cstdint>
#include <string_view>
#include <unordered_map>

#include "json/references.hpp"
#include "json/words.hpp"

namespace zelk::modules::json {

/// All that a database is made of.
struct Database {
  msgblk*& messages;
  symblk*& nodes;
  env_var_blk*& env_vars;
  attr_def*& attr_defs;
  attr*& attr_values;
  btlblk*& bit_timings;
  cat*& categories;
  filter_t& filter;
  char*& comment;
  char*& version_text;
  sigtype*& signal_types;
  valtable*& value_tables;
};

/// Number of records, or 65535 when there are more.
template <typename Record>
std::uint16_t count_16(const Record* list) {
  std::uint16_t count = 0;
  for (; list && count < 65535; list = list->next) ++count;
  return count;
}

/// A signal that selects itself, directly or by others; null when there is none.
inline const sigblk* find_circle(const sigblk* signals) {
  std::unordered_map<const sigblk*, const sigblk*> seen;  // and from where
  for (const sigblk* start = signals; start; start = start->next) {
    const sigblk* signal = start->mux_signal ? start : nullptr;
    while (signal && seen.emplace(signal, start).second) signal = signal->mux_signal;
    if (signal && seen[signal] == start) return signal;
  }
  return nullptr;
}

template <typename Object>
class Form {
 public:
  explicit Form(Object& document) : document_(document) {}

  void database(const Database& database);

 private:
  static constexpr bool kReads = Object::kReads;

  template <typename Record, typename Fill>
  static void objects(Object& object, std::string_view key, Record*& head, Fill fill) {
    object.list(key, head, [&fill](const auto& value, Record& record) {
      value.object([&](Object& element) { fill(element, record); });
    });
  }

  void definition(Object& object, attr_def& definition);
  void attributes(Object& object, attr*& head, std::int32_t kind);
  static void descriptions(Object& object, val*& head);
  void links(Object& object, std::string_view key, rxblk*& head, std::int32_t kind);
  void signal_type(Object& object, sigtype& type);
  void node(Object& object, symblk& node);
  void message(Object& object, msgblk& message);
  void signal(Object& object, sigblk& signal, const References<sigblk>& signals);
  static void ranges(Object& object, muxor_val_range*& head);
  static void group(Object& object, siggroupblk& group, const References<sigblk>& signals);
  void variable(Object& object, env_var_blk& variable);
  void filter(Object& object, filter_t& filter);

  Object& document_;
  Lists lists_;
};

// --- Implementation ---

template <typename Object>
void Form<Object>::database(const Database& database) {
  Object& object = document_;
  object.text("version_text", database.version_text);
  object.text("comment", database.comment);
  objects(object, "bit_timings", database.bit_timings, [](Object& element, btlblk& timing) {
    element.at("baudrate").whole(timing.baudrate);
    element.at("btr1").whole(timing.btr1);
    element.at("btr2").whole(timing.btr2);
  });
  objects(object, "attribute_definitions", database.attr_defs,
          [this](Object& element, attr_def& record) { definition(element, record); });
  lists_.definitions.index(database.attr_defs);
  attributes(object, database.attr_values, ZELK_OBJ_NETWORK);
  objects(object, "categories", database.categories, [](Object& element, cat& category) {
    element.at("name").inline_text(category.name);
    element.at("number").whole(category.number);
    element.whole("level", category.level, std::uint16_t{0});
  });
  lists_.categories.index(database.categories);
  objects(object, "value_tables", database.value_tables, [](Object& element, valtable& table) {
    element.at("name").inline_text(table.name);
    descriptions(element, table.values);
  });
  lists_.value_tables.index(database.value_tables);
  objects(object, "signal_types", database.signal_types,
          [this](Object& element, sigtype& type) { signal_type(element, type); });
  lists_.signal_types.index(database.signal_types);
  objects(object, "nodes", database.nodes,
          [this](Object& element, symblk& record) { node(element, record); });
  lists_.nodes.index(database.nodes);
  objects(object, "messages", database.messages,
          [this](Object& element, msgblk& record) { message(element, record); });
  objects(object, "environment_variables", database.env_vars,
          [this](Object& element, env_var_blk& record) { variable(element, record); });
  filter(object, database.filter);
}

// --- Attributes ---

/// The type comes before the fields whose meaning depends on it.
template <typename Object>
void Form<Object>::definition(Object& object, attr_def& definition) {
  object.at("name").inline_text(definition.name);
  object.word("object_type", definition.object_type, kObjectTypes);
  object.at("value_type").word(definition.value_type, kAttributeTypes);
  const bool is_enum = definition.value_type == ZELK_ATTR_ENUM;
  if (is_enum) {
    object.items("items", definition.enum_values);
  } else {
    object.real("minimum", definition.minimum);
  }
  object.real("maximum", definition.maximum);
  if (is_enum || definition.value_type == ZELK_ATTR_STRING) {
    object.text("default", definition.default_value.text);
  } else {
    object.real("default", definition.default_value.number);
  }
}

template <typename Object>
void Form<Object>::attributes(Object& object, attr*& head, std::int32_t kind) {
  objects(object, "attributes", head, [this, kind](Object& element, attr& value) {
    element.at("definition").reference(value.def, lists_.definitions, kind);
    if (!value.def) return;  // and without a definition no type either
    if (value.def->value_type == ZELK_ATTR_STRING) {
      element.at("value").text_or_null(value.value.text);
    } else {
      element.at("value").real(value.value.number);
    }
  });
}

// --- What several records have ---

template <typename Object>
void Form<Object>::descriptions(Object& object, val*& head) {
  objects(object, "values", head, [](Object& element, val& description) {
    element.at("value").whole(description.value);
    element.at("text").text_or_null(description.text);
  });
}

/// A node, or an object when the relation to it has attributes of the kind.
template <typename Object>
void Form<Object>::links(Object& object, std::string_view key, rxblk*& head, std::int32_t kind) {
  object.list(key, head, [this, kind](const auto& value, rxblk& link) {
    if (!value.is_object(link.attrs != nullptr)) {
      value.reference(link.node, lists_.nodes);
      return;
    }
    value.object([this, kind, &link](Object& element) {
      element.at("node").reference(link.node, lists_.nodes);
      attributes(element, link.attrs, kind);
    });
  });
}

template <typename Object>
void Form<Object>::signal_type(Object& object, sigtype& type) {
  constexpr std::uint16_t kKnown = ZELK_SIGNAL_MOTOROLA | ZELK_SIGNAL_SIGNED;
  object.at("name").inline_text(type.name);
  object.at("length").whole(type.length);
  object.byte_order("byte_order", type.flags);
  object.flag("signed", type.flags, ZELK_SIGNAL_SIGNED);
  object.bits("other_flags", type.flags, static_cast<std::uint16_t>(~kKnown));
  object.word("value_type", type.value_type, kValueTypes);
  object.real("factor", type.factor, 1.0);
  object.real("offset", type.offset);
  object.real("minimum", type.minimum);
  object.real("maximum", type.maximum);
  object.inline_text("unit", type.unit);
  object.real("default", type.default_value);
  object.reference("value_table", type.valtable, lists_.value_tables);
  object.text("comment", type.comment);
  attributes(object, type.attrs, ZELK_OBJ_SIGTYPE);
}

template <typename Object>
void Form<Object>::node(Object& object, symblk& node) {
  object.at("name").text_or_null(node.name);
  object.reference("category", node.category, lists_.categories);
  object.text("comment", node.comment);
  attributes(object, node.attrs, ZELK_OBJ_NODE);
}

// --- Messages ---

template <typename Object>
void Form<Object>::message(Object& object, msgblk& message) {
  object.at("name").text_or_null(message.name);
  object.at("id").identifier(message.id);
  object.flag("extended", message.id, ZELK_ID_EXTENDED);
  object.at("dlc").whole(message.dlc);
  object.reference("transmitter", message.transmitter, lists_.nodes);
  links(object, "transmitters", message.tx_nodes, ZELK_OBJ_REL_MESSAGE);
  object.reference("category", message.category, lists_.categories);
  object.text("comment", message.comment);
  attributes(object, message.attrs, ZELK_OBJ_MESSAGE);
  References<sigblk> signals("signal");
  object.named_list("signals", message.signals, signals,
                    [&](Object& element, sigblk& record) { signal(element, record, signals); });
  if (const sigblk* circle = find_circle(message.signals)) {
    object.path().fail("the multiplexor of the signal \"" + std::string(view(circle->name)) +
                       "\" depends on that signal");
  }
  objects(object, "signal_groups", message.siggroups,
          [&](Object& element, siggroupblk& record) { group(element, record, signals); });
  if constexpr (kReads) {
    message.signal_count = count_16(message.signals);
    for (sigblk* each = message.signals; each; each = each->next) each->message = &message;
    for (siggroupblk* each = message.siggroups; each; each = each->next) each->message = &message;
  }
}

template <typename Object>
void Form<Object>::signal(Object& object, sigblk& signal, const References<sigblk>& signals) {
  constexpr std::uint16_t kKnown =
      ZELK_SIGNAL_MOTOROLA | ZELK_SIGNAL_SIGNED | ZELK_SIGNAL_MULTIPLEXOR;
  object.at("start_bit").whole(signal.start_bit);
  object.at("length").whole(signal.length);
  object.byte_order("byte_order", signal.flags);
  object.flag("signed", signal.flags, ZELK_SIGNAL_SIGNED);
  object.word("value_type", signal.value_type, kValueTypes);
  object.flag("is_multiplexor", signal.flags, ZELK_SIGNAL_MULTIPLEXOR);
  object.bits("other_flags", signal.flags, static_cast<std::uint16_t>(~kKnown));
  object.reference("multiplexor", signal.mux_signal, signals);
  ranges(object, signal.mux_ranges);
  object.real("factor", signal.factor, 1.0);
  object.real("offset", signal.offset);
  object.real("minimum", signal.minimum);
  object.real("maximum", signal.maximum);
  object.inline_text("unit", signal.unit);
  links(object, "receivers", signal.receivers, ZELK_OBJ_REL_SIGNAL);
  object.reference("signal_type", signal.sigtype, lists_.signal_types);
  object.text("comment", signal.comment);
  attributes(object, signal.attrs, ZELK_OBJ_SIGNAL);
  descriptions(object, signal.values);
  if constexpr (kReads) signal.receiver_count = count_16(signal.receivers);
}

/// A value by itself, or an object for a range of several.
template <typename Object>
void Form<Object>::ranges(Object& object, muxor_val_range*& head) {
  object.list("multiplexor_values", head, [](const auto& value, muxor_val_range& range) {
    if (!value.is_object(range.low != range.high)) {
      value.whole(range.low);
      if constexpr (kReads) range.high = range.low;
      return;
    }
    value.object([&range](Object& element) {
      element.at("low").whole(range.low);
      element.at("high").whole(range.high);
    });
  });
}

template <typename Object>
void Form<Object>::group(Object& object, siggroupblk& group, const References<sigblk>& signals) {
  object.at("name").inline_text(group.name);
  object.whole("repetitions", group.repetitions, std::int32_t{1});
  object.text("comment", group.comment);
  object.list("signals", group.signals, [&signals](const auto& value, siglistblk& member) {
    value.reference(member.signal, signals);
  });
  object.left_out(group.extra != nullptr, "the host's own entries of the group are left out");
}

// --- Environment variables and filter ---

template <typename Object>
void Form<Object>::variable(Object& object, env_var_blk& variable) {
  object.at("name").text_or_null(variable.name);
  object.word("type", variable.type, kVariableTypes);
  object.at("id").whole(variable.id);
  object.real("minimum", variable.minimum);
  object.real("maximum", variable.maximum);
  object.real("initial", variable.initial);
  object.inline_text("unit", variable.unit);
  object.whole("access_type", variable.access_type, std::uint32_t{0});
  links(object, "access_nodes", variable.access_nodes, ZELK_OBJ_REL_ENVVAR);
  object.whole("data_size", variable.data_size, std::uint32_t{0});
  object.reference("category", variable.category, lists_.categories);
  object.text("comment", variable.comment);
  attributes(object, variable.attrs, ZELK_OBJ_ENVVAR);
  descriptions(object, variable.values);
  object.left_out(variable.unused != 0, "the host's own number of the variable is left out");
  if constexpr (kReads) variable.access_node_count = count_16(variable.access_nodes);
}

template <typename Object>
void Form<Object>::filter(Object& object, filter_t& filter) {
  if (!object.has("filter", filter.categories || filter.nodes || filter.mode != 0)) return;
  object.at("filter").object([this, &filter](Object& element) {
    element.whole("mode", filter.mode, std::int32_t{0});
    element.list("categories", filter.categories, [this](const auto& value, catlink& link) {
      value.reference(link.category, lists_.categories);
    });
    links(element, "nodes", filter.nodes, ZELK_OBJ_NODE);
  });
}

}  // namespace zelk::modules::json

#endif
