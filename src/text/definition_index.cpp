#include "text/definition_index.hpp"

#include "model/symbols.hpp"
#include "text/words.hpp"

namespace zelk {
namespace {

std::int32_t any_kind_like(std::int32_t kind) {
  return kind == kAnyRelationKind || is_relation(kind) ? kAnyRelationKind : kAnyOrdinaryKind;
}

}  // namespace

// --- Groups ---

void DefinitionGroups::add(PlacedDefinition added) {
  const auto& [definition, place] = added;
  for (const std::int32_t kind : {definition->object_type, any_kind_like(definition->object_type)})
    groups_[{kind, inline_key(definition->name)}].emplace(place, definition);
}

bool DefinitionGroups::remove(PlacedDefinition removed) {
  const auto& [definition, place] = removed;
  std::size_t count = 0;
  for (const std::int32_t kind : {definition->object_type, any_kind_like(definition->object_type)})
    count += groups_[{kind, inline_key(definition->name)}].erase(place);
  return count > 0;
}

PlacedDefinition DefinitionGroups::first(std::int32_t kind, std::string_view name,
                                         std::size_t place) const {
  const auto group = groups_.find({kind, inline_key(name)});
  if (group == groups_.end()) return {};
  const auto found = group->second.lower_bound(place);
  if (found == group->second.end()) return {};
  return {found->second, found->first};
}

// --- The index ---

void DefinitionIndex::add_old(attr_def* definition) {
  all_.add({definition, count_});
  old_count_ = ++count_;
}

void DefinitionIndex::add_new(attr_def* definition) {
  all_.add({definition, count_});
  without_default_.add({definition, count_});
  ++count_;
}

PlacedDefinition DefinitionIndex::find(std::int32_t kind, std::string_view name,
                                       std::size_t place) const {
  const PlacedDefinition of_kind = all_.first(kind, name, place);
  return of_kind.definition ? of_kind : all_.first(any_kind_like(kind), name, place);
}

attr_def* DefinitionIndex::find(std::int32_t kind, std::string_view name) const {
  return find(kind, name, 0).definition;
}

attr_def* DefinitionIndex::next_for_default(std::int32_t kind, std::string_view name) {
  const bool has_kind = all_.first(kind, name).definition;
  const PlacedDefinition next = without_default_.first(has_kind ? kind : any_kind_like(kind), name);
  if (!next.definition) return find(kind, name);
  without_default_.remove(next);
  return next.definition;
}

attr_def* DefinitionIndex::move_to_signal_types(std::string_view name) {
  PlacedDefinition found = find(ZELK_OBJ_SIGNAL, name, old_count_);
  if (!found.definition) found = find(ZELK_OBJ_SIGNAL, name, 0);
  if (!found.definition) return nullptr;
  all_.remove(found);
  const bool waits = without_default_.remove(found);
  found.definition->object_type = ZELK_OBJ_SIGTYPE;
  all_.add(found);
  if (waits) without_default_.add(found);
  return found.definition;
}

}  // namespace zelk
