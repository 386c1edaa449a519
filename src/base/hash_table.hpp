/// \file
/// A hash table for lookups that are made again and again.

#ifndef ZELK_BASE_HASH_TABLE_HPP
#define ZELK_BASE_HASH_TABLE_HPP

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "base/seeded_hash.hpp"

namespace zelk {

/// The first value that was entered under each key. An open table, at most half full: a lookup
/// costs two multiplications and mostly one access to memory, where `std::unordered_map` divides
/// and follows links. Nothing is taken out.
///
/// Keys are numbers, or hashes of names; with hashes, `matches` tells whether a value is the wanted
/// one. Places of keys differ from process to process, so no file can make its keys collide.
///
/// @tparam kNone  stands for no value, and is never entered
template <typename Key, typename Value, Value kNone = Value{}>
class HashTable {
 public:
  /// @param capacity  values that will be entered, at most
  /// @throws std::bad_alloc
  explicit HashTable(std::size_t capacity)
      : slots_(std::bit_ceil(2 * capacity + 2)), shift_(64 - std::countr_zero(slots_.size())) {}

  /// `kNone` when there is none.
  template <typename Matches>
  Value find(Key key, const Matches& matches) const {
    return slots_[slot_of(key, matches)].value;
  }
  Value find(Key key) const { return find(key, kAny); }

  /// @return the first one: `value`, or else the one that is there
  template <typename Matches>
  Value enter(Key key, Value value, const Matches& matches) {
    Slot& slot = slots_[slot_of(key, matches)];
    if (slot.value == kNone) slot = {key, value};
    return slot.value;
  }
  Value enter(Key key, Value value) { return enter(key, value, kAny); }

 private:
  struct Slot {
    Key key{};
    Value value = kNone;
  };
  static constexpr auto kAny = [](const Value&) { return true; };

  /// The slot of the value, or the free slot where it would be.
  template <typename Matches>
  std::size_t slot_of(Key key, const Matches& matches) const {
    const std::size_t last = slots_.size() - 1;
    std::size_t slot = first_slot_of(key);
    const auto is_other = [&](const Slot& s) {
      return s.value != kNone && (s.key != key || !matches(s.value));
    };
    while (is_other(slots_[slot])) slot = (slot + 1) & last;
    return slot;
  }

  /// Multiplied twice, because the products of evenly spaced keys are evenly spaced, and may crowd.
  std::size_t first_slot_of(std::uint64_t key) const {
    const std::uint64_t once = key * multiplier_;
    return static_cast<std::size_t>(((once ^ once >> 32) * multiplier_) >> shift_);
  }

  std::vector<Slot> slots_;
  std::uint64_t multiplier_ = hash_seed();  ///< odd
  int shift_;
};

}  // namespace zelk

#endif
