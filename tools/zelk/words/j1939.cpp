#include "words/j1939.hpp"

#include <fmt/format.h>

#include "base/j1939.hpp"
#include "words/attribute_words.hpp"
#include "zelk/query.h"

namespace zelk::tool {

namespace {

std::string address_text(std::uint32_t address) {
  return address == j1939::kAnyAddress ? "any" : fmt::format("0x{:02X} ({})", address, address);
}

}  // namespace

ParameterGroups::ParameterGroups(const ZelkDatabase& database)
    : frame_format_(zelk_get_attr_def_name(database.attr_defs, j1939::kFrameFormatAttribute)),
      has_group_numbers_(database.HasJ1939GroupNumbers()) {}

std::optional<std::uint32_t> ParameterGroups::number(const msgblk& message) const {
  if (!(message.id & ZELK_ID_EXTENDED)) return std::nullopt;
  if (has_group_numbers_) return j1939::group_of_number(message.id).key;
  if (!j1939::is_j1939_format(effective_text(message.attrs, frame_format_))) return std::nullopt;
  return j1939::frame_of_id(message.id).group.key;
}

std::optional<std::string> ParameterGroups::description(const msgblk& message) const {
  const std::optional<std::uint32_t> key = number(message);
  if (!key) return std::nullopt;
  const std::string group = fmt::format("PGN 0x{:X} ({})", *key, *key);
  if (has_group_numbers_) return group;

  const j1939::FrameId frame = j1939::frame_of_id(message.id);
  const std::string destination =
      frame.group.is_pdu1 ? ", destination " + address_text(frame.group.destination) : "";
  return fmt::format("{}, priority {}{}, source {}", group, frame.priority, destination,
                     address_text(frame.source));
}

}  // namespace zelk::tool
