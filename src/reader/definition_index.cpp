#include "reader/definition_index.hpp"

#include <algorithm>

#include "model/symbols.hpp"

namespace zelk {

DefinitionIndex::Namesakes& DefinitionIndex::add(attr_def* definition) {
  Namesakes& namesakes = names_[is_relation(definition->object_type)][inline_key(definition->name)];
  if (!namesakes.first) namesakes.first = definition;
  namesakes.by_kind.emplace(std::pair(definition->object_type, count_++), definition);
  return namesakes;
}

void DefinitionIndex::add_new(attr_def* definition) {
  add(definition).of_file.push_back(definition);
}

attr_def* DefinitionIndex::find(std::int32_t object_type, std::string_view name) const {
  const Names& names = names_[is_relation(object_type)];
  const auto found = names.find(inline_key(name));
  if (found == names.end()) return nullptr;
  const auto& by_kind = found->second.by_kind;
  const auto of_kind = by_kind.lower_bound({object_type, 0});
  const bool has_kind = of_kind != by_kind.end() && of_kind->first.first == object_type;
  return has_kind ? of_kind->second : found->second.first;
}

attr_def* DefinitionIndex::next_for_default(bool of_relation, std::string_view name) {
  const auto found = names_[of_relation].find(inline_key(name));
  if (found == names_[of_relation].end()) return nullptr;
  Namesakes& namesakes = found->second;
  if (namesakes.defaults == namesakes.of_file.size()) return namesakes.first;
  return namesakes.of_file[namesakes.defaults++];
}

void DefinitionIndex::change_kind(attr_def* definition, std::int32_t object_type) {
  auto& by_kind = names_[is_relation(object_type)].at(inline_key(definition->name)).by_kind;
  const auto entry =
      std::find_if(by_kind.lower_bound({definition->object_type, 0}), by_kind.end(),
                   [definition](const auto& item) { return item.second == definition; });
  auto node = by_kind.extract(entry);
  node.key().first = object_type;
  by_kind.insert(std::move(node));
  definition->object_type = object_type;
}

}  // namespace zelk
