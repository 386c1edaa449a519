/// \file
/// References from one record to another, which the document holds as names or positions.

#ifndef ZELK_MODULES_JSON_REFERENCES_HPP
#define ZELK_MODULES_JSON_REFERENCES_HPP

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

#include "common/records.hpp"
#include "json/path.hpp"

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

  /// Takes in a list, which from then on must keep its records and their names, in the place of the
  /// one before.
  void index(Record* list) {
    *this = References(what_);
    for (Record& record : each(list)) {
      positions_.emplace(&record, records_.size());
      records_.push_back(&record);
      // Records without a name are not those of the empty one.
      if (is_named(record.name)) first_.try_emplace({kind_of(record), view(record.name)}, &record);
    }
  }

  /// Names mean records of this kind from now on.
  void expect(std::int32_t kind) { kind_ = kind; }

  /// The first record of that name and of the expected kind; null when there is none.
  Record* find(std::string_view name) const {
    const auto found = first_.find(std::pair(kind_, name));
    return found == first_.end() ? nullptr : found->second;
  }

  /// Whether the name alone leads to this very record.
  bool leads_back(const Record& record) const { return find(view(record.name)) == &record; }

  /// The record at a position below `size()`, from 0.
  Record* at(std::size_t position) const { return records_[position]; }

  std::optional<std::size_t> position(const Record* record) const {
    const auto found = positions_.find(record);
    return found == positions_.end() ? std::nullopt : std::optional(found->second);
  }

 private:
  static bool is_named(const char* name) { return name != nullptr; }

  const char* what_;
  std::int32_t kind_ = 0;
  std::vector<Record*> records_;
  std::unordered_map<const Record*, std::size_t> positions_;
  std::map<std::pair<std::int32_t, std::string_view>, Record*> first_;  ///< by kind and name
};

/// All lists whose records others refer to; of signals those of one message.
struct Lists : References<attr_def>,
               References<cat>,
               References<valtable>,
               References<sigtype>,
               References<symblk>,
               References<sigblk> {
  Lists()
      : References<attr_def>("attribute definition of this kind"),
        References<cat>("category"),
        References<valtable>("value table"),
        References<sigtype>("signal type"),
        References<symblk>("node"),
        References<sigblk>("signal") {}

  /// The list that has records of a type.
  template <typename Record>
  References<Record>& of(const Record*) {
    return *this;
  }
  /// Takes in a list when others refer to its records.
  template <typename Record>
  void index(Record* list) {
    if constexpr (std::is_base_of_v<References<Record>, Lists>) of(list).index(list);
  }
};

/// @throws Fault when a signal selects itself, directly or by others
void check_circles(const Path& path, const sigblk* signals);

}  // namespace zelk::modules::json

#endif
