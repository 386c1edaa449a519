/// \file
/// All faults of a file.

#ifndef ZELK_CHECK_FAULTS_FIND_FAULTS_HPP
#define ZELK_CHECK_FAULTS_FIND_FAULTS_HPP

#include <vector>

#include "check/statements/document.hpp"
#include "check/statements/names.hpp"

namespace zelk::check {

/// The faults of the document's characters and forms, and of what its statements say together:
/// their order, what they refer to, the values that they give. Time and memory are linear in the
/// size of the text.
///
/// A file that the reader refuses has one or more that are not `is_accepted`. One that it reads
/// without a note has none of these, but for bytes 0xFF, behind which the reader reads nothing, and
/// texts over lines that look like statements.
///
/// @param names  of the document
/// @return in the order of their places
std::vector<Fault> find_faults(const Document& document, const Names& names);

}  // namespace zelk::check

#endif
