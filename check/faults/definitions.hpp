/// \file
/// Attribute definitions, found as the reader finds them.

#ifndef ZELK_CHECK_FAULTS_DEFINITIONS_HPP
#define ZELK_CHECK_FAULTS_DEFINITIONS_HPP

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/seeded_hash.hpp"
#include "check/statements/document.hpp"

namespace zelk::check {

/// The value type and items of a definition.
struct Definition {
  std::uint32_t statement;
  Word object;  ///< kNone for the network, kNodes, kMessage, kSignal, kVariable, kSignalType; or
                ///< the keyword of a relation
  Word type;    ///< kInt, kHex, kFloat, kString or kEnum
  bool is_long_name;  ///< its values are names of objects
  bool has_default = false;
  /// Of an ENUM, with their indexes; filled in by `Definitions::read_items`.
  std::unordered_map<std::string, std::size_t, SeededHash> items{};
  std::size_t item_count = 0;
};

/// The item of an ENUM for which a text of the file stands.
std::string item_value(std::string text);

/// Where a definition may be looked for that is not of one kind.
inline constexpr Word kAnyObject = Word::kDefinition;
inline constexpr Word kAnyRelation = Word::kRelationDefinition;

/// The definitions of a document. "BA_DEF_SGTYPE_" makes one of another kind for signal types.
class Definitions {
 public:
  /// @param document  must outlive the object
  explicit Definitions(const Document& document);

  /// The first definition for objects of this kind; else the first of that name for any object, or
  /// for any relation. Null when there is none.
  ///
  /// @param name  as the reader keeps it, see `text_value`
  Definition* find(Word object, std::string_view name);

  /// The definition to which the next default with that name belongs: the first one that has none
  /// yet, else the first one.
  ///
  /// @param object  kAnyObject, kAnyRelation, or the keyword of a relation
  Definition* next_for_default(Word object, std::string_view name);

  /// Reads the items of an ENUM, unless that was done.
  void read_items(Definition& definition) const;

 private:
  /// Definitions of one name and kind, in the order of the file.
  struct Group {
    std::vector<std::uint32_t> members;
    std::size_t first = 0;         ///< those in front have become definitions for signal types
    std::size_t next_default = 0;  ///< those in front have defaults
  };

  void enter(std::uint32_t index);
  void move_to_signal_types(std::string_view name);
  Group* group(Word object, std::string_view name);
  Definition* first(Word object, std::string_view name);

  const Document& document_;
  std::vector<Definition> all_;
  std::unordered_map<std::string, Group, SeededHash> groups_;
};

}  // namespace zelk::check

#endif
