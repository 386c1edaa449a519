/// \file
/// What two sequences have in common. Elements are numbers or hashes: equal ones are the same.

#ifndef ZELK_CHECK_PATCH_SEQUENCES_HPP
#define ZELK_CHECK_PATCH_SEQUENCES_HPP

#include <cstdint>
#include <span>
#include <vector>

namespace zelk::check {

/// For every element of a sequence the index of its partner in an earlier state of the sequence.
using Partners = std::vector<std::uint32_t>;
inline constexpr std::uint32_t kNoPartner = 0xFFFFFFFF;

/// Pairs elements that have no partner yet and are equal: those in the same place from the begin or
/// the end, then the first with the first. An element 0 equals nothing.
void pair_equal(std::span<const std::uint64_t> before, std::span<const std::uint64_t> after,
                Partners& partners);

/// Parts as few pairs as possible so that the others are in the same order in both sequences.
void keep_order(Partners& partners);

/// Pairs what stands alone between two pairs, in order: most likely it has only changed.
///
/// @param partners     of which all are in order
/// @param before_size  length of the earlier sequence
void pair_gaps(Partners& partners, std::size_t before_size);

/// Elements [`begin`, `end`) of a sequence become [`new_begin`, `new_end`) of the other one.
struct Divergence {
  std::uint32_t begin;
  std::uint32_t end;
  std::uint32_t new_begin;
  std::uint32_t new_end;
};

/// What differs between two sequences, in order. As little as possible where little differs; a
/// large part that differs is one divergence.
std::vector<Divergence> divergences(std::span<const std::uint64_t> before,
                                    std::span<const std::uint64_t> after);

}  // namespace zelk::check

#endif
