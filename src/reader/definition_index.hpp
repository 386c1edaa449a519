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
#include <vector>

#include "zelk/records.h"

namespace zelk {

/// Whether definitions of this kind describe a relation; those and the ordinary ones have names of
/// their own.
constexpr bool is_relation(std::int32_t object_type) {
  return object_type == ZELK_OBJ_REL_SIGNAL || object_type == ZELK_OBJ_REL_MESSAGE ||
         object_type == ZELK_OBJ_REL_ENVVAR;
}

/// Several definitions may share a name, of the same kind or of others. Definitions must be added
/// in list order. Names are compared on the length of inline names; keys borrow them from the
/// records.
class DefinitionIndex {
 public:
  /// A definition that was there before the read: a default statement of the file is not meant for
  /// it.
  void add_old(attr_def* definition) { add(definition); }
  /// A definition of the file.
  void add_new(attr_def* definition);

  /// The first definition of that name and kind, else the first of that name among the kinds on the
  /// same side of `is_relation`. Null when there is none.
  attr_def* find(std::int32_t object_type, std::string_view name) const;

  /// The definition that the next default statement with that name is for: the first of the file's
  /// that has had none, else the first of all. Null when there is none.
  attr_def* next_for_default(bool of_relation, std::string_view name);

  /// Makes a definition one of another kind.
  void change_kind(attr_def* definition, std::int32_t object_type);

 private:
  struct Namesakes {
    attr_def* first = nullptr;
    std::map<std::pair<std::int32_t, std::size_t>, attr_def*>
        by_kind;  ///< by kind, then position in the list
    std::vector<attr_def*> of_file;
    std::size_t defaults = 0;  ///< so many of `of_file` have had a default statement
  };
  using Names = std::unordered_map<std::string_view, Namesakes>;

  Namesakes& add(attr_def* definition);

  std::array<Names, 2> names_;  ///< ordinary, relation
  std::size_t count_ = 0;
};

}  // namespace zelk

#endif
