#include <cstdint>

#include "model/descriptions.hpp"
#include "model/inline_name.hpp"
#include "zelk/query.h"

namespace zelk {
namespace {

constexpr std::uint32_t kNoAttributeType = 0xFFFFFFFF;

zelk_attr_value_t stored_value(attr* values, const char* name) {
  const attr* value = find_attribute_value(values, name);
  return value != nullptr ? value->value : zelk_attr_value_t{};
}

bool has_value(attr* values, const char* name) {
  return find_attribute_value(values, name) != nullptr;
}

/// The attribute values of an object; none of a missing one.
template <typename Object>
attr* values_of(const Object* object) {
  return object != nullptr ? object->attrs : nullptr;
}

template <typename Object>
const char* text_of_number(const Object* object, std::uint32_t number) {
  const val* const found = object != nullptr ? description_of(object->values, number) : nullptr;
  return found != nullptr ? found->text : nullptr;
}

template <typename Object>
std::uint32_t number_of_text(const Object* object, const char* text) {
  const val* const found = object != nullptr ? description_with(object->values, text) : nullptr;
  return found != nullptr ? static_cast<std::uint32_t>(found->value) : 0;
}

}  // namespace
}  // namespace zelk

extern "C" {

attr_def* zelk_get_attr_def_name(attr_def* definitions, const char* name) {
  return zelk::find_inline_name(definitions, name);
}

uint32_t zelk_get_attrtype(attr_def* definitions, const char* name) {
  const attr_def* definition = zelk_get_attr_def_name(definitions, name);
  return definition != nullptr ? static_cast<uint32_t>(definition->value_type)
                               : zelk::kNoAttributeType;
}

int zelk_is_attribute_defined_for_type(attr_def* definitions, zelk_obj_t object_type,
                                       const char* name) {
  const attr_def* definition = zelk_get_attr_def_name(definitions, name);
  return definition != nullptr && definition->object_type == static_cast<int32_t>(object_type);
}

zelk_attr_value_t zelk_get_attrdefault(attr_def* definitions, const char* name) {
  const attr_def* definition = zelk_get_attr_def_name(definitions, name);
  return definition != nullptr ? definition->default_value : zelk_attr_value_t{};
}

int zelk_is_attribute_defined(attr* values, const char* name) {
  return zelk::has_value(values, name);
}

int zelk_is_db_attribute_defined(attr* values, const char* name) {
  return zelk::has_value(values, name);
}

int zelk_is_sym_attribute_defined(const symblk* node, const char* name) {
  return zelk::has_value(zelk::values_of(node), name);
}

int zelk_is_msg_attribute_defined(const msgblk* message, const char* name) {
  return zelk::has_value(zelk::values_of(message), name);
}

int zelk_is_sig_attribute_defined(const sigblk* signal, const char* name) {
  return zelk::has_value(zelk::values_of(signal), name);
}

int zelk_is_ev_attribute_defined(const env_var_blk* variable, const char* name) {
  return zelk::has_value(zelk::values_of(variable), name);
}

zelk_attr_value_t zelk_get_attrval(attr* values, const char* name) {
  return zelk::stored_value(values, name);
}

zelk_attr_value_t zelk_get_db_attrval(attr* values, const char* name) {
  return zelk::stored_value(values, name);
}

zelk_attr_value_t zelk_get_sym_attrval(const symblk* node, const char* name) {
  return zelk::stored_value(zelk::values_of(node), name);
}

zelk_attr_value_t zelk_get_msg_attrval(const msgblk* message, const char* name) {
  return zelk::stored_value(zelk::values_of(message), name);
}

zelk_attr_value_t zelk_get_sig_attrval(const sigblk* signal, const char* name) {
  return zelk::stored_value(zelk::values_of(signal), name);
}

zelk_attr_value_t zelk_get_ev_attrval(const env_var_blk* variable, const char* name) {
  return zelk::stored_value(zelk::values_of(variable), name);
}

const char* zelk_get_sig_enumsymbol(const sigblk* signal, uint32_t number) {
  return zelk::text_of_number(signal, number);
}

uint32_t zelk_get_sig_enumvalue(const sigblk* signal, const char* text) {
  return zelk::number_of_text(signal, text);
}

const char* zelk_get_ev_enumsymbol(const env_var_blk* variable, uint32_t number) {
  return zelk::text_of_number(variable, number);
}

uint32_t zelk_get_ev_enumvalue(const env_var_blk* variable, const char* text) {
  return zelk::number_of_text(variable, text);
}

}  // extern "C"
