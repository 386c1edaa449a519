/// \file
/// Which message describes a J1939 frame.
///
/// Layout of a 29-bit identifier (SAE J1939-21):
///
// clang-format off
///    28  26 25  24 23        16 15           8 7          0
///   +------+------+------------+--------------+------------+
///   | prio | DP   | PDU format | PDU specific | source     |
///   +------+------+------------+--------------+------------+
///          |<---- parameter group number ---->|
// clang-format on
///
/// A PDU format below 240 (PDU1) makes the PDU specific byte a destination address, which is no
/// part of the group number; from 240 on (PDU2) it extends the group number and the frame goes to
/// everybody.

#ifndef ZELK_CODEC_J1939_HPP
#define ZELK_CODEC_J1939_HPP

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include "base/list.hpp"
#include "capi/attribute_text.hpp"
#include "model/inline_name.hpp"
#include "zelk/query.h"

namespace zelk::j1939 {

constexpr std::uint32_t kFirstPdu2Format = 240;
constexpr std::uint32_t kProprietaryPdu1Format = 0xEF;
constexpr std::uint32_t kProprietaryPdu2Format = 0xFF;
constexpr std::uint32_t kAnyAddress = 0xFE;
constexpr std::uint32_t kGlobalAddress = 0xFF;
constexpr char kFrameFormatAttribute[] = "VFrameFormat";
constexpr std::string_view kJ1939FrameFormat = "J1939PG";

/// What a group number names: the group itself and, for PDU1, the destination in its lowest byte.
struct Group {
  std::uint32_t key;
  std::uint32_t destination;
  bool is_pdu1;
};

/// @param number  group number with the PDU specific byte, in bits 0..17; higher bits are ignored
inline Group group_of_number(std::uint32_t number) {
  const std::uint32_t format = (number >> 8) & 0xFF;
  if (format < kFirstPdu2Format) return {number & 0x3FF00, number & 0xFF, true};
  return {number & 0x3FFFF, kGlobalAddress, false};
}

struct FrameId {
  Group group;
  std::uint32_t format;
  std::uint32_t source;
  std::uint32_t priority;  ///< 0 is the most urgent
};

inline FrameId frame_of_id(std::uint32_t id) {
  return {group_of_number(id >> 8), (id >> 16) & 0xFF, id & 0xFF, (id >> 26) & 7};
}

/// Candidates by preference; null while empty.
struct Slots {
  msgblk* exact = nullptr;
  msgblk* any_destination = nullptr;
  msgblk* any_source = nullptr;
  msgblk* any_both = nullptr;

