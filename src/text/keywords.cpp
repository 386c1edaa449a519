#include "text/keywords.hpp"

#include <cstddef>
#include <cstdint>

namespace zelk {

constexpr std::array<Keyword, 40> zelk_keyword = {{
    {"BO_", 263, "Message"},
    {"SG_", 264, "Signal"},
    {"BU_", 265, "Network node"},
    {"BS_", 266, "Bit timing register"},
    {"VERSION", 273, "Version information"},
    {"EV_", 275, "Environment variable"},
    {"INT", 281, "Integer"},
    {"HEX", 282, "Hex"},
    {"FLOAT", 283, "Float"},
    {"STRING", 284, "String"},
    {"ENUM", 285, "Enumeration"},
    {"NS_", kNewSymbolsCode, "New symbol"},
    {"NS_DESC_", 277, "Description of new symbol"},
    {"CM_", 278, "Comment"},
    {"BA_DEF_", 279, "Definition of user defined attribute"},
    {"BA_", 280, "User defined attribute"},
    {"VAL_", 286, "Signal values"},
    {"CAT_DEF_", 287, "Category definition"},
    {"CAT_", 288, "Category"},
    {"FILTER", 289, "View filter"},
    {"BA_DEF_DEF_", 290, "Default for user defined attribute"},
    {"EV_DATA_", 291, "Environment variable of type \"DATA\""},
    {"ENVVAR_DATA_", 291, "Environment variable of type \"DATA\""},
    {"SGTYPE_", 292, "Signaltype"},
    {"SGTYPE_VAL_", 293, "Signaltype values"},
    {"BA_DEF_SGTYPE_", 294, "Definition of user defined attributes for signaltypes"},
    {"BA_SGTYPE_", 295, "User defined attributes for signaltypes"},
    {"SIG_TYPE_REF_", 296, "Reference to signaltype"},
    {"VAL_TABLE_", 297, "Value description table"},
    {"SIG_GROUP_", 298, "Signal group"},
    {"SIG_VALTYPE_", 299, "Valuetype of signal"},
    {"SIGTYPE_VALTYPE_", 300, "Valuetype of signaltype"},
    {"BO_TX_BU_", 301, "Transmitting nodes"},
    {"BA_DEF_REL_", 302, "Definition of user defined relation"},
    {"BA_REL_", 303, "User defined relation"},
    {"BA_DEF_DEF_REL_", 304, "Default for user defined relation"},
    {"BU_SG_REL_", 305, "Node-Signal-Relation"},
    {"BU_EV_REL_", 306, "Node-Environment-variable-Relation"},
    {"BU_BO_REL_", 307, "Node-TxMsg-Relation"},
    {"SG_MUL_VAL_", 308, "Multiple multiplexor values for signal"},
}};

namespace {

constexpr std::size_t kSlots = 256;
constexpr std::uint8_t kFree = 0xFF;
constexpr std::size_t kShortest = 3;

constexpr bool is_lower(char c) { return c >= 'a' && c <= 'z'; }

/// `name` is not empty. The bytes chosen tell all keywords but a few apart.
constexpr std::size_t hash(std::string_view name) {
  const auto byte = [name](std::size_t i) -> std::size_t {
    return static_cast<unsigned char>(name[i]);
  };
  const std::size_t size = name.size();
  return (size + byte(0) * 3 + byte(size / 2) + byte(size - 1 - size / 4) * 7) % kSlots;
}

/// Open addressing with linear probing; a slot holds a row of the table.
constexpr std::array<std::uint8_t, kSlots> make_slots() {
  std::array<std::uint8_t, kSlots> slots{};
  slots.fill(kFree);
  for (std::size_t row = 0; row < zelk_keyword.size(); ++row) {
    std::size_t slot = hash(zelk_keyword[row].text);
    while (slots[slot] != kFree) slot = (slot + 1) % kSlots;
    slots[slot] = static_cast<std::uint8_t>(row);
  }
  return slots;
}

constexpr std::array<std::uint8_t, kSlots> kSlotRows = make_slots();

}  // namespace

const Keyword* find_keyword(std::string_view name) {
  if (name.size() < kShortest || is_lower(name[1])) return nullptr;  // spares most names the hash
  for (std::size_t slot = hash(name); kSlotRows[slot] != kFree; slot = (slot + 1) % kSlots) {
    const Keyword& keyword = zelk_keyword[kSlotRows[slot]];
    if (name == keyword.text) return &keyword;
  }
  return nullptr;
}

int zelk_keyword_lookup(const char* name, const char** description) {
  const Keyword* keyword = find_keyword(name);
  *description = keyword ? keyword->description : nullptr;
  return keyword ? 1 : 0;
}

}  // namespace zelk
