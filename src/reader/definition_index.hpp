/// \file
/// Attribute definitions by name.

#ifndef ZELK_READER_DEFINITION_INDEX_HPP
#define ZELK_READER_DEFINITION_INDEX_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "base/seeded_hash.hpp"
#include "text/words.hpp"
#include "zelk/records.h"

namespace zelk {

/// For statements that name no kind.
inline constexpr std::int32_t kAnyOrdinaryKind = -1;
inline constexpr std::int32_t kAnyRelationKind = -2;

/// Several definitions may share a name, of the same kind or of others. Definitions must be added
/// in list order. Names are compared on the length of inline names; keys borrow them from the
/// records.
class DefinitionIndex {
 public:
  /// A definition that was there before the read: a default statement of the file is not meant for
  /// it.
  void add_old(attr_def* definition);
  /// A definition of the file.
  void add_new(attr_def* definition);

  /// The first definition of that name and kind, else the first of that name among the kinds on the
  /// same side of `is_relation`. Null when there is none.
  attr_def* find(std::int32_t object_type, std::string_view name) const;

  /// The same among the definitions of the file alone.
  attr_def* find_of_file(std::int32_t object_type, std::string_view name) const;

  /// The definition that the next default statement with that name is for: of those with that kind
  /// (of all, for `kAnyOrdinaryKind` and `kAnyRelationKind`, or when there is none of the kind) the
  /// first of the file's that has had none, else the first. Null when the name is unknown.
  attr_def* next_for_default(std::int32_t object_type, std::string_view name);

  /// Makes a definition one of another kind.
  void change_kind(attr_def* definition, std::int32_t object_type);

 private:
  /// By kind, then by place in the list.
  using ByKind = std::map<std::pair<std::int32_t, std::size_t>, attr_def*>;
  struct Namesakes {
    attr_def* first = nullptr;
    attr_def* first_of_file = nullptr;
    ByKind by_kind;
    ByKind without_default;  ///< of the file's
  };
  using Names = std::unordered_map<std::string_view, Namesakes, SeededHash>;

  Namesakes& add(attr_def* definition);
  static attr_def* take_first(ByKind& by_kind, std::int32_t first, std::int32_t last);
  const Namesakes* namesakes(std::int32_t object_type, std::string_view name) const;

  /// Index in `names_`.
  static std::size_t side(std::int32_t object_type) {
    return object_type == kAnyRelationKind || is_relation(object_type) ? 1 : 0;
  }

  std::array<Names, 2> names_;  ///< ordinary, relation
  std::size_t count_ = 0;       ///< of all definitions
  std::size_t old_ = 0;         ///< of those that were there before the read
};

}  // namespace zelk

#endif
