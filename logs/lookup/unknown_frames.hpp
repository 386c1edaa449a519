/// \file
/// Counts frames of unknown identifiers, which may be most of a log.

#ifndef ZELK_LOGS_LOOKUP_UNKNOWN_FRAMES_HPP
#define ZELK_LOGS_LOOKUP_UNKNOWN_FRAMES_HPP

#include <array>
#include <cstddef>
#include <cstdint>

#include "zelk/logs/counts.hpp"

namespace zelk::logs {

/// Counts by identifiers of late, so that few frames cost a search among all of them.
class UnknownFrames {
 public:
  /// @param counts  receives what was counted of another identifier, perhaps
  void add(std::uint32_t id, ZelkFrameCounts& counts) {
    Slot& slot = slots_[(id ^ id >> 8 ^ id >> 16) % slots_.size()];
    if (slot.id != id) give(slot, counts);
    slot.id = id;
    ++slot.frames;
  }
  /// Adds all that was counted.
  void give(ZelkFrameCounts& counts) {
    for (Slot& slot : slots_) give(slot, counts);
  }

 private:
  struct Slot {
    std::uint32_t id = 0;
    std::uint32_t frames = 0;
  };

  static void give(Slot& slot, ZelkFrameCounts& counts) {
    if (slot.frames > 0) counts.AddUnknown(slot.id, slot.frames);
    slot.frames = 0;
  }

  std::array<Slot, 256> slots_{};
};

}  // namespace zelk::logs

#endif
