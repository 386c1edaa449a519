/// \file
/// The index of a database, for lookups while no host can change it.

#ifndef ZELK_DATABASE_INDEX_HPP
#define ZELK_DATABASE_INDEX_HPP

#include <array>
#include <cstdint>
#include <deque>
#include <string_view>
#include <vector>

#include "base/hash_table.hpp"
#include "base/list.hpp"
#include "model/inline_name.hpp"
#include "zelk/database.hpp"

namespace zelk {

/// Gives what walks over the database's lists give: of several records with one key the first, and
/// the candidates for a J1939 frame in the order of the list.
class DatabaseIndex {
 public:
  /// @throws std::bad_alloc
  explicit DatabaseIndex(const ZelkDatabase& database);

  /// Null when there is none.
  ///
  /// @param name  not null
  template <typename Record>
  Record* named(const char* name) const {
    const auto& names = names_of(static_cast<const Record*>(nullptr));
    return names.find(key_of<Record>(name),
                      [name](const Record* record) { return is_named(*record, name); });
  }
  msgblk* message(std::uint32_t id) const { return messages_by_id_.find(id); }
  /// @param id  with `ZELK_ID_EXTENDED`
  msgblk* j1939_message(std::uint32_t id, std::uint32_t flags) const;

  // Candidates for `j1939::find_message`.
  template <typename Visit>
  void visit_addresses(std::uint32_t id, Visit visit) const;
  template <typename Visit>
  void visit_numbers(std::uint32_t id, Visit visit) const;
  bool default_is_j1939_format() const { return default_is_j1939_; }

 private:
  /// The messages that compete for the same frames, in the order of the list, but of each priority
  /// only the first and the last: no rule takes another one. So a lookup takes the same time
  /// however many there are.
  using Candidates = std::vector<msgblk*>;

  /// Candidates by a part of the identifier.
  struct CandidateTable {
    explicit CandidateTable(std::size_t capacity) : table(capacity) {}
    void enter(std::uint32_t key, msgblk* message);

    HashTable<std::uint64_t, Candidates*> table;
    std::deque<Candidates> all;
  };

  using Keys = std::array<std::uint32_t, 4>;
  template <typename Visit>
  static void visit_candidates(const CandidateTable& table, const Keys& keys, Visit visit);

  const HashTable<std::uint64_t, symblk*>& names_of(const symblk*) const { return nodes_; }
  const HashTable<std::uint64_t, msgblk*>& names_of(const msgblk*) const { return messages_; }
  const HashTable<std::uint64_t, env_var_blk*>& names_of(const env_var_blk*) const {
    return variables_;
  }
  const HashTable<std::uint64_t, valtable*>& names_of(const valtable*) const { return tables_; }
  const HashTable<std::uint64_t, sigtype*>& names_of(const sigtype*) const { return types_; }
  const HashTable<std::uint64_t, attr_def*>& names_of(const attr_def*) const {
    return definitions_;
  }

  /// Hash of the characters that count.
  template <typename Record>
  std::uint64_t key_of(std::string_view name) const {
    return hash_(kHasInlineName<Record> ? name.substr(0, ZELK_INLINE_NAME_MAX) : name);
  }
  template <typename Record>
  HashTable<std::uint64_t, Record*> by_name(Record* list) const;

  SeededHash hash_;
  HashTable<std::uint64_t, symblk*> nodes_;
  HashTable<std::uint64_t, msgblk*> messages_;
  HashTable<std::uint64_t, env_var_blk*> variables_;
  HashTable<std::uint64_t, valtable*> tables_;
  HashTable<std::uint64_t, sigtype*> types_;
  HashTable<std::uint64_t, attr_def*> definitions_;
  HashTable<std::uint64_t, msgblk*> messages_by_id_;
  CandidateTable by_addresses_;         ///< `j1939::address_key` of CAN identifiers
  CandidateTable by_group_and_source_;  ///< keys of stored numbers, as `j1939::proprietary_keys`
  bool has_group_numbers_;
  bool default_is_j1939_;
};

}  // namespace zelk

#endif
