#include "check/repair/renamed_objects.hpp"

#include <utility>

namespace zelk::check {

namespace {

/// Of what a new name must be the only one.
std::uint32_t scope_of(NameKind kind, std::uint32_t owner) {
  return kind == NameKind::kMessage ? Statement::kNone : owner;
}

}  // namespace

Naming naming_of(Role role) {
  switch (role) {
    case Role::kMessage:
      return {NameKind::kMessage, true};
    case Role::kSignal:
      return {NameKind::kSignal, true};
    case Role::kSignalRef:
    case Role::kMultiplexorRef:
      return {NameKind::kSignal, false};
    case Role::kNode:
    case Role::kTransmitter:
    case Role::kReceiver:
    case Role::kAccessNode:
      return {NameKind::kNode, true};
    case Role::kNodeRef:
      return {NameKind::kNode, false};
    case Role::kVariable:
      return {NameKind::kVariable, true};
    case Role::kVariableRef:
      return {NameKind::kVariable, false};
    case Role::kTable:
      return {NameKind::kTable, true};
    case Role::kTableRef:
      return {NameKind::kTable, false};
    case Role::kType:
      return {NameKind::kType, true};
    case Role::kTypeRef:
      return {NameKind::kType, false};
    case Role::kGroup:
      return {NameKind::kGroup, true};
    case Role::kCategory:
      return {NameKind::kCategory, true};
    default:
      return {NameKind::kOther, true};
  }
}

Renamed* RenamedObjects::find(NameKind kind, std::uint32_t owner, std::string_view old_name) {
  const std::uint32_t found =
      by_old_name_.find(key_of(kind, owner, old_name), [&](std::uint32_t index) {
        const Renamed& each = all_[index];
        return each.kind == kind && each.owner == owner && each.old_name == old_name;
      });
  return found == Statement::kNone ? nullptr : &all_[found];
}

bool RenamedObjects::has_given(NameKind kind, std::uint32_t owner,
                               std::string_view new_name) const {
  const std::uint32_t scope = scope_of(kind, owner);
  const auto is_same = [&](std::uint32_t index) {
    const Renamed& each = all_[index];
    return each.kind == kind && scope_of(kind, each.owner) == scope && each.new_name == new_name;
  };
  return by_new_name_.find(key_of(kind, scope, new_name), is_same) != Statement::kNone;
}

Renamed& RenamedObjects::add(Renamed renamed) {
  const auto index = static_cast<std::uint32_t>(all_.size());
  const NameKind kind = renamed.kind;
  all_.push_back(std::move(renamed));
  Renamed& added = all_.back();
  // Both names are new, so that another one is there under neither of them.
  const auto is_same = [](std::uint32_t) { return false; };
  by_old_name_.enter(key_of(kind, added.owner, added.old_name), index, is_same);
  by_new_name_.enter(key_of(kind, scope_of(kind, added.owner), added.new_name), index, is_same);
  return added;
}

}  // namespace zelk::check
