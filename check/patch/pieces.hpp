/// \file
/// Statements as sequences of what can change in them, and what they are about.

#ifndef ZELK_CHECK_PATCH_PIECES_HPP
#define ZELK_CHECK_PATCH_PIECES_HPP

#include <cstdint>
#include <vector>

#include "check/patch/cast.hpp"

namespace zelk::check {

/// A token, or a number with its sign.
struct Piece {
  std::uint32_t first;  ///< token
  std::uint32_t end;
  std::uint32_t object;  ///< that it names; `Cast::kNone` for none
  std::uint64_t shape;   ///< hash of its part in the statement
  std::uint64_t value;  ///< hash of shape and meaning: of the object, not of its name; of a number,
                        ///< not of its digits
};

std::vector<Piece> pieces_of(const Cast& cast, std::uint32_t statement);

/// What the statement is about, as a hash: the same in all documents of a patch for statements of
/// one kind about one object, and its attribute. 0 for statements that are about nothing known.
std::uint64_t subject_of(const Cast& cast, std::uint32_t statement);

}  // namespace zelk::check

#endif
