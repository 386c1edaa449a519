/// \file
/// Finds what is wrong, or likely to be, in databases that can be read.

#ifndef ZELK_CHECK_LINT_LINT_HPP
#define ZELK_CHECK_LINT_LINT_HPP

#include <array>
#include <cstdint>

#include "check/findings/finding.hpp"
#include "check/lint/settings.hpp"
#include "check/records/strict_reading.hpp"
#include "check/statements/document.hpp"
#include "check/statements/names.hpp"

namespace zelk::check {

struct LintResult {
  Findings findings;                      ///< in the order of their places, up to the limit
  std::array<std::uint64_t, 3> counts{};  ///< by severity; those beyond the limit included
};

/// Applies all rules that are on. Time is linear in the size of the text.
///
/// @param document  a text that the strict reader accepts
/// @param names     of the document
/// @param records   what the strict reader made of it
/// @param limit     findings in the list, at most: the first ones of the text; 0 for any
LintResult lint(const Document& document, const Names& names, const RecordsView& records,
                const LintSettings& settings, std::uint64_t limit);

}  // namespace zelk::check

#endif
