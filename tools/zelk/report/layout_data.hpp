/// \file
/// Bit layouts of messages, for templates.

#ifndef ZELK_TOOL_REPORT_LAYOUT_DATA_HPP
#define ZELK_TOOL_REPORT_LAYOUT_DATA_HPP

#include <cstddef>
#include <functional>
#include <nlohmann/json.hpp>
#include <string>

#include "base/encoding.hpp"
#include "zelk/records.h"

namespace zelk::tool {

struct LayoutOptions {
  /// What the identifiers of elements in the page begin with; no two layouts of a page share it.
  std::string element;
  /// Whether a signal stands out from the others. Empty: none does, and the page has a table that
  /// says where signals lie.
  std::function<bool(const sigblk&)> is_marked = {};
  /// Which colour a signal has, a number that may be any; empty: its number in the message.
  std::function<std::size_t(const sigblk&)> color_of = {};
};

/// The layouts of a message for layout.mustache: with multiplexed signals, one for each set of them
/// that is there together. Shapes of signals tell their number in the message, from 1, unless it is
/// that of the shape: the script takes what it says of them from that row of the table of signals
/// in the same section.
///
/// A message with many layouts has only some of them, as many as stay linear in its signals; a note
/// tells it.
nlohmann::json layout_data(const msgblk& message, Encoding encoding, const LayoutOptions& options);

/// What layouts refer to, as HTML: a page has it once.
std::string layout_parts();

}  // namespace zelk::tool

#endif
