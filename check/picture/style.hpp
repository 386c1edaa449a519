/// \file
/// How the picture of a frame looks: fonts, and a colour and a pattern for each signal.

#ifndef ZELK_CHECK_PICTURE_STYLE_HPP
#define ZELK_CHECK_PICTURE_STYLE_HPP

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>

#include "check/picture/svg.hpp"
#include "zelk/records.h"

namespace zelk::check {

/// What stands for a signal wherever the picture shows it.
struct SignalMark {
  std::size_t number;  ///< in its message, from 1
  std::string name;    ///< in UTF-8
};

using SignalMarks = std::unordered_map<const sigblk*, SignalMark>;

/// A box in the colour of the signal with this number. Neighbours differ in colour; after eight
/// colours the next pattern follows, so that 32 signals look different.
void fill(Svg& svg, const Box& box, std::size_t number);

/// Style sheet and patterns. Colours of signals are pale enough for black text on a light and on a
/// dark page, and people who see few colours can tell them apart.
std::string style_sheet();

/// Rules of a style sheet with the colours of signals, which bands of states have too.
///
/// @param selector  of elements with the first colour without the 0 at its end: ".frame .c"
std::string fill_rules(std::string_view selector);

}  // namespace zelk::check

#endif
