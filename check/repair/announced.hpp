/// \file
/// Names that "NS_" announces: wherever one stands behind the list, the reader skips all up to the
/// next semicolon.

#ifndef ZELK_CHECK_REPAIR_ANNOUNCED_HPP
#define ZELK_CHECK_REPAIR_ANNOUNCED_HPP

#include <cstdint>
#include <string_view>
#include <unordered_set>

#include "base/seeded_hash.hpp"
#include "check/repair/mender.hpp"

namespace zelk::check {

using NameSet = std::unordered_set<std::string_view, SeededHash>;

/// Of all lists.
NameSet announced_names(const Document& document);

/// A name, or the parts of an odd one or of an odd number, which the reader takes for names where
/// it is not mended.
void insert_names(const Document& document, const Token& token, NameSet& names);

/// The names in statements that stand in front of another one.
NameSet names_in_front(const Document& document, const Statement& end);

/// Takes names out of the list that stands behind statements which use them: in its place it would
/// hide these statements.
///
/// @param list  index of the first "NS_"
void forget_used_names(Mender& mender, std::uint32_t list);

/// Drops statements of announced kinds that nothing divides from the list any more: they would
/// become a part of it. Comes when all else that is dropped is.
void drop_next_to_list(Mender& mender, std::uint32_t list);

}  // namespace zelk::check

#endif
