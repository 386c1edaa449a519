/// \file
/// Long names in their places.

#ifndef ZELK_CHECK_PATCH_FULL_NAMES_HPP
#define ZELK_CHECK_PATCH_FULL_NAMES_HPP

#include <string>
#include <vector>

#include "check/patch/cast.hpp"

namespace zelk::check {

/// The kinds of objects that have names of more than 32 characters in a text, without the attribute
/// that carries such names.
std::vector<CastKind> kinds_with_full_names(const Document& document);

/// A text of the library in which objects of these kinds have their full names, wherever they are
/// named, and the attributes that carried these are gone.
std::string with_full_names(const Document& document, const std::vector<CastKind>& kinds);

/// Whether a statement defines an attribute that carries names of more than 32 characters, or gives
/// its default.
bool defines_full_names(const Document& document, const Statement& statement);

}  // namespace zelk::check

#endif
