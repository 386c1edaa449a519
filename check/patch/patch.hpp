/// \file
/// Changes the text of a file only where an edit of its records needs it.

#ifndef ZELK_CHECK_PATCH_PATCH_HPP
#define ZELK_CHECK_PATCH_PATCH_HPP

#include <cstdint>
#include <optional>

#include "check/patch/splices.hpp"
#include "check/statements/document.hpp"

namespace zelk::check {

/// Which nodes the list of nodes gets beside those that an edit adds.
enum class Nodes : std::uint8_t {
  kListed,  ///< none
  kAll      ///< those as well that only a sender, receiver or access node introduces
};

/// Carries an edit over to the text of a file: what differs between the records before and after
/// it, both as the library writes them, changes in the text; every other byte stays. A statement
/// that changes keeps its place, and the spelling of all that is not about the edit. One that goes
/// takes its line with it when it stands there alone. A new one is put behind that which precedes
/// it in the order of the database, in the style of the file.
///
/// Time and memory are linear in the size of the texts, but for sorting.
///
/// The result is what it should be for files that the reader accepts, yet nothing here proves it:
/// whoever writes it to a file reads it first, and compares the records with those of `after`.
/// Where the edit takes the last word from which a node came that the list of nodes lacks, that is
/// only right with `Nodes::kAll`.
///
/// @param original  a text that the reader accepts without a fault
/// @param before    its records, as the library writes them
/// @param after     the same after the edit
/// @return none when the text does not have the objects of `before`
std::optional<Patched> patch(const Document& original, const Document& before,
                             const Document& after, Nodes nodes = Nodes::kListed);

}  // namespace zelk::check

#endif
