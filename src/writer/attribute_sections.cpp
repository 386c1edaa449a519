// Attribute definitions, defaults and values.

#include <string_view>

#include "base/attribute_text.hpp"
#include "base/enum_items.hpp"
#include "base/text_view.hpp"
#include "text/words.hpp"
#include "writer/writer.hpp"

namespace zelk {
namespace {

/// Keywords of the kinds in the order of `NamedKind`, and their numbers as kinds of definitions.
constexpr std::array<const char*, kNamedKinds> kKindKeywords = {"SG_ ", "BO_ ", "BU_ ", "EV_ "};
constexpr std::array<std::int32_t, kNamedKinds> kKindNumbers = {ZELK_OBJ_SIGNAL, ZELK_OBJ_MESSAGE,
                                                                ZELK_OBJ_NODE, ZELK_OBJ_ENVVAR};

const char* object_keyword(std::int32_t object_type) {
  switch (object_type) {
    case ZELK_OBJ_NODE:
      return "BU_ ";
    case ZELK_OBJ_MESSAGE:
      return "BO_ ";
    case ZELK_OBJ_SIGNAL:
    case ZELK_OBJ_SIGTYPE:
      return "SG_ ";
    case ZELK_OBJ_ENVVAR:
      return "EV_ ";
    default:
      return "";
  }
}

const char* relation_keyword(std::int32_t object_type) {
  switch (object_type) {
    case ZELK_OBJ_REL_SIGNAL:
      return "BU_SG_REL_ ";
    case ZELK_OBJ_REL_MESSAGE:
      return "BU_BO_REL_ ";
    default:
      return "BU_EV_REL_ ";
  }
}

const char* type_keyword(std::int32_t value_type) {
  switch (value_type) {
    case ZELK_ATTR_INT:
      return "INT ";
    case ZELK_ATTR_FLOAT:
      return "FLOAT ";
    case ZELK_ATTR_STRING:
      return "STRING ";
    case ZELK_ATTR_ENUM:
      return "ENUM ";
    default:
      return "HEX ";
  }
}

}  // namespace

void Writer::attributes() {
  definitions();
  long_name_definitions();
  signal_type_definitions();
  relation_definitions();
  defaults();
  values();
  relation_values();
}

// --- Definitions ---

void Writer::definitions() {
  for (const attr_def& definition : each(model_.attr_defs)) {
    if (is_relation(definition.object_type)) continue;
    out_.put("BA_DEF_ ", object_keyword(definition.object_type), ' ');
    out_.put_quoted(definition.name);
    out_.put(' ');
    type_and_range(definition);
    out_.put(";\n");
    for (std::size_t kind = 0; kind < kNamedKinds; ++kind) {
      const bool is_for_names = definition.object_type == kKindNumbers[kind] &&
                                definition.name == kLongNameAttributes[kind];
      const attr_def*& first = long_name_definitions_[kind];
      if (is_for_names && !first) first = &definition;
    }
  }
}

void Writer::long_name_definitions() {
  for (std::size_t kind = 0; kind < kNamedKinds; ++kind) {
    if (!defines_long_names(kind)) continue;
    out_.put("BA_DEF_ ", kKindKeywords[kind], " \"", kLongNameAttributes[kind], "\" STRING ;\n");
  }
}

/// Whether the writer has to add the definition for the kind's long names.
bool Writer::defines_long_names(std::size_t kind) const {
  return names_[static_cast<NamedKind>(kind)].has_long_names() && !long_name_definitions_[kind];
}

/// A user's attribute of another type cannot hold names.
bool Writer::writes_long_names(NamedKind kind) const {
  const attr_def* definition = long_name_definitions_[static_cast<std::size_t>(kind)];
  return names_[kind].has_long_names() &&
         (!definition || definition->value_type == ZELK_ATTR_STRING);
}

void Writer::signal_type_definitions() {
  for (const attr_def& definition : each(model_.attr_defs)) {
    if (definition.object_type != ZELK_OBJ_SIGTYPE) continue;
    out_.put("BA_DEF_SGTYPE_ ");
    out_.put_quoted(definition.name);
    out_.put(";\n");
  }
}

void Writer::relation_definitions() {
  for (const attr_def& definition : each(model_.attr_defs)) {
    if (!is_relation(definition.object_type)) continue;
    out_.put("BA_DEF_REL_ ", relation_keyword(definition.object_type), ' ');
    out_.put_quoted(definition.name);
    out_.put(' ');
    type_and_range(definition);
    out_.put(";\n");
  }
}

void Writer::type_and_range(const attr_def& definition) {
  out_.put(type_keyword(definition.value_type));
  if (definition.value_type == ZELK_ATTR_ENUM) {
    items(view(definition.enum_values));
  } else if (definition.value_type != ZELK_ATTR_STRING) {
    out_.put(definition.minimum, ' ', definition.maximum);
  }
}

/// An empty item is written as a word of its own. An empty item at the end is left out when
/// another empty one stands before it.
void Writer::items(std::string_view list) {
  char separator = ' ';
  bool had_empty_item = false;
  const auto put_item = [&](std::string_view item) {
    out_.put(separator);
    out_.put_quoted(item.empty() ? kEmptyItem : item);
    separator = ',';
    had_empty_item |= item.empty();
  };
  const char* const end = list.data() + list.size();
  for (const std::string_view item : EnumItems(list)) {
    if (item.data() != end || !had_empty_item) put_item(item);
  }
}

void Writer::defaults() {
  for (const attr_def& definition : each(model_.attr_defs)) {
    out_.put(is_relation(definition.object_type) ? "BA_DEF_DEF_REL_" : "BA_DEF_DEF_ ", ' ');
    out_.put_quoted(definition.name);
    out_.put(' ');
    number_or_text(has_text_default(definition), definition.default_value);
  }
  for (std::size_t kind = 0; kind < kNamedKinds; ++kind) {
    if (defines_long_names(kind))
      out_.put("BA_DEF_DEF_  \"", kLongNameAttributes[kind], "\" \"\";\n");
  }
}

void Writer::number_or_text(bool is_text, zelk_attr_value_t value) {
  if (is_text) {
    out_.put_quoted(value.text);
  } else {
    out_.put(value.number);
  }
  out_.put(";\n");
}

// --- Values of objects ---

void Writer::values() {
  for (const attr& value : each(model_.net_attrs)) this->value("BA_ ", value);
  for (const symblk& node : each(model_.nodes)) {
    object_values(node.attrs, "BU_ ", name(node), ' ');
    long_name(NamedKind::kNode, node.name, "BU_ ", name(node), ' ');
  }
  const MessageSet hidden = hidden_messages();
  for (const msgblk& message : each(model_.messages)) {
    object_values(message.attrs, "BO_ ", message.id, ' ');
    if (hidden.contains(&message)) continue;
    long_name(NamedKind::kMessage, message.name, "BO_ ", message.id, ' ');
  }
  for_each_signal([&](const msgblk& message, const sigblk& signal) {
    object_values(signal.attrs, "SG_ ", message.id, ' ', name(signal), ' ');
    if (hidden.contains(&message)) return;
    long_name(NamedKind::kSignal, signal.name, "SG_ ", message.id, ' ', name(signal), ' ');
  });
  for (const env_var_blk& variable : each(model_.env_vars)) {
    object_values(variable.attrs, "EV_ ", name(variable), ' ');
    long_name(NamedKind::kVariable, variable.name, "EV_ ", name(variable), ' ');
  }
  for (const sigtype& type : each(model_.sig_types)) {
    for (const attr& value : each(type.attrs)) {
      this->value("BA_SGTYPE_ ", value, "SGTYPE_ ", type.name, ' ');
    }
  }
}

template <typename... Place>
void Writer::object_values(const attr* values, const Place&... place) {
  for (const attr& value : each(values)) this->value("BA_ ", value, place...);
}

/// Messages that a reader cannot name, because others with their identifiers stand in front of
/// them. Their long names, and those of their signals, would go to the others. None when there are
/// no long names.
Writer::MessageSet Writer::hidden_messages() const {
  MessageSet hidden;
  if (!writes_long_names(NamedKind::kMessage) && !writes_long_names(NamedKind::kSignal))
    return hidden;
  std::unordered_set<std::uint32_t, SeededHash> ids;
  for (const msgblk& message : each(model_.messages)) {
    if (!ids.insert(message.id).second) hidden.insert(&message);
  }
  return hidden;
}

/// The value that gives an object its full name back.
template <typename... Place>
void Writer::long_name(NamedKind kind, const char* full_name, const Place&... place) {
  if (!is_long_name(full_name) || !writes_long_names(kind)) return;
  out_.put("BA_ \"", kLongNameAttributes[static_cast<std::size_t>(kind)], "\" ", place...);
  out_.put_quoted(full_name);
  out_.put(";\n");
}

/// A value of an object at `place`. One without a definition has neither name nor type, and is left
/// out.
template <typename... Place>
void Writer::value(const char* keyword, const attr& value, const Place&... place) {
  if (!value.def) return;
  out_.put(keyword);
  out_.put_quoted(value.def->name);
  out_.put(' ', place...);
  number_or_text(value.def->value_type == ZELK_ATTR_STRING, value.value);
}

// --- Values of relations ---

void Writer::relation_values() {
  if (noticed_.link_attribute) {
    for_each_signal([this](const msgblk& message, const sigblk& signal) {
      link_values(signal.receivers, "BU_SG_REL_ ", "SG_ ", message.id, ' ', name(signal), ' ');
    });
  }
  for (const msgblk& message : each(model_.messages)) {
    link_values(message.tx_nodes, "BU_BO_REL_ ", message.id, ' ');
  }
  for (const env_var_blk& variable : each(model_.env_vars)) {
    link_values(variable.access_nodes, "BU_EV_REL_ ", name(variable), ' ');
  }
}

template <typename... Place>
void Writer::link_values(const rxblk* links, const char* relation, const Place&... place) {
  for (const rxblk& link : each(links)) {
    for (const attr& value : each(link.attrs)) {
      this->value("BA_REL_ ", value, relation, name(link.node), ' ', place...);
    }
  }
}

}  // namespace zelk
