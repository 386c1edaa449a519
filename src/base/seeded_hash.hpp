/// \file
/// Hashes of keys that files choose. The seed differs from process to process: with a fixed one, a
/// file could be made whose keys all collide.

#ifndef ZELK_BASE_SEEDED_HASH_HPP
#define ZELK_BASE_SEEDED_HASH_HPP

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string_view>
#include <type_traits>

#include "base/compiler.hpp"

namespace zelk {

/// An odd number that differs from process to process.
inline std::uint64_t hash_seed() {
  static const std::uint64_t seed = [] {
    const auto ticks = std::chrono::steady_clock::now().time_since_epoch().count();
    const auto address =
        reinterpret_cast<std::uintptr_t>(&hash_seed);  // placed at random by the system
    return ((static_cast<std::uint64_t>(ticks) << 20) ^ address) * 0x9E3779B97F4A7C15U | 1U;
  }();
  return seed;
}

/// Multiply-and-fold over words of 8 bytes, with the seed as the multiplier. The high half of the
/// product counts: the low one alone lets the upper bits of two words cancel under every seed.
struct SeededHash {
  using is_transparent = void;  ///< strings are found by views

  std::size_t operator()(std::string_view text) const {
    std::uint64_t hash = seed ^ text.size();
    while (text.size() > sizeof(std::uint64_t)) {
      hash = fold(hash, text.data(), sizeof(std::uint64_t));
      text.remove_prefix(sizeof(std::uint64_t));
    }
    return of_width(fold(hash, text.data(), text.size()));
  }

  template <typename Integer>
  requires std::is_integral_v<Integer> std::size_t operator()(Integer key) const {
    return of_width(fold(seed, reinterpret_cast<const char*>(&key), sizeof key));
  }

  std::uint64_t seed = hash_seed();

 private:
  std::uint64_t fold(std::uint64_t hash, const char* bytes, std::size_t size) const {
    std::uint64_t word = 0;
    if (size > 0) std::memcpy(&word, bytes, size);  // an empty text may have no address
    const WideProduct product = wide_product(hash ^ word, seed);
    return product.high ^ product.low;
  }

  /// All bits count where a hash has 32 of them, too.
  static std::size_t of_width(std::uint64_t hash) {
    if constexpr (sizeof(std::size_t) < sizeof hash) hash ^= hash >> 32;
    return static_cast<std::size_t>(hash);
  }
};

}  // namespace zelk

#endif
