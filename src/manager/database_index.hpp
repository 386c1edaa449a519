/// \file
/// An index over the objects of a database that nobody can change.

#ifndef ZELK_MANAGER_DATABASE_INDEX_HPP
#define ZELK_MANAGER_DATABASE_INDEX_HPP

#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "text/seeded_hash.hpp"
#include "zelk/database.hpp"

namespace zelk {

/// Answers as the walks over the database's lists do: of several records with one key it has the
/// first, and candidates for a J1939 frame stand in the list's order.
class DatabaseIndex {
 public:
  explicit DatabaseIndex(const ZelkDatabase& database);

  /// Null when there is none.
  template <typename Record>
  Record* named(std::string_view name) const {
    const NameMap<Record>& map = names_of(static_cast<const Record*>(nullptr));
    const auto found = map.find(name.substr(0, key_length(static_cast<Record*>(nullptr))));
    return found == map.end() ? nullptr : found->second;
  }
  msgblk* message(std::uint32_t id) const;
  msgblk* j1939_message(std::uint32_t id, std::uint32_t flags) const;

 private:
  template <typename Record>
  using NameMap = std::unordered_map<std::string_view, Record*, SeededHash, std::equal_to<>>;
  using GroupMap = std::unordered_map<std::uint32_t, std::vector<msgblk*>, SeededHash>;

  const NameMap<symblk>& names_of(const symblk*) const { return nodes_; }
  const NameMap<msgblk>& names_of(const msgblk*) const { return messages_; }
  const NameMap<env_var_blk>& names_of(const env_var_blk*) const { return variables_; }
  const NameMap<valtable>& names_of(const valtable*) const { return tables_; }
  const NameMap<sigtype>& names_of(const sigtype*) const { return types_; }
  const NameMap<attr_def>& names_of(const attr_def*) const { return definitions_; }

  /// Characters of a name that count: all of an object's own, as many as fit of an inline one.
  template <typename Record>
  static constexpr std::size_t key_length(const Record*) {
    return std::is_array_v<decltype(Record::name)> ? ZELK_INLINE_NAME_MAX : std::string_view::npos;
  }
  template <typename Record>
  static void enter_names(NameMap<Record>& map, Record* list);

  NameMap<symblk> nodes_;
  NameMap<msgblk> messages_;
  NameMap<env_var_blk> variables_;
  NameMap<valtable> tables_;
  NameMap<sigtype> types_;
  NameMap<attr_def> definitions_;
  std::unordered_map<std::uint32_t, msgblk*, SeededHash> messages_by_id_;
  GroupMap groups_of_ids_;      ///< by the group number within a CAN identifier
  GroupMap groups_of_numbers_;  ///< by the group number that is stored for an identifier
  bool has_group_numbers_;
  bool default_is_j1939_;
};

}  // namespace zelk

#endif
