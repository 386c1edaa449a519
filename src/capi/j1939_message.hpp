/// \file
/// Which message describes a J1939 frame.
///
/// Messages are stored under CAN identifiers, or under numbers of parameter groups. An address 0xFE
/// in a stored message stands for any: such messages are taken when no other one fits better.

#ifndef ZELK_CAPI_J1939_MESSAGE_HPP
#define ZELK_CAPI_J1939_MESSAGE_HPP

#include <array>
#include <cstdint>

#include "base/attribute_text.hpp"
#include "base/j1939.hpp"
#include "model/inline_name.hpp"
#include "zelk/query.h"

namespace zelk::j1939 {

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

/// A match, and whether it is one that the frame-format test does not concern.
struct Match {
  msgblk* message;
  bool is_final;
};

// --- Messages stored under CAN identifiers ---

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

template <typename Messages>
Match match_can_ids(const Messages& messages, std::uint32_t id) {
  const FrameId frame = frame_of_id(id);
  Slots slots;
  msgblk* same = nullptr;
  messages.visit_addresses(id, [&](msgblk& message) {
    if (message.id == id) {
      same = &message;
    } else {
      offer(slots, message, frame);
    }
    return same != nullptr;
  });
  return same != nullptr ? Match{same, true} : Match{slots.best(), false};
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

// --- Messages stored under group numbers ---

/// Messages of the two proprietary groups carry a source address above their group number:
///
// clang-format off
///    31         28        21 20   18 17               0
///   +-----+----+------------+-------+------------------+
///   | ext | 0  | source     | 0     | group number     |
///   +-----+----+------------+-------+------------------+
// clang-format on
constexpr std::uint32_t source_of_number(std::uint32_t id) { return (id >> 21) & 0xFF; }

/// The slot that a message of the frame's proprietary group competes for; null when it names other
/// addresses.
inline msgblk** proprietary_slot(Slots& slots, std::uint32_t id, const FrameId& frame) {
  const Group group = group_of_number(id);
  const std::uint32_t source = source_of_number(id);
  const bool same_source = source == frame.source;
  const bool same_destination = group.destination == frame.group.destination;
  if (same_source && same_destination) return &slots.exact;
  if (group.destination == kAnyAddress && same_source) return &slots.any_destination;
  if (source != kAnyAddress) return nullptr;
  if (same_destination) return &slots.any_source;
  // The frame's destination, not the message's: a stored group for any source and another address
  // still describes frames to address 0xFE.
  return frame.group.destination == kAnyAddress ? &slots.any_both : nullptr;
}

template <typename Messages>
Match match_proprietary_groups(const Messages& messages, std::uint32_t id, const FrameId& frame) {
  Slots slots;
  messages.visit_numbers(id, [&](msgblk& message) {
    const bool is_group =
        (message.id & ZELK_ID_EXTENDED) != 0 && group_of_number(message.id).key == frame.group.key;
    msgblk** const slot = is_group ? proprietary_slot(slots, message.id, frame) : nullptr;
    if (slot != nullptr) *slot = &message;
    return slots.exact != nullptr;
  });
  return {slots.best(), slots.exact != nullptr};
}

/// Equal for the messages that compete for one slot of a frame: their group, destination and
/// source. `match_proprietary_groups` takes the first or the last of them.
constexpr std::uint32_t proprietary_key(std::uint32_t id) {
  return (id & kLargestGroupNumber) | source_of_number(id) << 21;
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

/// The identifier that stores the number of a group that is not proprietary.
constexpr std::uint32_t stored_id(const Group& group) { return group.key | ZELK_ID_EXTENDED; }

/// An 11-bit identifier finds also the message that has it.
template <typename Messages>
Match match_group_numbers(const Messages& messages, std::uint32_t id) {
  const FrameId frame = frame_of_id(id);
  if (is_proprietary(frame)) return match_proprietary_groups(messages, id, frame);
  const bool id_is_key = (id & ZELK_ID_EXTENDED) == 0;
  msgblk* found = nullptr;
  messages.visit_numbers(id, [&](msgblk& message) {
    const bool has_id = id_is_key && message.id == id;
    if (has_id || message.id == stored_id(frame.group)) found = &message;
    return found != nullptr;
  });
  return {found, true};
}

// --- The choice ---

inline bool default_is_j1939_format(attr_def* definitions) {
  const attr_def* definition = find_inline_name(definitions, kFrameFormatAttribute);
  return definition != nullptr && is_j1939_format(default_text(*definition).value_or(""));
}

inline bool value_is_j1939_format(const msgblk& message) {
  const attr* value = find_attribute_value(message.attrs, kFrameFormatAttribute);
  return value != nullptr && is_j1939_format(attribute_text(*value).value_or(""));
}

/// What `zelk_get_j1939_message` finds among messages.
///
/// @param messages  gives the messages that are stored under CAN identifiers (`visit_addresses`) or
/// under group numbers (`visit_numbers`) to a function, until that returns true. Messages that
/// compete for one slot and have one priority come in their list's order; messages that no rule
/// takes for `id` may be left out. `default_is_j1939_format` is asked when the default decides
template <typename Messages>
msgblk* find_message(const Messages& messages, std::uint32_t id, std::uint32_t flags) {
  const bool are_numbers = (flags & ZELK_J1939_PGN_IDS) != 0;
  const Match match = are_numbers ? match_group_numbers(messages, id) : match_can_ids(messages, id);
  const bool is_tested = (flags & ZELK_J1939_FRAME_FORMAT) != 0 && !match.is_final;
  if (match.message == nullptr || !is_tested) return match.message;
  // The default decides also for a message that states another format.
  const bool has_format =
      value_is_j1939_format(*match.message) || messages.default_is_j1939_format();
  return has_format ? match.message : nullptr;
}

}  // namespace zelk::j1939

#endif
