/// \file
/// The choice of frames by identifier and interface.

#ifndef ZELK_TOOL_LOG_FRAME_FILTER_HPP
#define ZELK_TOOL_LOG_FRAME_FILTER_HPP

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "zelk/logs/frame.hpp"

namespace zelk::tool {

/// A set of identifiers, each with its format bit.
class IdSet {
 public:
  /// Adds identifiers as the command line has them: decimal or hexadecimal behind 0x, one or a
  /// range "A-B" with both ends.
  ///
  /// An identifier is extended when it is above 0x7FF, has an "x" behind it or bit 31; a range is
  /// when one of its ends has one of the latter, and else may contain identifiers of both formats.
  ///
  /// @return false for another text, which adds nothing
  bool add(std::string_view text);

  bool empty() const { return ranges_.empty(); }
  bool holds(std::uint32_t id) const;

 private:
  void add_range(std::uint32_t first, std::uint32_t last);

  std::map<std::uint32_t, std::uint32_t> ranges_;  // the last one of each by its first one, apart
};

/// Chooses frames; an empty list or set leaves all in.
struct FrameFilter {
  std::vector<std::string> interfaces{};
  IdSet ids{};

  /// @param interface_name  of the frame
  bool takes_interface(std::string_view interface_name) const;
  /// Error frames have no identifier.
  bool takes_id(std::uint32_t id, unsigned flags) const {
    return ids.empty() || (!(flags & kZelkFrameError) && ids.holds(id));
  }
};

}  // namespace zelk::tool

#endif
