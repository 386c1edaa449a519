/// \file
/// Messages by their J1939 parameter groups, whether or not their database says that they have any.

#ifndef ZELK_BASE_J1939_GROUPS_HPP
#define ZELK_BASE_J1939_GROUPS_HPP

#include <cstdint>

#include "base/hash_table.hpp"
#include "base/j1939.hpp"
#include "base/list.hpp"
#include "zelk/records.h"

namespace zelk {

/// Takes the messages with extended identifiers. It is to be made again when these change.
class J1939Groups {
 public:
  /// @param messages  head of a list
  /// @throws std::bad_alloc
  explicit J1939Groups(const msgblk* messages)
      : by_addresses_(each(messages).size()), by_group_(each(messages).size()) {
    for (const msgblk& message : each(messages)) {
      if ((message.id & ZELK_ID_EXTENDED) == 0) continue;
      const j1939::FrameId stored = j1939::frame_of_id(message.id);
      by_addresses_.enter(key_of(stored, stored.group.destination, stored.source), &message);
      by_group_.enter(stored.group.key, &message);
    }
  }

  /// The first message with the group and both addresses of a frame; else one with address 0xFE,
  /// which stands for any, in place of the destination, the source, or both; else the first one
  /// with the group.
  ///
  /// @param id  an extended identifier, with or without bit 31
  /// @return null when there is none
  const msgblk* find(std::uint32_t id) const {
    const j1939::FrameId frame = j1939::frame_of_id(id);
    for (const std::uint32_t source : {frame.source, j1939::kAnyAddress}) {
      for (const std::uint32_t destination : {frame.group.destination, j1939::kAnyAddress}) {
        const msgblk* const found = by_addresses_.find(key_of(frame, destination, source));
        if (found) return found;
      }
    }
    return by_group_.find(frame.group.key);
  }

 private:
  using Messages = HashTable<std::uint32_t, const msgblk*>;

  /// The identifier without its priority.
  static std::uint32_t key_of(j1939::FrameId frame, std::uint32_t destination,
                              std::uint32_t source) {
    frame.priority = 0;
    frame.group.destination = destination;
    frame.source = source;
    return j1939::id_of(frame);
  }

  Messages by_addresses_;
  Messages by_group_;
};

}  // namespace zelk

#endif
