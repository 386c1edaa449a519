/// \file
/// Keys that collide in the hash tables of the standard library, as a file can be made to have
/// them.

#ifndef ZELK_BENCH_GROWTH_COLLISIONS_HPP
#define ZELK_BENCH_GROWTH_COLLISIONS_HPP

#include <cstddef>
#include <cstdint>
#include <string>

namespace zelk::bench {

inline constexpr std::size_t kCollidingNames = 1U << 13;

/// The number-th of `kCollidingNames` names of 16 letters, digits and underscores, which have one
/// and the same `std::hash` on 64-bit systems with libstdc++. The first call finds them, in
/// seconds.
const std::string& colliding_name(std::size_t number);

/// Identifiers of 29 bits that leave the same remainder for the number of buckets that an
/// `std::unordered_map` of libstdc++ has for 10,273 to 20,753 keys; there are 25,869 of them.
std::uint32_t colliding_id(std::size_t number);

}  // namespace zelk::bench

#endif
