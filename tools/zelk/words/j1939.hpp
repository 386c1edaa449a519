/// \file
/// Parameter groups among the messages.

#ifndef ZELK_TOOL_WORDS_J1939_HPP
#define ZELK_TOOL_WORDS_J1939_HPP

#include <cstdint>
#include <optional>
#include <string>

#include "zelk/database.hpp"

namespace zelk::tool {

/// The J1939 parameter groups among the messages of one database, which must outlive the object.
///
/// A message is one when its identifier is extended and its frame format ("VFrameFormat", its own
/// or the default) begins with "J1939PG", or when the database keeps group numbers in place of
/// identifiers ("J1939PGN", "IsNMEA").
class ParameterGroups {
 public:
  explicit ParameterGroups(const ZelkDatabase& database);

  /// Number of the message's parameter group, without a destination; none for a message that is no
  /// parameter group.
  std::optional<std::uint32_t> number(const msgblk& message) const;

  /// The parameter group in the message's identifier: "PGN 0xFEF1 (65265), priority 6, source 0x21
  /// (33)", for groups with a destination (PDU1) also that. None for a message that is no parameter
  /// group.
  std::optional<std::string> description(const msgblk& message) const;

 private:
  const attr_def* frame_format_;  // null when the database does not define it
  bool has_group_numbers_;
};

}  // namespace zelk::tool

#endif