  msgblk* best() const {
    if (exact != nullptr) return exact;
    if (any_destination != nullptr) return any_destination;
    return any_source != nullptr ? any_source : any_both;
  }
};

inline std::uint32_t priority_of(const msgblk& message) { return frame_of_id(message.id).priority; }

inline void offer_exact(msgblk*& slot, msgblk& message) {
  if (slot == nullptr || priority_of(message) < priority_of(*slot)) slot = &message;
}

/// The frame's own priority beats every other, the last such message winning; else the lowest
/// number, the first winning.
inline void offer_wildcard(msgblk*& slot, msgblk& message, std::uint32_t frame_priority) {
  if (slot == nullptr || priority_of(message) == frame_priority ||
      (priority_of(*slot) != frame_priority && priority_of(message) < priority_of(*slot))) {
    slot = &message;
  }
}

/// The wildcard slot that a message stored as a CAN identifier competes for; null when it names
/// other addresses.
inline msgblk** wildcard_slot(Slots& slots, const FrameId& stored, const FrameId& frame) {
  const bool any_destination = stored.group.is_pdu1 && stored.group.destination == kAnyAddress;
  const bool any_source = stored.source == kAnyAddress;
  if (any_destination && stored.source == frame.source) return &slots.any_destination;
  // For PDU2 both destinations are the global address.
  if (any_source && stored.group.destination == frame.group.destination) return &slots.any_source;
  if (any_source && any_destination) return &slots.any_both;
  return nullptr;
}

inline void offer(Slots& slots, msgblk& message, const FrameId& frame) {
  const FrameId stored = frame_of_id(message.id);
  if (stored.group.key != frame.group.key) return;
  if (stored.source == frame.source && stored.group.destination == frame.group.destination) {
    offer_exact(slots.exact, message);
  }
  if (msgblk** slot = wildcard_slot(slots, stored, frame)) {
    offer_wildcard(*slot, message, frame.priority);
  }
}

/// A match, and whether it is one that the frame-format test does not concern.
struct Match {
  msgblk* message;
  bool is_final;
};

template <typename Lists>
Match match_can_ids(const Lists& lists, std::uint32_t id) {
  const FrameId frame = frame_of_id(id);
  Slots slots;
  for (const auto& messages : lists) {
    for (msgblk* message : messages) {
      if (message->id == id) return {message, true};
      offer(slots, *message, frame);
    }
  }
  return {slots.best(), false};
}

/// Equal for the messages that compete for one slot of a frame: their group, destination and
/// source. Of those with one priority `match_can_ids` takes the first or the last.
constexpr std::uint32_t address_key(std::uint32_t id) { return id & 0x3FFFFFF; }

/// Keys of all messages that `match_can_ids` may take for a frame, in any order; they may repeat.
inline std::array<std::uint32_t, 4> address_keys(const FrameId& frame) {
  const std::uint32_t group = frame.group.key << 8;
  const auto destination = [&frame](std::uint32_t address) {
    return frame.group.is_pdu1 ? address << 8 : 0;
  };
  const std::uint32_t own = group | destination(frame.group.destination);
  const std::uint32_t any = group | destination(kAnyAddress);
  return {own | frame.source, any | frame.source, own | kAnyAddress, any | kAnyAddress};
}

/// Messages of the two proprietary groups carry a source address above their group number:
///
// clang-format off
///    31         28        21 20   18 17               0
///   +-----+----+------------+-------+------------------+
///   | ext | 0  | source     | 0     | group number     |
///   +-----+----+------------+-------+------------------+
// clang-format on
constexpr std::uint32_t source_of_number(std::uint32_t id) { return (id >> 21) & 0xFF; }

template <typename Lists>
Match match_proprietary_groups(const Lists& lists, const FrameId& frame) {
  Slots slots;
  for (const auto& messages : lists) {
    for (msgblk* message : messages) {
      if ((message->id & ZELK_ID_EXTENDED) == 0) continue;
      const Group group = group_of_number(message->id);
      if (group.key != frame.group.key) continue;
      const std::uint32_t source = source_of_number(message->id);
      const bool same_source = source == frame.source;
      const bool same_destination = group.destination == frame.group.destination;
      if (same_source && same_destination) return {message, true};
      if (group.destination == kAnyAddress && same_source) {
        slots.any_destination = message;
      } else if (source == kAnyAddress && same_destination) {
        slots.any_source = message;
      } else if (source == kAnyAddress && frame.group.destination == kAnyAddress) {
        // The frame's destination, not the message's: a stored group for any source and another
        // address still describes frames to address 0xFE.
        slots.any_both = message;
      }
    }
  }
  return {slots.best(), false};
}

/// Equal for the messages that compete for one slot of a frame: their group, destination and
/// source. `match_proprietary_groups` takes the first or the last of them.
constexpr std::uint32_t proprietary_key(std::uint32_t id) {
  return (id & 0x3FFFF) | source_of_number(id) << 21;
}

/// A key of its own for the messages of a group from any source to other addresses than 0xFE: they
/// compete for the frames to that address.
inline std::uint32_t any_source_key(const Group& group) { return group.key | 1U << 18; }
inline bool has_any_source_key(std::uint32_t id) {
  const Group group = group_of_number(id);
  return group.is_pdu1 && group.destination != kAnyAddress && source_of_number(id) == kAnyAddress;
}

/// Keys of all messages that `match_proprietary_groups` may take for a frame, in any order; they
/// may repeat.
inline std::array<std::uint32_t, 4> proprietary_keys(const FrameId& frame) {
  const auto number = [&frame](std::uint32_t destination) {
    return frame.group.key | (frame.group.is_pdu1 ? destination : 0);
  };
  const std::uint32_t to_own = number(frame.group.destination);
  const std::uint32_t own = to_own | frame.source << 21;
  const bool is_to_any = frame.group.destination == kAnyAddress;
  return {own, number(kAnyAddress) | frame.source << 21, to_own | kAnyAddress << 21,
          is_to_any ? any_source_key(frame.group) : own};
}

inline bool is_proprietary(const FrameId& frame) {
  return frame.format == kProprietaryPdu1Format || frame.format == kProprietaryPdu2Format;
}

/// The identifier that stores the number of a group that is not proprietary.
inline std::uint32_t stored_id(const Group& group) { return group.key | ZELK_ID_EXTENDED; }

template <typename Lists>
Match match_group_numbers(const Lists& lists, std::uint32_t id) {
  const FrameId frame = frame_of_id(id);
  if (is_proprietary(frame)) return match_proprietary_groups(lists, frame);
  const bool id_is_key = (id & ZELK_ID_EXTENDED) == 0;
  const std::uint32_t group_id = stored_id(frame.group);
  for (const auto& messages : lists) {
    for (msgblk* message : messages) {
      if ((id_is_key && message->id == id) || message->id == group_id) return {message, true};
    }
  }
  return {nullptr, true};
}

inline bool is_j1939_format(std::optional<std::string_view> text) {
  return text.has_value() && text->starts_with(kJ1939FrameFormat);
}

inline bool default_is_j1939_format(attr_def* definitions) {
  const attr_def* definition = find_inline_name(definitions, kFrameFormatAttribute);
  return definition != nullptr && is_j1939_format(default_text(*definition));
}

inline bool value_is_j1939_format(const msgblk& message) {
  const attr* value = find_attribute_value(message.attrs, kFrameFormatAttribute);
  return value != nullptr && is_j1939_format(attribute_text(*value));
}

/// What `zelk_get_j1939_message` finds among messages.
///
/// @param lists                    a range of ranges of pointers. Messages that compete for one
/// slot, and have one priority, stand in one range, in their list's order; those that no rule takes
/// may be left out
/// @param default_is_j1939_format  tells, when it is asked, whether the default of the frame format
/// does; it decides also for a message that states another format
template <typename Lists, typename DefaultFormat>
msgblk* find_message(const Lists& lists, std::uint32_t id, std::uint32_t flags,
                     DefaultFormat default_is_j1939_format) {
  const Match match =
      (flags & ZELK_J1939_PGN_IDS) != 0 ? match_group_numbers(lists, id) : match_can_ids(lists, id);
  const bool is_tested = (flags & ZELK_J1939_FRAME_FORMAT) != 0 && !match.is_final;
  if (match.message == nullptr || !is_tested) return match.message;
  const bool has_format = value_is_j1939_format(*match.message) || default_is_j1939_format();
  return has_format ? match.message : nullptr;
}

}  // namespace zelk::j1939

#endif
