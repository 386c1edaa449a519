// Texts of enumerations, value descriptions, membership in filters.

#include <algorithm>
#include <optional>
#include <string_view>

#include "base/enum_items.hpp"
#include "model/descriptions.hpp"
#include "model/memory.hpp"
#include "zelk/exception.hpp"
#include "zelk/iterator.hpp"

namespace {

constexpr long kNoNumber = 0x7FFFFFFF;

/// Items of an ENUM, joined; none for other types.
std::optional<std::string_view> items_of(const attr_def& definition) {
  const bool has_items = definition.value_type == ZELK_ATTR_ENUM && definition.enum_values;
  return has_items ? std::optional<std::string_view>(definition.enum_values) : std::nullopt;
}

}  // namespace

// --- Texts of enumerations ---

const char* ZelkManager::GetAttrValueString(const attr_def& definition, long index) const try {
  const auto items = items_of(definition);
  if (!items) return nullptr;
  const auto item = zelk::EnumItems(*items).at(static_cast<double>(std::max(index, 0L)));
  return item ? zelk::copy_text(*item).release() : nullptr;
} catch (const ZelkException&) {
  return nullptr;
}

const char* ZelkManager::GetAttrValueString(const char* name, long index, const char* db) const {
  const attr_def* const definition = FindDefinition(name, db);
  return definition ? GetAttrValueString(*definition, index) : nullptr;
}

long ZelkManager::GetAttrValueIndex(const attr_def& definition, const char* text) const {
  const auto items = items_of(definition);
  if (!items || !text) return -1;
  long index = 0;
  for (const std::string_view item : zelk::EnumItems(*items)) {
    if (item.empty()) continue;
    if (item == text) return index;
    ++index;
  }
  return -1;
}

long ZelkManager::GetAttrValueIndex(const char* name, const char* text, const char* db) const {
  const attr_def* const definition = FindDefinition(name, db);
  return definition ? GetAttrValueIndex(*definition, text) : -1;
}

// --- Value descriptions ---

const char* ZelkManager::DescriptionOf(const val* descriptions, long value) {
  const val* const found = zelk::description_of(descriptions, static_cast<std::uint32_t>(value));
  status_ = found ? ZelkStatusOk : ZelkStatusNoDescription;
  return found ? found->text : nullptr;
}

long ZelkManager::NumberOf(const val* descriptions, const char* text) {
  const val* const found = zelk::description_with(descriptions, text);
  status_ = found ? ZelkStatusOk : ZelkStatusNoNumber;
  return found ? found->value : kNoNumber;
}

const char* ZelkManager::GetValueDescription(const sigblk& signal, long value) {
  return DescriptionOf(signal.values, value);
}
const char* ZelkManager::GetValueDescription(const env_var_blk& variable, long value) {
  return DescriptionOf(variable.values, value);
}
long ZelkManager::GetDescriptionValue(const sigblk& signal, const char* text) {
  return NumberOf(signal.values, text);
}
long ZelkManager::GetDescriptionValue(const env_var_blk& variable, const char* text) {
  return NumberOf(variable.values, text);
}

// --- Filters ---

bool ZelkManager::IsCategoryInFilter(const cat& category, const char* db) const {
  for (ZelkConstFilterCategoryIterator link(*this, db); link; ++link) {
    if (&link.Category() == &category) return true;
  }
  return false;
}

bool ZelkManager::IsNodeInFilter(const symblk& node, const char* db) const {
  for (ZelkConstFilterNodeIterator link(*this, db); link; ++link) {
    if (&link.Node() == &node) return true;
  }
  return false;
}
