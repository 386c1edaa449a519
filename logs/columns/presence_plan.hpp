/// \file
/// In which frames of a message its signals are present, prepared for many frames at once.

#ifndef ZELK_LOGS_COLUMNS_PRESENCE_PLAN_HPP
#define ZELK_LOGS_COLUMNS_PRESENCE_PLAN_HPP

#include <cstddef>
#include <cstdint>
#include <optional>
#include <tuple>
#include <utility>
#include <vector>

#include "logs/columns/placement.hpp"

namespace zelk::logs {

/// A condition that frames fulfil or not, for all signals that have the same one.
struct Presence {
  static constexpr std::uint32_t kAlways = UINT32_MAX;  ///< no multiplexor
  static constexpr std::size_t kNever = SIZE_MAX;       ///< as `end_byte`

  std::size_t end_byte;  ///< bytes that a frame must have
  std::uint32_t multiplexor = kAlways;
  /// Values of the multiplexor, as low and high ones.
  std::vector<std::pair<std::uint32_t, std::uint32_t>> ranges;

  auto key() const { return std::tie(end_byte, multiplexor, ranges); }
  friend bool operator<(const Presence& a, const Presence& b) { return a.key() < b.key(); }
};

/// A signal that selects others by its value, of at most 32 bits.
struct Multiplexor {
  Window window;
  BitField field;
  std::uint32_t presence;  ///< its own
};

struct PresencePlan {
  /// The presence of each signal; none where `ZelkFrameDecoder` has to be asked for each frame.
  std::vector<std::optional<std::uint32_t>> of_signals;
  /// Those of multiplexors stand in front of those that need their values.
  std::vector<Presence> presences;
  std::vector<Multiplexor> multiplexors;
};

/// @param wanted  for each signal of the message whether its presence is wanted
PresencePlan plan_presence(const msgblk& message, const std::vector<bool>& wanted);

}  // namespace zelk::logs

#endif
