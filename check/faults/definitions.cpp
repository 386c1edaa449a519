#include "check/faults/definitions.hpp"

#include <algorithm>
#include <array>

#include "check/statements/names.hpp"

namespace zelk::check {

namespace {

constexpr std::array<std::string_view, 4> kLongNameAttributes = {
    "SystemSignalLongSymbol", "SystemMessageLongSymbol", "SystemNodeLongSymbol",
    "SystemEnvVarLongSymbol"};

/// The empty item of an ENUM, in a file.
constexpr std::string_view kEmptyItem = "ostrel_leerstring";

Word any_like(Word object) {
  const bool is_relation = object == kAnyRelation || object == Word::kNodeSignal ||
                           object == Word::kNodeMessage || object == Word::kNodeVariable;
  return is_relation ? kAnyRelation : kAnyObject;
}

/// The reader keeps 32 characters of the names of definitions.
std::string key_of(Word object, std::string_view name) {
  return static_cast<char>(object) + std::string(name.substr(0, 32));
}

Word object_of(const Document& document, const Statement& statement) {
  if (const Token* const object = document.find(statement, Role::kObject)) return object->word;
  return statement.kind == Word::kDefinition ? Word::kNone : Word::kNodeSignal;
}

}  // namespace

Definitions::Definitions(const Document& document) : document_(document) {
  for (std::uint32_t i = 0; i < document.statements.size(); ++i) {
    const Statement& statement = document.statements[i];
    if (!statement.is_readable) continue;
    const bool defines =
        statement.kind == Word::kDefinition || statement.kind == Word::kRelationDefinition;
    if (defines) enter(i);
    const Token* const moved = document.find(statement, Role::kAttributeRef);
    if (statement.kind == Word::kTypeDefinition && moved)
      move_to_signal_types(text_value(document, *moved));
  }
}

void Definitions::enter(std::uint32_t index) {
  const Statement& statement = document_.statements[index];
  const Token* const name = document_.find(statement, Role::kAttribute);
  const Token* const type = document_.find(statement, Role::kValueType);
  const std::string text = name ? text_value(document_, *name) : "";
  const Word object = object_of(document_, statement);
  const bool is_long_name =
      type->word == Word::kString && statement.kind == Word::kDefinition &&
      std::ranges::find(kLongNameAttributes, text) != kLongNameAttributes.end();
  const auto place = static_cast<std::uint32_t>(all_.size());
  all_.push_back({index, object, type->word, is_long_name});
  for (const Word kind : {object, any_like(object)})
    groups_[key_of(kind, text)].members.push_back(place);
}

Definitions::Group* Definitions::group(Word object, std::string_view name) {
  const auto found = groups_.find(key_of(object, name));
  return found == groups_.end() ? nullptr : &found->second;
}

Definition* Definitions::first(Word object, std::string_view name) {
  Group* const found = group(object, name);
  if (!found || found->first == found->members.size()) return nullptr;
  return &all_[found->members[found->first]];
}

Definition* Definitions::find(Word object, std::string_view name) {
  Definition* const of_kind = first(object, name);
  return of_kind ? of_kind : first(any_like(object), name);
}

Definition* Definitions::next_for_default(Word object, std::string_view name) {
  Group* found = group(object, name);
  if (!found) found = group(any_like(object), name);
  if (!found) return nullptr;
  std::size_t& next = found->next_default;
  while (next < found->members.size() && all_[found->members[next]].has_default) ++next;
  if (next == found->members.size()) return find(object, name);
  Definition& definition = all_[found->members[next]];
  definition.has_default = true;
  return &definition;
}

/// Definitions move from the front of their group; those for signal types are asked for their first
/// one alone, and it is the first that moved or one from further in front.
void Definitions::move_to_signal_types(std::string_view name) {
  Definition* const moved = find(Word::kSignal, name);
  if (!moved || moved->object == Word::kSignalType) return;
  ++group(moved->object, name)->first;
  moved->object = Word::kSignalType;
  moved->is_long_name = false;
  auto& members = groups_[key_of(Word::kSignalType, name)].members;
  const auto place = static_cast<std::uint32_t>(moved - all_.data());
  members.push_back(place);
  if (place < members.front()) std::swap(members.front(), members.back());
}

void Definitions::read_items(Definition& definition) const {
  if (definition.item_count != 0) return;
  for (const Token& token : document_.tokens_of(document_.statements[definition.statement])) {
    if (token.role != Role::kItem) continue;
    std::string item = item_value(text_value(document_, token));
    std::ranges::replace(item, '\n', ' ');  // the separator of the items that the reader keeps
    definition.items.try_emplace(std::move(item), definition.item_count++);
  }
  if (definition.item_count != 0) return;
  definition.items.try_emplace("", 0);  // without items there is one, the empty text
  definition.item_count = 1;
}

std::string item_value(std::string text) {
  return text == kEmptyItem ? std::string() : std::move(text);
}

}  // namespace zelk::check
