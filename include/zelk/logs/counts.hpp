/// \file
/// What becomes of frames that are decoded.

#ifndef ZELK_LOGS_COUNTS_HPP
#define ZELK_LOGS_COUNTS_HPP

#include <cstddef>
#include <cstdint>
#include <unordered_map>

#include "zelk/export.h"
#include "zelk/logs/frame.hpp"

/// What became of the frames of a log, or of a part of it. Each frame counts once, but for
/// `too_short`.
struct ZelkFrameCounts {
  /// Differs from process to process, so that no log can have identifiers that all collide.
  struct IdHash {
    ZELK_LOGS_API std::size_t operator()(std::uint32_t id) const;
  };

  std::uint64_t outside = 0;    ///< of the times that are wanted
  std::uint64_t decoded = 0;    ///< a database has their message, selected or not
  std::uint64_t unknown = 0;    ///< of identifiers that no database has
  std::uint64_t packets = 0;    ///< of the J1939 transport protocol, likewise, whose messages were
                                ///< put together
  std::uint64_t remote = 0;     ///< remote frames
  std::uint64_t errors = 0;     ///< error frames
  std::uint64_t too_short = 0;  ///< those of `decoded` with fewer bytes than their message has
  /// The number of frames with each unknown identifier.
  std::unordered_map<std::uint32_t, std::uint64_t, IdHash> unknown_ids{};

  /// Counts a frame that holds no signals.
  ///
  /// @param flags  of `ZelkFrameFlags`
  /// @return false when it is one
  bool AddKind(unsigned flags) {
    if ((flags & (kZelkFrameRemote | kZelkFrameError)) == 0) return true;
    ++(flags & kZelkFrameRemote ? remote : errors);
    return false;
  }
  void AddUnknown(std::uint32_t id, std::uint64_t frames = 1) {
    unknown += frames;
    unknown_ids[id] += frames;
  }
  void Clear() { *this = {}; }
  ZELK_LOGS_API ZelkFrameCounts& operator+=(const ZelkFrameCounts& other);
};

#endif
