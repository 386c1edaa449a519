/// \file
/// What a drawing of bits cannot show, in sentences.

#ifndef ZELK_CHECK_PICTURE_NOTES_HPP
#define ZELK_CHECK_PICTURE_NOTES_HPP

#include <cstddef>
#include <string>
#include <vector>

#include "check/picture/frame_bits.hpp"
#include "check/picture/layouts.hpp"
#include "check/picture/style.hpp"

namespace zelk::check {

// Texts are in UTF-8; `marks` are those of all signals of the message.

/// "A, B and 3 more": the signals that are named, of `count` ones.
std::string names_of(const std::vector<const sigblk*>& signals, std::size_t count,
                     const SignalMarks& marks);

/// Overlaps, signals behind the data length, bytes that are not drawn; of many notes the first.
std::vector<std::string> layout_notes(const FrameBits& frame, const Layout& layout,
                                      const SignalMarks& marks);

/// Signals that none of the layouts shows, and why; of many the first.
std::vector<std::string> message_notes(const msgblk& message, const Layouts& layouts,
                                       const SignalMarks& marks);

}  // namespace zelk::check

#endif
