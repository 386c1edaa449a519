#include "reader/definition_index.hpp"

#include <algorithm>

#include "model/symbols.hpp"

namespace zelk {
namespace {

/// The first definition of a kind from `place` on; null when there is none.
template <typename ByKind>
attr_def* first_of_kind(const ByKind& by_kind, std::int32_t object_type, std::size_t place) {
  const auto found = by_kind.lower_bound({object_type, place});
  return found != by_kind.end() && found->first.first == object_type ? found->second : nullptr;
}

}  // namespace

DefinitionIndex::Namesakes& DefinitionIndex::add(attr_def* definition) {
  Namesakes& namesakes = names_[side(definition->object_type)][inline_key(definition->name)];
  if (!namesakes.first) namesakes.first = definition;
  namesakes.by_kind.emplace(std::pair(definition->object_type, count_++), definition);
  return namesakes;
}

void DefinitionIndex::add_old(attr_def* definition) {
  add(definition);
  old_ = count_;
}

void DefinitionIndex::add_new(attr_def* definition) {
  Namesakes& namesakes = add(definition);
  if (!namesakes.first_of_file) namesakes.first_of_file = definition;
  namesakes.without_default.emplace(std::pair(definition->object_type, count_), definition);
}

const DefinitionIndex::Namesakes* DefinitionIndex::namesakes(std::int32_t object_type,
                                                             std::string_view name) const {
  const Names& names = names_[side(object_type)];
  const auto found = names.find(inline_key(name));
  return found == names.end() ? nullptr : &found->second;
}

attr_def* DefinitionIndex::find(std::int32_t object_type, std::string_view name) const {
  const Namesakes* known = namesakes(object_type, name);
  if (!known) return nullptr;
  attr_def* of_kind = first_of_kind(known->by_kind, object_type, 0);
  return of_kind ? of_kind : known->first;
}

attr_def* DefinitionIndex::find_of_file(std::int32_t object_type, std::string_view name) const {
  const Namesakes* known = namesakes(object_type, name);
  if (!known) return nullptr;
  attr_def* of_kind = first_of_kind(known->by_kind, object_type, old_);
  return of_kind ? of_kind : known->first_of_file;
}

attr_def* DefinitionIndex::next_for_default(std::int32_t object_type, std::string_view name) {
  const Namesakes* known = namesakes(object_type, name);
  if (!known) return nullptr;
  const bool has_kind = first_of_kind(known->by_kind, object_type, 0) != nullptr;
  const std::int32_t first = has_kind ? object_type : ZELK_OBJ_NETWORK;
  const std::int32_t last = has_kind ? object_type : ZELK_OBJ_REL_ENVVAR;
  attr_def* waiting =
      take_first(names_[side(object_type)].at(inline_key(name)).without_default, first, last);
  return waiting ? waiting : find(object_type, name);
}

/// Takes out the definition that stands first in the list, of those with a kind from `first` to
/// `last`.
attr_def* DefinitionIndex::take_first(ByKind& by_kind, std::int32_t first, std::int32_t last) {
  auto taken = by_kind.end();
  for (std::int32_t kind = first; kind <= last; ++kind) {
    const auto candidate = by_kind.lower_bound({kind, 0});
    if (candidate == by_kind.end() || candidate->first.first != kind) continue;
    if (taken == by_kind.end() || candidate->first.second < taken->first.second) taken = candidate;
  }
  return taken == by_kind.end() ? nullptr : by_kind.extract(taken).mapped();
}

void DefinitionIndex::change_kind(attr_def* definition, std::int32_t object_type) {
  ByKind& by_kind = names_[side(object_type)].at(inline_key(definition->name)).by_kind;
  const auto entry =
      std::find_if(by_kind.lower_bound({definition->object_type, 0}), by_kind.end(),
                   [definition](const auto& item) { return item.second == definition; });
  auto node = by_kind.extract(entry);
  node.key().first = object_type;
  by_kind.insert(std::move(node));
  definition->object_type = object_type;
}

}  // namespace zelk
