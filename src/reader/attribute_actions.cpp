#include "reader/attribute_actions.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

#include "base/attribute_text.hpp"
#include "base/enum_items.hpp"
#include "base/numbers.hpp"
#include "base/text_view.hpp"
#include "model/symbols.hpp"
#include "text/words.hpp"

namespace zelk {
namespace {

/// Whether the values of a definition are long names of objects.
bool defines_long_names(const attr_def& definition) {
  const bool can_name =
      definition.value_type == ZELK_ATTR_STRING && definition.object_type <= ZELK_OBJ_ENVVAR;
  return can_name && std::find(kLongNameAttributes.begin(), kLongNameAttributes.end(),
                               definition.name) != kLongNameAttributes.end();
}

/// An item of an ENUM as the file spells it.
std::string_view item_text(TokenText text) {
  return text.view() == kEmptyItem ? std::string_view() : text.view();
}

}  // namespace

AttributeActions::AttributeActions(ReadContext& context)
    : context_(context), definitions_(context.model.attr_defs) {
  attr_def** const slots = context.model.slots;
  const std::size_t slot_count = slots ? kLongNameAttributes.size() : 0;
  for (attr_def& old : each(context.model.attr_defs)) {
    index_.add_old(&old);
    if (std::count(slots, slots + slot_count, &old) > 0) long_name_definitions_.insert(&old);
  }
  // What stands in a slot that was never set, or whose list was released, is no definition.
  std::replace_if(
      slots, slots + slot_count,
      [this](const attr_def* kept) { return !long_name_definitions_.contains(kept); }, nullptr);
}

/// The caller's slot for the definition of a long-name attribute; null when there is none.
attr_def** AttributeActions::slot(std::string_view attribute) const {
  const auto* const found =
      std::find(kLongNameAttributes.begin(), kLongNameAttributes.end(), attribute);
  if (!context_.model.slots || found == kLongNameAttributes.end()) return nullptr;
  return context_.model.slots + (found - kLongNameAttributes.begin());
}

// --- Definitions ---

/// A line feed inside an item would divide it in two.
void AttributeActions::item(TokenText text) {
  std::string item(item_text(text));
  if (item.find(kItemSeparator) != std::string::npos) {
    context_.note(ZELK_ERR_FORMAT, item);
    std::replace(item.begin(), item.end(), kItemSeparator, ' ');
  }
  if (item_list_) {
    *item_list_ += kItemSeparator;
  } else {
    item_list_.emplace();
  }
  *item_list_ += item;
}

void AttributeActions::define(std::int32_t object_type, TokenText name) {
  Owned<attr_def> definition(zelk_create_attr_def());
  definition->object_type = object_type;
  copy_inline(definition->name, name.view());
  definition->value_type = type_;
  if (type_ == ZELK_ATTR_ENUM) {
    definition->enum_values = copy_text(item_list_.value_or("")).release();
  } else {
    definition->minimum = range_.first;
    definition->maximum = range_.second;
  }
  if (has_text_default(*definition)) definition->default_value.text = copy_text("").release();
  index_.add_new(definition.get());
  if (defines_long_names(*definition)) {
    long_name_definitions_.insert(definition.get());
    if (attr_def** const place = slot(definition->name)) *place = definition.get();
  }
  definitions_.append(definition.release());
  range_ = {};
  item_list_.reset();
  context_.end_statement();
}

/// The definition stands in the file twice, first like one for signals.
void AttributeActions::define_for_signal_types(TokenText name) {
  attr_def* const found = index_.move_to_signal_types(name.view());
  if (!found) context_.fail(ZELK_ERR_UNDEFINED_ATTRIBUTE, name.view());
  long_name_definitions_.erase(found);
  attr_def** const place = slot(found->name);
  if (place && *place == found) *place = nullptr;
  context_.end_statement();
}

attr_def& AttributeActions::definition(std::int32_t object_type, TokenText attribute) {
  attr_def* const found = index_.find(object_type, attribute.view());
  if (!found) context_.fail(ZELK_ERR_UNDEFINED_ATTRIBUTE, attribute.view());
  return *found;
}

// --- Defaults ---

void AttributeActions::set_default(std::int32_t object_type, TokenText attribute) {
  attr_def* definition = index_.next_for_default(object_type, attribute.view());
  if (!definition) context_.fail(ZELK_ERR_UNDEFINED_ATTRIBUTE, attribute.view());
  if (value_.form != ValueForm::kNone) {
    zelk_attr_value_t& value = definition->default_value;
    if (definition->value_type == ZELK_ATTR_STRING) {
      assign_text(value.text, text_value());
    } else if (definition->value_type == ZELK_ATTR_ENUM) {
      assign_text(value.text, item_default(*definition));
    } else {
      value.number = number_value();
    }
  }
  context_.end_statement();
}

/// An ENUM's default is a text; the empty one is taken even if it is no item.
OwnedText AttributeActions::item_default(const attr_def& definition) {
  const Items& known = items(definition);
  if (value_.form == ValueForm::kNumber) {
    const double index = value_.number;
    const bool is_index = index >= 0.0 && index < static_cast<double>(known.texts.size()) &&
                          index == std::floor(index);
    if (!is_index) fail_with_value(NumberText(index).view());
    return copy_text(known.texts[static_cast<std::size_t>(index)]);
  }
  const std::string_view text = item_text(value_.text);
  if (!text.empty() && !known.indexes.contains(text)) fail_with_value(text);
  return copy_text(text);
}

// --- Values of objects ---

void AttributeActions::network_value(TokenText attribute) {
  append_object_value(context_.model.net_attrs, definition(ZELK_OBJ_NETWORK, attribute), nullptr,
                      false);
  context_.end_statement();
}

void AttributeActions::node_value(TokenText attribute, TokenText node_name) {
  attr_def& found = definition(ZELK_OBJ_NODE, attribute);
  if (symblk* node = context_.node(node_name))
    append_object_value(node->attrs, found, &node->name, true);
  context_.end_statement();
}

void AttributeActions::message_value(TokenText attribute, std::uint32_t id) {
  attr_def& found = definition(ZELK_OBJ_MESSAGE, attribute);
  msgblk& message = context_.message(id);
  append_object_value(message.attrs, found, &message.name, false);
  context_.end_statement();
}

void AttributeActions::signal_value(TokenText attribute, std::uint32_t id, TokenText signal_name) {
  attr_def& found = definition(ZELK_OBJ_SIGNAL, attribute);
  sigblk& signal = context_.signal(id, signal_name);
  append_object_value(signal.attrs, found, &signal.name, false);
  context_.end_statement();
}

void AttributeActions::variable_value(TokenText attribute, TokenText variable_name) {
  attr_def& found = definition(ZELK_OBJ_ENVVAR, attribute);
  env_var_blk& variable = context_.variable(variable_name);
  append_object_value(variable.attrs, found, &variable.name, false);
  context_.end_statement();
}

void AttributeActions::type_value(TokenText attribute, TokenText type_name) {
  attr_def& found = definition(ZELK_OBJ_SIGTYPE, attribute);
  append_object_value(context_.type(type_name).attrs, found, nullptr, false);
  context_.end_statement();
}

/// A long name does not stay an attribute value: it is for the field that holds the object's
/// `name`.
void AttributeActions::append_object_value(attr*& list, attr_def& definition, char** name,
                                           bool is_node) {
  if (defines_long_names(definition)) {
    defer_name(name, is_node);
  } else {
    append_value(list, definition);
  }
}

/// `field` is null for an object that takes no long name.
void AttributeActions::defer_name(char** field, bool is_node) {
  OwnedText name = text_value();
  if (*name == '\0') return;
  if (field && can_name_object(name.get(), is_node)) {
    deferred_names_.push_back({field, std::move(name)});
  } else {
    context_.note(ZELK_ERR_FORMAT, name.get());
  }
}

void AttributeActions::append_value(attr*& list, attr_def& definition) {
  Owned<attr> value(create_record<attr>());
  if (definition.value_type == ZELK_ATTR_STRING) {
    value->value.text = text_value().release();
  } else {
    value->value.number =
        definition.value_type == ZELK_ATTR_ENUM ? item_value(definition) : number_value();
  }
  value->def = &definition;
  context_.object_lists.append(list, std::move(value));
}

// --- Values of relations ---

void AttributeActions::node_signal_value(TokenText attribute, TokenText node_name, std::uint32_t id,
                                         TokenText signal_name) {
  attr_def& found = definition(ZELK_OBJ_REL_SIGNAL, attribute);
  symblk* node = context_.node(node_name);
  append_relation_value(context_.signal(id, signal_name).receivers, found, node);
}

void AttributeActions::node_message_value(TokenText attribute, TokenText node_name,
                                          std::uint32_t id) {
  attr_def& found = definition(ZELK_OBJ_REL_MESSAGE, attribute);
  symblk* node = context_.node(node_name);
  append_relation_value(context_.message(id).tx_nodes, found, node);
}

void AttributeActions::node_variable_value(TokenText attribute, TokenText node_name,
                                           TokenText variable_name) {
  attr_def& found = definition(ZELK_OBJ_REL_ENVVAR, attribute);
  symblk* node = context_.node(node_name);
  append_relation_value(context_.variable(variable_name).access_nodes, found, node);
}

/// `node` is null for the placeholder.
void AttributeActions::append_relation_value(rxblk* links, attr_def& definition, symblk* node) {
  rxblk* link = node ? context_.index.link(links, node) : nullptr;
  if (link) {
    append_value(link->attrs, definition);
  } else if (node) {
    context_.note(ZELK_ERR_UNKNOWN_SYMBOL, node->name);
  }
  context_.end_statement();
}

// --- From the statement's value to the record's ---

void AttributeActions::fail_with_value(std::string_view text) const {
  context_.fail(ZELK_ERR_MEANING, text);
}

OwnedText AttributeActions::text_value() const {
  return copy_text(value_.form == ValueForm::kText ? value_.text.view()
                                                   : NumberText(value_.number).view());
}

double AttributeActions::number_value() const {
  if (value_.form == ValueForm::kNumber) return value_.number;
  const auto number = parse_number(value_.text.view());
  if (!number) fail_with_value(value_.text.view());
  return *number;
}

/// The index of an ENUM's item.
double AttributeActions::item_value(const attr_def& definition) {
  if (value_.form == ValueForm::kNumber) return value_.number;
  const Items& known = items(definition);
  const auto found = known.indexes.find(item_text(value_.text));
  if (found == known.indexes.end()) fail_with_value(value_.text.view());
  return found->second;
}

const AttributeActions::Items& AttributeActions::items(const attr_def& definition) {
  const auto [entry, is_new] = items_.try_emplace(&definition);
  Items& known = entry->second;
  if (!is_new) return known;
  for (const std::string_view item : EnumItems(view(definition.enum_values))) {
    known.indexes.try_emplace(item, static_cast<int>(known.texts.size()));
    known.texts.push_back(item);
  }
  return known;
}

// --- The end of the file ---

void AttributeActions::accept() {
  for (DeferredName& deferred : deferred_names_)
    assign_text(*deferred.field, std::move(deferred.name));
  if (context_.model.slots) {
    std::fill_n(context_.model.slots, kLongNameAttributes.size(), nullptr);
  }
  if (long_name_definitions_.empty()) return;
  remove_if(
      context_.model.attr_defs,
      [this](const attr_def& definition) { return long_name_definitions_.contains(&definition); },
      [](attr_def* definition) { release_one(definition); });
}

}  // namespace zelk
