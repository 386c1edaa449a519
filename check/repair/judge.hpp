/// \file
/// Asks the strict reader what it makes of a text.

#ifndef ZELK_CHECK_REPAIR_JUDGE_HPP
#define ZELK_CHECK_REPAIR_JUDGE_HPP

#include <cstdint>
#include <string>
#include <string_view>

#include "check/repair/contents.hpp"

namespace zelk::check {

struct Verdict {
  bool is_accepted;
  std::uint32_t line_feeds = 0;  ///< of a refusal: those read before it
  std::string message{};         ///< of a refusal, or the first of the notes; empty without any
  Contents contents{};           ///< of an accepted text
};

/// Reads a text, and releases what was read.
///
/// @throws std::bad_alloc
Verdict judge(std::string_view text);

}  // namespace zelk::check

#endif
