/// \file
/// References from one record to another, which the document holds as names or positions.

#ifndef ZELK_MODULES_JSON_REFERENCES_HPP
#define ZELK_MODULES_JSON_REFERENCES_HPP

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "common/records.hpp"

namespace zelk::modules::json {

/// Attributes of different kinds of objects may share a name; all else has one kind.
template <typename Record>
std::int32_t kind_of(const Record&) {
  return 0;
}
inline std::int32_t kind_of(const attr_def& definition) { return definition.object_type; }

/// The records of one list that others refer to.
template <typename Record>
class References {
 public:
  /// @param what  one of the records, in words
  explicit References(const char* what) : what_(what) {}

  const char* what() const { return what_; }
  std::size_t size() const { return records_.size(); }

  /// Takes in a list, which from then on must keep its records and their names.
  void index(Record* list) {
    for (; list; list = list->next) {
      positions_.emplace(list, records_.size());
      records_.push_back(list);
      if (is_named(list->name)) first_.emplace(Key{view(list->name), kind_of(*list)}, list);
    }
  }

  /// The first record of that name and kind; null when there is none.
  Record* find(std::string_view name, std::int32_t kind) const {
    const auto found = first_.find(Key{name, kind});
    return found == first_.end() ? nullptr : found->second;
  }

  /// Whether the name alone leads to this very record, in a place for `kind`.
  bool leads_back(const Record& record, std::int32_t kind) const {
    return find(view(record.name), kind) == &record;
  }

  /// The record at a position below `size()`, from 0.
  Record* at(std::size_t position) const { return records_[position]; }

  std::optional<std::size_t> position(const Record* record) const {
    const auto found = positions_.find(record);
    return found == positions_.end() ? std::nullopt : std::optional(found->second);
  }

 private:
  /// Records without a name are not those of the empty one.
  static bool is_named(const char* name) { return name != nullptr; }

  struct Key {
    std::string_view name;
    std::int32_t kind;
    bool operator==(const Key&) const = default;
  };
  struct Hash {
    std::size_t operator()(const Key& key) const {
      return std::hash<std::string_view>()(key.name) + static_cast<std::size_t>(key.kind);
    }
  };

  const char* what_;
  std::vector<Record*> records_;
  std::unordered_map<const Record*, std::size_t> positions_;
  std::unordered_map<Key, Record*, Hash> first_;
};

/// All lists that records of several others refer to.
struct Lists {
  References<attr_def> definitions{"attribute definition of this kind"};
  References<cat> categories{"category"};
  References<valtable> value_tables{"value table"};
  References<sigtype> signal_types{"signal type"};
  References<symblk> nodes{"node"};
};

}  // namespace zelk::modules::json

#endif
