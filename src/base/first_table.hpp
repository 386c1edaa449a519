/// \file
/// A hash table for lookups that are made again and again.

#ifndef ZELK_BASE_FIRST_TABLE_HPP
#define ZELK_BASE_FIRST_TABLE_HPP

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "base/seeded_hash.hpp"

namespace zelk {

/// A number whose upper bits are the place of a key among the slots of an open table. No file can
/// foresee the multiplier, and so be made to collide.
///
/// @param multiplier  odd
inline std::uint64_t spread(std::uint64_t key, std::uint64_t multiplier) {
  // Twice, because the products of evenly spaced keys are evenly spaced, and may crowd.
  const std::uint64_t once = key * multiplier;
  return (once ^ once >> 32) * multiplier;
}

/// The first record that was entered under each key; records are borrowed. An open table, at most
/// half full: a lookup costs a multiplication and mostly one access to memory, where
/// `std::unordered_map` divides and follows links.
///
/// Keys are numbers, or the hashes of what a record is found by: then `matches` tells whether a
/// record is the one.
template <typename Record>
class FirstTable {
 public:
  /// @param capacity  records that will be entered, at most
  explicit FirstTable(std::size_t capacity)
      : slots_(std::bit_ceil(2 * capacity + 2)), shift_(64 - std::countr_zero(slots_.size())) {}

  /// Null when there is none.
  template <typename Matches>
  Record* find(std::uint64_t key, const Matches& matches) const {
    return slots_[slot_of(key, matches)].record;
  }
  Record* find(std::uint64_t key) const { return find(key, kAny); }

  /// @return the first one: `record`, or else the one that is there
  template <typename Matches>
  Record* enter(std::uint64_t key, Record* record, const Matches& matches) {
    Slot& slot = slots_[slot_of(key, matches)];
    if (!slot.record) slot = {key, record};
    return slot.record;
  }
  Record* enter(std::uint64_t key, Record* record) { return enter(key, record, kAny); }

 private:
  struct Slot {
    std::uint64_t key = 0;
    Record* record = nullptr;  ///< null: the slot is free
  };
  static constexpr auto kAny = [](const Record&) { return true; };

  /// The slot of the record, or the free one where it would be.
  template <typename Matches>
  std::size_t slot_of(std::uint64_t key, const Matches& matches) const {
    auto slot = static_cast<std::size_t>(spread(key, multiplier_) >> shift_);
    const auto is_other = [&](const Slot& s) {
      return s.record && (s.key != key || !matches(*s.record));
    };
    while (is_other(slots_[slot])) slot = (slot + 1) & (slots_.size() - 1);
    return slot;
  }

  std::vector<Slot> slots_;
  std::uint64_t multiplier_ = hash_seed();  ///< odd
  int shift_;
};

}  // namespace zelk

#endif
