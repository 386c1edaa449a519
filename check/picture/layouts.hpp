/// \file
/// Which signals of a message lie in the frame together.

#ifndef ZELK_CHECK_PICTURE_LAYOUTS_HPP
#define ZELK_CHECK_PICTURE_LAYOUTS_HPP

#include <cstddef>
#include <string>
#include <vector>

#include "base/encoding.hpp"
#include "zelk/records.h"

namespace zelk::check {

/// Signals that lie in the frame together.
struct Layout {
  /// "Mux = 3, 5..7"; one value with what it is called: Mux = 3 "Idle"; below another multiplexor:
  /// "Mux = 3, Sub = 1"; empty: always.
  std::string condition;
  std::vector<const sigblk*> signals;  ///< those that are always there first
  /// The last part of `condition`: what holds in this layout beside the one that it refines.
  std::string step = {};
  std::size_t depth = 0;         ///< number of multiplexors above the one of `step`
  std::size_t common_count = 0;  ///< how many of `signals` the step does not select
};

struct Layouts {
  std::vector<Layout> layouts;
  bool complete = true;  ///< false: the message has more of them than are worth drawing
};

/// The layouts of a message: one without multiplexed signals; otherwise, for every multiplexor, one
/// for each set of signals that its values select, together with everything that is always there
/// and, for a multiplexor that is multiplexed itself, with what the values above it select. Such
/// layouts stand behind the one that they refine, so that all are in the order of a tree. Values
/// that select nothing make no layout. Signals with multiplexor values in a message that names no
/// multiplexor for them come under "(no multiplexor)".
///
/// A signal of which no value leads to its presence (without values, or on a cycle of multiplexors)
/// is in none.
///
/// @param encoding  of the message's texts; conditions are in UTF-8
Layouts layouts_of(const msgblk& message, Encoding encoding);

}  // namespace zelk::check

#endif
