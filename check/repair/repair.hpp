/// \file
/// Mends what the strict reader refuses.

#ifndef ZELK_CHECK_REPAIR_REPAIR_HPP
#define ZELK_CHECK_REPAIR_REPAIR_HPP

#include <cstdint>
#include <set>
#include <string>
#include <string_view>

#include "check/findings/finding.hpp"
#include "check/statements/source.hpp"

namespace zelk::check {

struct RepairOptions {
  /// Names of mends that are switched off; they are those of faults (`name_of(FaultKind)`).
  std::set<std::string, std::less<>> kept{};
  /// Names of nodes that stand for no node: the placeholder takes their places.
  std::set<std::string, std::less<>> no_node{};
};

enum class Outcome : std::uint8_t {
  kUnneeded,    ///< the strict reader takes the text, and nothing is to be changed
  kMended,      ///< the strict reader takes the mended text
  kUnmendable,  ///< it takes neither
};

/// A mended text, and what was done.
struct Mended {
  Outcome outcome;
  /// Of what all places here are places: the text as it was given, but decoded where it was UTF-16.
  Source source;
  std::string text{};  ///< what the strict reader takes; empty when there is no such text
  /// One for each mend, of severity `kNote`; its rule is the name of the mend.
  Findings mends{};
  Findings faults{};  ///< what is left, when it is unmendable
};

/// Makes a text that the strict reader takes. Every message and signal of the text is kept, and all
/// else that can be; what is dropped, is shown in a finding. What no mend is about stays as it is,
/// byte for byte.
///
/// Time and memory are linear in the size of the text. The error text of the calling thread gets
/// the lines of the strict reader.
Mended repair(Source source, const RepairOptions& options);

}  // namespace zelk::check

#endif
