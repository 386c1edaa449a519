/// \file
/// Attribute definitions by kind and name.

#ifndef ZELK_TEXT_DEFINITION_INDEX_HPP
#define ZELK_TEXT_DEFINITION_INDEX_HPP

#include <cstddef>
#include <cstdint>
#include <map>
#include <string_view>
#include <unordered_map>

#include "base/seeded_hash.hpp"
#include "zelk/records.h"

namespace zelk {

// Kinds of statements that name none: any ordinary kind, any kind of relation.
inline constexpr std::int32_t kAnyOrdinaryKind = -1;
inline constexpr std::int32_t kAnyRelationKind = -2;

/// A definition, and how many stand in front of it in the list.
struct PlacedDefinition {
  attr_def* definition = nullptr;
  std::size_t place = 0;
};

/// Definitions grouped by kind and name, each group in list order; those of all ordinary kinds, and
/// of all relations, are groups too. Names are compared on the length of inline names, and borrowed
/// from the records.
class DefinitionGroups {
 public:
  void add(PlacedDefinition added);

  /// @return whether it was there
  bool remove(PlacedDefinition removed);

  /// The first one of the group from `place` on; without a definition when there is none.
  PlacedDefinition first(std::int32_t kind, std::string_view name, std::size_t place = 0) const;

 private:
  struct Key {
    std::int32_t kind;
    std::string_view name;

    bool operator==(const Key&) const = default;
  };
  struct KeyHash {
    SeededHash hash;
    std::size_t operator()(const Key& key) const { return hash(key.name) ^ hash(key.kind); }
  };

  std::unordered_map<Key, std::map<std::size_t, attr_def*>, KeyHash> groups_;
};

/// Finds definitions for the statements of a file. Several definitions may share a name, of the
/// same kind or of others. They must be added in list order.
class DefinitionIndex {
 public:
  /// A definition that was there before the read: default statements of the file are not meant for
  /// it.
  void add_old(attr_def* definition);
  /// A definition of the file.
  void add_new(attr_def* definition);

  /// The first definition of that kind and name, else the first of that name among all ordinary
  /// kinds, or among all relations, as `kind` is one. Null when there is none.
  attr_def* find(std::int32_t kind, std::string_view name) const;

  /// The definition that the next default statement with that name is for: of those with that kind
  /// (of any, when there is none of the kind) the first of the file's that has had none, else the
  /// first. Null when the name is unknown.
  attr_def* next_for_default(std::int32_t kind, std::string_view name);

  /// Makes the definition that `find` gives for signals, of the file's if there is one, one for
  /// signal types.
  ///
  /// @return the definition; null when the name is unknown
  attr_def* move_to_signal_types(std::string_view name);

 private:
  PlacedDefinition find(std::int32_t kind, std::string_view name, std::size_t place) const;

  DefinitionGroups all_;
  DefinitionGroups without_default_;  ///< of the file's
  std::size_t count_ = 0;
  std::size_t old_count_ = 0;
};

}  // namespace zelk

#endif
