#include "j1939.hpp"

#include <fmt/format.h>

#include "attributes.hpp"
#include "text.hpp"

namespace zelk::tool {

namespace {

constexpr std::uint32_t kFirstPdu2Format = 240;
constexpr std::uint32_t kAnyAddress = 0xFE;

std::string address_text(std::uint32_t address) {
  return address == kAnyAddress ? "any" : fmt::format("0x{:02X} ({})", address, address);
}

std::string group_text(std::uint32_t group) { return fmt::format("PGN 0x{:X} ({})", group, group); }

}  // namespace

J1939::J1939(const ZelkDatabase& database)
    : frame_format_(zelk_get_attr_def_name(database.attr_defs, "VFrameFormat")),
      group_numbers_(database.HasJ1939GroupNumbers()) {}

bool J1939::has_group_format(const msgblk& message) const {
  if (!frame_format_) return false;
  for (const attr& value : each(message.attrs))
    if (value.def == frame_format_) return attribute_text(value).starts_with("J1939PG");
  return default_text(*frame_format_).starts_with("J1939PG");
}

// Identifier of a frame (29 bits):  priority 26..28 | data pages 24..25 | format 16..23 |
// specific 8..15 | source 0..7 The group number is data pages, format and specific; a format below
// 240 (PDU1) makes "specific" the destination, which is no part of the number.
std::optional<std::string> J1939::group_of(const msgblk& message) const {
  if (!(message.id & ZELK_ID_EXTENDED)) return std::nullopt;
  if (group_numbers_) {
    const bool pdu1 = ((message.id >> 8) & 0xFF) < kFirstPdu2Format;
    return group_text(message.id & (pdu1 ? 0x3FF00u : 0x3FFFFu));
  }
  if (!has_group_format(message)) return std::nullopt;

  const std::uint32_t id = message.id;
  const bool pdu1 = ((id >> 16) & 0xFF) < kFirstPdu2Format;
  const std::uint32_t group = (id >> 8) & (pdu1 ? 0x3FF00u : 0x3FFFFu);
  const std::string destination = pdu1 ? ", destination " + address_text((id >> 8) & 0xFF) : "";
  return fmt::format("{}, priority {}{}, source {}", group_text(group), (id >> 26) & 7, destination,
                     address_text(id & 0xFF));
}

}  // namespace zelk::tool
