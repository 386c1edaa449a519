#include "input/j1939.hpp"

#include <fmt/format.h>

#include "input/attributes.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

constexpr std::uint32_t kFirstPdu2Format = 240;
constexpr std::uint32_t kAnyAddress = 0xFE;

std::string address_text(std::uint32_t address) {
  return address == kAnyAddress ? "any" : fmt::format("0x{:02X} ({})", address, address);
}

/// Of a group number, whose bits 8..15 are the format.
bool has_destination(std::uint32_t group) { return ((group >> 8) & 0xFF) < kFirstPdu2Format; }

}  // namespace

std::uint32_t without_destination(std::uint32_t group) {
  return has_destination(group) ? group & ~0xFFu : group;
}

J1939::J1939(const ZelkDatabase& database)
    : frame_format_(zelk_get_attr_def_name(database.attr_defs, "VFrameFormat")),
      group_numbers_(database.HasJ1939GroupNumbers()) {}

bool J1939::has_group_format(const msgblk& message) const {
  return attribute_text(message.attrs, frame_format_).starts_with("J1939PG");
}

// Identifier of a frame (29 bits):  priority 26..28 | data pages 24..25 | format 16..23 |
// specific 8..15 | source 0..7 The group number is data pages, format and specific; a format below
// 240 (PDU1) makes "specific" the destination, which is no part of the number.
std::optional<std::uint32_t> J1939::group_number(const msgblk& message) const {
  if (!(message.id & ZELK_ID_EXTENDED)) return std::nullopt;
  if (group_numbers_) return without_destination(message.id & kLargestGroupNumber);
  if (!has_group_format(message)) return std::nullopt;
  return without_destination((message.id >> 8) & kLargestGroupNumber);
}

std::optional<std::string> J1939::group_of(const msgblk& message) const {
  const std::optional<std::uint32_t> number = group_number(message);
  if (!number) return std::nullopt;
  const std::string group = fmt::format("PGN 0x{:X} ({})", *number, *number);
  if (group_numbers_) return group;

  const std::uint32_t id = message.id;
  const std::string destination =
      has_destination(*number) ? ", destination " + address_text((id >> 8) & 0xFF) : "";
  return fmt::format("{}, priority {}{}, source {}", group, (id >> 26) & 7, destination,
                     address_text(id & 0xFF));
}

}  // namespace zelk::tool
