// A database's texts, the name that it has by itself, and the long names of its objects.

#include <algorithm>
#include <string_view>

#include "base/list.hpp"
#include "capi/attribute_text.hpp"
#include "manager/names.hpp"
#include "model/errors.hpp"
#include "model/inline_name.hpp"
#include "model/memory.hpp"
#include "text/words.hpp"
#include "zelk/database.hpp"
#include "zelk/exception.hpp"
#include "zelk/library.h"
#include "zelk/query.h"

namespace zelk {

void clean_name(char* destination, std::string_view source) {
  std::size_t written = 0;
  bool has_begun = false;
  for (const char character : source) {
    if (written == kDatabaseNameMax) break;
    const bool is_copied = is_letter(character) || (has_begun && is_digit(character));
    has_begun |= is_copied;
    if (is_copied) {
      destination[written++] = character;
    } else if (!has_begun) {
      destination[written++] = '_';
    }
  }
  destination[written] = '\0';
}

namespace {

/// The value of the network attribute for the name, else its default, which also stands in for a
/// null text; none when the attribute is not defined as a text of the network.
std::optional<std::string_view> own_name(const ZelkDatabase& database) {
  const attr_def* definition =
      zelk_get_attr_def_name(database.attr_defs, ZelkDatabaseNameAttribute);
  if (!definition || definition->object_type != ZELK_OBJ_NETWORK ||
      definition->value_type != ZELK_ATTR_STRING) {
    return std::nullopt;
  }
  const attr* value = find_attribute_value(database.attr_values, ZelkDatabaseNameAttribute);
  const auto own = value ? attribute_text(*value) : std::nullopt;
  return own ? *own : default_text(*definition).value_or("");
}

/// The name of a file without its folder or drive, in the notation of any system, and without
/// extension.
std::string_view file_stem(std::string_view path) {
  const bool has_drive = path.size() > 1 && path[1] == ':' && is_letter(path[0]) && path[0] != '_';
  if (has_drive) path.remove_prefix(2);
  const std::string_view name = path.substr(path.find_last_of("/\\") + 1);
  return name.substr(0, name.rfind('.'));
}

}  // namespace
}  // namespace zelk

char* ZelkDatabase::GetDefaultName() const {
  const auto own = zelk::own_name(*this);
  const std::string_view source = own ? *own : zelk::file_stem(path ? path : "");
  auto* const name = static_cast<char*>(zelk_malloc(zelk::kDatabaseNameMax + 1));
  if (name) zelk::clean_name(name, source);
  return name;
}

void ZelkDatabase::SetComment(const char* text) try {
  zelk::assign_text(comment, text ? zelk::copy_text(text) : nullptr);
} catch (const ZelkException&) {  // already reported; the old comment stays
}

void ZelkDatabase::SetUserData(const char* text) try {
  zelk::assign_text(user_data, zelk::copy_text(text ? text : ""));
} catch (const ZelkException&) {  // already reported; the old text stays
}

// --- Long names ---

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
  for (Object* object = list; object; object = object->next) {
    take_long_name(*object, definition, is_node);
  }
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

void ZelkDatabase::CheckAndInsertPredefinedAttrs(attr_def& definition) try {
  if (!predefined.Insert(*HandOut(&definition))) return;
  switch (definition.object_type) {
    case ZELK_OBJ_NODE:
      take_long_names(nodes, definition, true);
      break;
    case ZELK_OBJ_MESSAGE:
      take_long_names(messages, definition);
      break;
    case ZELK_OBJ_SIGNAL:
      for (msgblk* message = messages; message; message = message->next) {
        take_long_names(message->signals, definition);
      }
      break;
    case ZELK_OBJ_ENVVAR:
      take_long_names(env_vars, definition);
      break;
    default:
      break;
  }
} catch (const ZelkException&) {  // already reported; the other names stay
}

void ZelkDatabase::CheckAndRemovePredefinedAttrs(attr_def& definition) {
  predefined.Remove(definition);
}
