/// \file
/// The faults of a file as findings, in the words of a compiler.

#ifndef ZELK_CHECK_FAULTS_DIAGNOSE_HPP
#define ZELK_CHECK_FAULTS_DIAGNOSE_HPP

#include <cstdint>
#include <string_view>

#include "check/findings/finding.hpp"
#include "check/statements/document.hpp"

namespace zelk::check {

/// What is wrong with a file. Errors are why the reader refuses it; warnings it passes over.
///
/// One fault makes one finding: a block of statements out of order, or something unknown that many
/// statements refer to, is shown once, with the next place and the number of all. References to
/// what a statement introduces that itself cannot be read are left out.
///
/// @param limit  length of the list, errors first; 0 for any
Findings diagnose(const Document& document, std::uint64_t limit);

/// What a kind of faults is about, in one sentence; empty for a name that is none of them.
///
/// @param name  as `name_of` gives it
std::string_view sentence_of_fault(std::string_view name);

}  // namespace zelk::check

#endif
