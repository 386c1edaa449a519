#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "capi/linked.hpp"
#include "zelk/query.h"

namespace {

struct Case {
  const char* name;
  uint32_t query;
  std::vector<uint32_t> stored;
  int expected;  // index in `stored`, -1 for none
};

/// @param last_attrs  attribute values of the last message
void expect_matches(const std::vector<Case>& cases, uint32_t flags, attr* last_attrs = nullptr) {
  for (const Case& c : cases) {
    std::vector<msgblk> messages(c.stored.size());
    for (std::size_t i = 0; i < messages.size(); ++i) messages[i].id = c.stored[i];
    messages.back().attrs = last_attrs;
    const auto* found = zelk_get_j1939_message(linked(messages), nullptr, c.query, flags);
    EXPECT_EQ(found ? found - messages.data() : -1, c.expected) << c.name;
  }
}

// Frame 0x18EA0B21: priority 6, group 0xEA00 (PDU1), destination 0x0B, source 0x21. Stored with bit
// 31, the priorities 3, 4, 6, 7 begin with 0x8C, 0x90, 0x98, 0x9C.
TEST(J1939, MatchesStoredCanIdentifiers) {
  const std::vector<Case> cases = {
      {"all bits equal, behind an exact match", 0x18EA0B21, {0x0CEA0B21, 0x18EA0B21}, 1},
      {"exact first", 0x18EA0B21, {0x98EAFEFE, 0x98EA0BFE, 0x98EAFE21, 0x98EA0B21}, 3},
      {"then any destination", 0x18EA0B21, {0x98EAFEFE, 0x98EA0BFE, 0x98EAFE21}, 2},
      {"then any source", 0x18EA0B21, {0x98EAFEFE, 0x98EA0BFE}, 1},
      {"then both", 0x18EA0B21, {0x98EAFEFE}, 0},
      {"other addresses", 0x18EA0B21, {0x98EA0C21, 0x98EA0B22, 0x98EAFE22, 0x98EA0CFE}, -1},
      {"exact: lowest number, not the frame's", 0x18EA0B21, {0x98EA0B21, 0x8CEA0B21}, 1},
      {"exact: a tie keeps the earlier", 0x18EA0B21, {0x8CEA0B21, 0x0CEA0B21}, 0},
      {"wildcard: the frame's priority, the last", 0x18EA0B21, {0x8CEAFE21, 0x98EAFE21}, 1},
      {"wildcard: else lowest", 0x18EA0B21, {0x9CEAFEFE, 0x8CEAFEFE, 0x90EAFEFE}, 1},
      {"wildcard: a tie keeps the earlier", 0x18EA0B21, {0x8CEAFE21, 0x0CEAFE21}, 0},
      {"0xF0 is PDU2: 0xFE no destination", 0x18F00B21, {0x98F0FE21, 0x98F0FEFE}, -1},
      {"0xEF is PDU1", 0x18EF0B21, {0x98EFFE21}, 0},
      {"data pages count", 0x1BEA0B21, {0x98EA0B21, 0x99EA0B21, 0x9AEA0B21, 0x9BEA0B21}, 3},
      {"both: the message's destination counts", 0x18EAFE21, {0x98EA0BFE}, -1}};
  expect_matches(cases, 0);
  EXPECT_EQ(zelk_get_j1939_message(nullptr, nullptr, 0x18EA0B21, 0), nullptr);
}

// Stored with bit 31: group 0xEF00 with the destination below, the source in bits 21..28: 0x21
// gives 0x04200000, 0xFE gives 0x1FC00000.
TEST(J1939, MatchesStoredGroupNumbers) {
  const std::vector<Case> cases = {
      {"group of PDU2 with data page", 0x19FEF100, {0x8000FEF1, 0x8001FEF0, 0x8001FEF1}, 2},
      {"the identifier itself", 0x18EA0B21, {0x18EA0B21, 0x8000EA00}, 0},
      {"not with bit 31", 0x98EA0B21, {0x98EA0B21, 0x8000EA00}, 1},
      {"exact, the first", 0x18EF0B21, {0x8420EFFE, 0x8420EF0B, 0x8420EF0B}, 1},
      {"never without bit 31", 0x18EF0B21, {0x18EF0B21, 0x0420EF0B}, -1},
      {"any destination before any source", 0x18EF0B21, {0x8420EFFE, 0x9FC0EF0B}, 0},
      {"any source before both", 0x18EFFE21, {0x9FC0EFFE, 0x9FC0EF0B}, 0},
      {"both: the frame's destination counts", 0x18EFFE21, {0x9FC0EF0B}, 0},
      {"both: not the message's", 0x18EF0B21, {0x9FC0EFFE}, -1},
      {"any destination: the last", 0x18EF0B21, {0x8420EFFE, 0x8420EFFE}, 1},
      {"both: the last", 0x18EFFE21, {0x9FC0EF0B, 0x9FC0EF0C}, 1},
      {"other addresses", 0x18EF0B21, {0x8440EF0B, 0x8420EF0C, 0x8440EFFE}, -1},
      {"0xFF has no destination", 0x18FFFE21, {0x8420FF10, 0x9FC0FF10}, -1}};
  expect_matches(cases, ZELK_J1939_PGN_IDS);
}

attr_def frame_format(int32_t type, const char* default_text) {
  attr_def definition{};
  std::strcpy(definition.name, "VFrameFormat");
  definition.value_type = type;
  if (type == ZELK_ATTR_ENUM) definition.enum_values = text("CAN\nExtended\n\nJ1939PG");
  definition.default_value.text = text(default_text);
  return definition;
}

bool passes(attr_def definition, zelk_attr_value_t stored) {
  attr value{&definition, stored, nullptr};
  msgblk message{};
  message.id = 0x98EA0B21;
  message.attrs = &value;
  return zelk_get_j1939_message(&message, &definition, 0x18EA0B21, ZELK_J1939_FRAME_FORMAT);
}

TEST(J1939, FrameFormatIsTakenFromTheValueThenFromTheDefault) {
  zelk_attr_value_t value{};
  for (const char* stored : {"J1939P", "j1939pg", " J1939PG", static_cast<const char*>(nullptr)}) {
    value.text = text(stored);
    EXPECT_FALSE(passes(frame_format(ZELK_ATTR_STRING, "CAN"), value)) << stored;
    EXPECT_TRUE(passes(frame_format(ZELK_ATTR_STRING, "J1939PG"), value)) << stored;
  }
  value.text = text("J1939PG (ext. ID)");
  EXPECT_TRUE(passes(frame_format(ZELK_ATTR_STRING, nullptr), value));
  for (double index : {1., 2., 4., -1., 3.5, std::nan(""), 1e300}) {
    value.number = index;
    EXPECT_FALSE(passes(frame_format(ZELK_ATTR_ENUM, "CAN"), value)) << index;
    EXPECT_TRUE(passes(frame_format(ZELK_ATTR_ENUM, "J1939PG"), value)) << index;
  }
  value.number = 3;
  EXPECT_TRUE(passes(frame_format(ZELK_ATTR_ENUM, "CAN"), value));
  EXPECT_FALSE(passes(frame_format(ZELK_ATTR_HEX, "J1939PG"), value)) << "numbers have no text";
  msgblk bare{};
  bare.id = 0x98EA0B21;
  attr_def rescue = frame_format(ZELK_ATTR_ENUM, "J1939PG");
  EXPECT_EQ(zelk_get_j1939_message(&bare, &rescue, 0x18EA0B21, ZELK_J1939_FRAME_FORMAT), &bare);
}

TEST(J1939, FrameFormatConcernsTheMessageFoundAndNoOther) {
  attr_def definition = frame_format(ZELK_ATTR_STRING, nullptr);
  attr value{&definition, {}, nullptr};
  value.value.text = text("J1939PG");
  const std::vector<Case> can_ids = {
      {"preferred fails", 0x18EA0B21, {0x98EA0B21, 0x98EAFE21}, -1},
      {"all bits equal is exempt", 0x18EA0B21, {0x18EA0B21, 0x98EAFE21}, 0}};
  expect_matches(can_ids, ZELK_J1939_FRAME_FORMAT, &value);
  const std::vector<Case> group_numbers = {
      {"group is exempt", 0x18EA0B21, {0x8000EA00, 0x8000EA00}, 0},
      {"exact is exempt", 0x18EF0B21, {0x8420EF0B, 0x8420EFFE}, 0},
      {"wildcard fails", 0x18EF0B21, {0x8420EFFE, 0x9FC0EF0B}, -1},
      {"wildcard passes", 0x18EF0B21, {0x9FC0EF0B, 0x8420EFFE}, 1}};
  expect_matches(group_numbers, ZELK_J1939_FRAME_FORMAT | ZELK_J1939_PGN_IDS, &value);
}

}  // namespace
