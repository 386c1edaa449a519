/// \file
/// The items of an ENUM attribute, which `attr_def::enum_values` joins to one text.

#ifndef ZELK_BASE_ENUM_ITEMS_HPP
#define ZELK_BASE_ENUM_ITEMS_HPP

#include <cmath>
#include <cstddef>
#include <iterator>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace zelk {

/// Separates the items in `attr_def::enum_values`.
inline constexpr char kItemSeparator = '\n';

/// The items of a joined text as a range of views, empty items included: n separators make n + 1
/// items, so an empty text is one empty item. The text must outlive the views.
class EnumItems {
 public:
  class iterator {
   public:
    using value_type = std::string_view;
    using difference_type = std::ptrdiff_t;
    iterator() = default;
    explicit iterator(std::string_view rest) : rest_(rest), is_end_(false) {}
    std::string_view operator*() const { return rest_.substr(0, rest_.find(kItemSeparator)); }
    iterator& operator++() {
      const std::size_t length = rest_.find(kItemSeparator);
      is_end_ = length == std::string_view::npos;
      if (!is_end_) rest_.remove_prefix(length + 1);
      return *this;
    }
    iterator operator++(int) {
      iterator before = *this;
      ++*this;
      return before;
    }
    bool operator==(std::default_sentinel_t) const { return is_end_; }

   private:
    std::string_view rest_;  ///< from the item on
    bool is_end_ = true;
  };

  explicit EnumItems(std::string_view joined) : joined_(joined) {}
  iterator begin() const { return iterator(joined_); }
  std::default_sentinel_t end() const { return {}; }

  std::size_t size() const {
    std::size_t count = 0;
    for ([[maybe_unused]] const std::string_view item : *this) ++count;
    return count;
  }

  /// The item with this index, counted from 0; none for a number that is no index of an item.
  std::optional<std::string_view> at(double index) const {
    if (!(index >= 0) || std::trunc(index) != index) return std::nullopt;
    for (const std::string_view item : *this) {
      if (index-- == 0) return item;
    }
    return std::nullopt;
  }

  /// The index of the first item with this text, counted from 0.
  std::optional<std::size_t> index_of(std::string_view text) const {
    std::size_t index = 0;
    for (const std::string_view item : *this) {
      if (item == text) return index;
      ++index;
    }
    return std::nullopt;
  }

 private:
  std::string_view joined_;
};

/// Makes `enum_item` quick on this thread while it lives: the items of each joined text are looked
/// for once, and not again for each of thousands of values. No joined text may be changed or
/// released meanwhile.
class IndexedEnumItems {
 public:
  IndexedEnumItems() : outer_(std::exchange(current_, this)) {}
  IndexedEnumItems(const IndexedEnumItems&) = delete;
  IndexedEnumItems& operator=(const IndexedEnumItems&) = delete;
  ~IndexedEnumItems() { current_ = outer_; }

  /// The one of this thread; null for none.
  static IndexedEnumItems* current() { return current_; }

  const std::vector<std::string_view>& items_of(const char* joined) {
    std::vector<std::string_view>& items = items_[joined];
    if (items.empty())
      for (const std::string_view item : EnumItems(joined)) items.push_back(item);
    return items;
  }

 private:
  static inline thread_local IndexedEnumItems* current_ = nullptr;

  IndexedEnumItems* outer_;
  std::unordered_map<const char*, std::vector<std::string_view>> items_;
};

/// `EnumItems::at` of a joined text that is no null pointer.
inline std::optional<std::string_view> enum_item(const char* joined, double index) {
  IndexedEnumItems* const indexed = IndexedEnumItems::current();
  if (!indexed) return EnumItems(joined).at(index);
  const std::vector<std::string_view>& items = indexed->items_of(joined);
  const bool is_index = index >= 0 && index < static_cast<double>(items.size());
  return is_index && std::trunc(index) == index
             ? std::optional(items[static_cast<std::size_t>(index)])
             : std::nullopt;
}

}  // namespace zelk

#endif
