/// \file
/// Objects that get new names, found by their old and by their new ones.

#ifndef ZELK_CHECK_REPAIR_RENAMED_OBJECTS_HPP
#define ZELK_CHECK_REPAIR_RENAMED_OBJECTS_HPP

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/hash_table.hpp"
#include "base/seeded_hash.hpp"
#include "check/statements/document.hpp"
#include "check/statements/fault.hpp"

namespace zelk::check {

/// What a name is the name of.
enum class NameKind : std::uint8_t {
  kMessage,
  kSignal,
  kNode,
  kVariable,
  kTable,
  kType,
  kGroup,
  kCategory,
  kOther
};

struct Naming {
  NameKind kind;
  bool is_introduced;  ///< not only referred to
};

Naming naming_of(Role role);

/// An object with a new name.
struct Renamed {
  NameKind kind;
  std::uint32_t owner;        ///< message of a signal, or the message itself
  std::string_view old_name;  ///< as it stands in the text
  std::string new_name;
  const Fault* fault;  ///< at its name
  std::uint32_t references = 0;
  std::uint32_t comment = Statement::kNone;  ///< statement
  bool is_told = false;                      ///< a rewritten comment has the old name

  bool has_blanks() const { return old_name.find(' ') != std::string_view::npos; }
};

class RenamedObjects {
 public:
  /// @param most  number of objects that are added, at most
  explicit RenamedObjects(std::size_t most) : by_old_name_(most), by_new_name_(most) {}

  bool empty() const { return all_.empty(); }
  std::vector<Renamed>& all() { return all_; }
  const std::vector<Renamed>& all() const { return all_; }

  /// Null when there is none; valid until the next one is added.
  Renamed* find(NameKind kind, std::uint32_t owner, std::string_view old_name);
  /// Names of messages are given once in the whole file, whatever the owner.
  bool has_given(NameKind kind, std::uint32_t owner, std::string_view new_name) const;
  Renamed& add(Renamed renamed);

 private:
  using Table = HashTable<std::uint64_t, std::uint32_t, Statement::kNone>;

  std::uint64_t key_of(NameKind kind, std::uint32_t owner, std::string_view name) const {
    const std::uint64_t place = std::uint64_t{owner} * 16 + static_cast<std::uint64_t>(kind);
    return hash_(name) + place * hash_.seed;
  }

  SeededHash hash_;
  std::vector<Renamed> all_;
  Table by_old_name_;
  Table by_new_name_;
};

}  // namespace zelk::check

#endif
