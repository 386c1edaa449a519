/// \file
/// What a patch changes, line by line.

#ifndef ZELK_CHECK_PATCH_HUNKS_HPP
#define ZELK_CHECK_PATCH_HUNKS_HPP

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "check/patch/splices.hpp"

namespace zelk::check {

/// A line of a unified diff.
struct DiffLine {
  char mark;  ///< ' ', '-', '+', '@' in front of each part that changes, or '\\' behind a line that
              ///< ends the text without a line feed
  std::string text;
};

/// The changed lines as a unified diff shows them, with up to three lines around each.
///
/// @param original  that was patched
std::vector<DiffLine> diff_lines(const Source& original, const Patched& patched);

}  // namespace zelk::check

#endif
