/// \file
/// Parameter groups among the messages.

#ifndef ZELK_TOOL_INPUT_J1939_HPP
#define ZELK_TOOL_INPUT_J1939_HPP

#include <cstdint>
#include <optional>
#include <string>

#include "input/database.hpp"

namespace zelk::tool {

/// The largest parameter group number: 18 bits.
inline constexpr std::uint32_t kLargestGroupNumber = 0x3FFFF;

/// A parameter group number without what may stand for a destination in it: the lowest byte of
/// groups that have one (PDU1).
std::uint32_t without_destination(std::uint32_t group);

/// Tells the J1939 parameter groups among the messages of one database, which must outlive the
/// object.
class J1939 {
 public:
  explicit J1939(const ZelkDatabase& database);

  /// Number of the message's parameter group; none for a message that is no parameter group.
  std::optional<std::uint32_t> group_number(const msgblk& message) const;

  /// What the message's identifier says of a parameter group: "PGN 0xFEF1 (65265), priority 6,
  /// source 0x21 (33)", for groups with a destination (PDU1) also that. None for a message that is
  /// no parameter group.
  ///
  /// A message is one when its identifier is extended and its frame format ("VFrameFormat", its own
  /// or the default) begins with "J1939PG", or when the database keeps group numbers in place of
  /// identifiers ("J1939PGN", "IsNMEA").
  std::optional<std::string> group_of(const msgblk& message) const;

 private:
  bool has_group_format(const msgblk& message) const;

  const attr_def* frame_format_;  // null when the database does not define it
  bool group_numbers_;
};

}  // namespace zelk::tool

#endif
