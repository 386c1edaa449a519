/// \file
/// The bit layout of a message as a picture.

#ifndef ZELK_CHECK_PICTURE_MESSAGE_PICTURE_HPP
#define ZELK_CHECK_PICTURE_MESSAGE_PICTURE_HPP

#include <string>

#include "base/encoding.hpp"
#include "zelk/records.h"

namespace zelk::check {

/// The bits of a message's frame and the table of its signals as an SVG file in UTF-8, which needs
/// nothing beside itself: viewers show it in light or dark, and it can be printed or put into a
/// document. A message with multiplexed signals has a panel for each set of signals that its
/// multiplexors select (see `layouts_of`).
///
/// @param encoding  of the message's texts
std::string message_picture(const msgblk& message, Encoding encoding);

}  // namespace zelk::check

#endif
