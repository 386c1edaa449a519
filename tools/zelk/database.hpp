/// \file
/// One file, read and held.

#ifndef ZELK_TOOL_DATABASE_HPP
#define ZELK_TOOL_DATABASE_HPP

#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "zelk/zelk.h"

namespace zelk::tool {

/// The records of one file: all list heads, released together.
struct Database {
  Database() = default;
  ~Database();
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  /// Reads `path` into the lists, once. The library's error text is cleared before; afterwards it
  /// tells every fault and warning of this file, and `zelk_symbols_shortened` whether this file's
  /// names were cut.
  ///
  /// @return true on success; otherwise the lists hold what stands in front of the fault
  bool read(const std::string& path);

  /// Writes the lists to `path`, multiplexor ranges included.
  /// @return false when the file cannot be opened
  bool write(const std::string& path) const;

  symblk* nodes = nullptr;
  msgblk* messages = nullptr;
  env_var_blk* env_vars = nullptr;
  btlblk* bit_timings = nullptr;
  attr_def* attr_defs = nullptr;
  attr* attrs = nullptr;  ///< the database's own attribute values
  cat* categories = nullptr;
  filter_t filter = {};
  char* comment = nullptr;
  char* version = nullptr;
  sigtype* sig_types = nullptr;
  valtable* val_tables = nullptr;
};

/// What the library's error text says of the file read last: one text per fault or warning,
/// `escaped`.
std::vector<std::string> report_lines();

/// One of these lines, unchanged behind the file that it is about.
std::string behind_path(const std::string& path, const std::string& line);

/// What is to be told when `zelk_symbols_shortened`.
inline constexpr std::string_view kShortenedWarning =
    "names or units are longer than the library keeps, and were cut";

/// A list of records as a range; see `each`.
template <typename Record>
class RecordRange {
 public:
  class iterator {
   public:
    using value_type = Record;
    using difference_type = std::ptrdiff_t;
    iterator() = default;
    explicit iterator(const Record* at) : at_(at) {}
    const Record& operator*() const { return *at_; }
    iterator& operator++() {
      at_ = at_->next;
      return *this;
    }
    iterator operator++(int) {
      iterator before = *this;
      ++*this;
      return before;
    }
    bool operator==(const iterator&) const = default;

   private:
    const Record* at_ = nullptr;
  };

  explicit RecordRange(const Record* head) : head_(head) {}
  iterator begin() const { return iterator(head_); }
  iterator end() const { return iterator(); }
  bool empty() const { return !head_; }
  std::size_t size() const { return static_cast<std::size_t>(std::distance(begin(), end())); }

 private:
  const Record* head_;
};

/// The list that starts at `head`; null is an empty one: `for (const sigblk& signal :
/// each(message.signals))`.
template <typename Record>
RecordRange<Record> each(const Record* head) {
  return RecordRange<Record>(head);
}

}  // namespace zelk::tool

#endif
