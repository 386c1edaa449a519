// The names of objects that are too long for the text format and stand in attributes.

#include <algorithm>
#include <iterator>
#include <string_view>

#include "base/list.hpp"
#include "model/inline_name.hpp"
#include "model/memory.hpp"
#include "model/without_raising.hpp"
#include "text/words.hpp"
#include "zelk/database.hpp"
#include "zelk/dbc.h"

namespace {

/// Position among the long-name attributes; that of the end for any other.
std::ptrdiff_t slot_of(const attr_def& definition) {
  const auto& names = zelk::kLongNameAttributes;
  if (definition.value_type != ZELK_ATTR_STRING) return std::ssize(names);
  const auto bears = [&definition](std::string_view name) {
    return zelk::same_inline_name(definition.name, name.data());
  };
  return std::find_if(names.begin(), names.end(), bears) - names.begin();
}

/// Makes an object's value of `definition`, if it has one, its name.
template <typename Object>
void take_long_name(Object& object, const attr_def& definition, bool is_node) {
  const auto is_of_definition = [&definition](const attr& value) {
    return value.def == &definition;
  };
  const attr* value = zelk::find_first(object.attrs, is_of_definition);
  const char* const name = value ? value->value.text : nullptr;
  if (!name || !*name) return;
  if (!zelk::can_name_object(name, is_node)) {
    return zelk_note(ZELK_ERR_FORMAT, zelk::kNoLine, name);
  }
  zelk::assign_text(object.name, zelk::copy_text(name));
}

template <typename Object>
void take_long_names(Object* list, const attr_def& definition, bool is_node = false) {
  for (Object& object : zelk::each(list)) take_long_name(object, definition, is_node);
}

}  // namespace

bool ZelkPredefinedAttributes::IsPredefinedAttribute(const attr_def& definition) {
  return slot_of(definition) < std::ssize(zelk::kLongNameAttributes);
}

bool ZelkPredefinedAttributes::Insert(const attr_def& definition) {
  if (!IsPredefinedAttribute(definition)) return false;
  // The reader fills the slots too, which is why they hold records that may be changed.
  slots[slot_of(definition)] = const_cast<attr_def*>(&definition);
  return true;
}

bool ZelkPredefinedAttributes::Remove(const attr_def& definition) {
  attr_def** const slot = std::find(std::begin(slots), std::end(slots), &definition);
  if (slot == std::end(slots)) return false;
  *slot = nullptr;
  return true;
}

void ZelkPredefinedAttributes::ClearAll() {
  std::fill(std::begin(slots), std::end(slots), nullptr);
}

void ZelkDatabase::CheckAndInsertPredefinedAttrs(attr_def& definition) {
  if (!predefined.Insert(*HandOut(&definition))) return;
  zelk::without_raising([&] {
    switch (definition.object_type) {
      case ZELK_OBJ_NODE:
        return take_long_names(nodes, definition, true);
      case ZELK_OBJ_MESSAGE:
        return take_long_names(messages, definition);
      case ZELK_OBJ_SIGNAL:
        for (const msgblk& message : zelk::each(messages)) {
          take_long_names(message.signals, definition);
        }
        return;
      case ZELK_OBJ_ENVVAR:
        return take_long_names(env_vars, definition);
      default:
        return;
    }
  });
}

void ZelkDatabase::CheckAndRemovePredefinedAttrs(attr_def& definition) {
  predefined.Remove(definition);
}
