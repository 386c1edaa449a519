#include "text/keywords.hpp"

#include <cstdint>

#include "base/hash_table.hpp"
#include "platform/immortal.hpp"
#include "text/token_codes.hpp"

namespace zelk {

constexpr std::array<Keyword, 40> zelk_keyword = {{
    {"BO_", T_BO, "Message"},
    {"SG_", T_SG, "Signal"},
    {"BU_", T_BU, "Network node"},
    {"BS_", T_BS, "Bit timing register"},
    {"VERSION", T_VERSION, "Version information"},
    {"EV_", T_EV, "Environment variable"},
    {"INT", T_INT, "Integer"},
    {"HEX", T_HEX, "Hex"},
    {"FLOAT", T_FLOAT, "Float"},
    {"STRING", T_STRING_TYPE, "String"},
    {"ENUM", T_ENUM, "Enumeration"},
    {"NS_", T_NS, "New symbol"},
    {"NS_DESC_", T_NS_DESC, "Description of new symbol"},
    {"CM_", T_CM, "Comment"},
    {"BA_DEF_", T_BA_DEF, "Definition of user defined attribute"},
    {"BA_", T_BA, "User defined attribute"},
    {"VAL_", T_VAL, "Signal values"},
    {"CAT_DEF_", T_CAT_DEF, "Category definition"},
    {"CAT_", T_CAT, "Category"},
    {"FILTER", T_FILTER, "View filter"},
    {"BA_DEF_DEF_", T_BA_DEF_DEF, "Default for user defined attribute"},
    {"EV_DATA_", T_EV_DATA, "Environment variable of type \"DATA\""},
    {"ENVVAR_DATA_", T_EV_DATA, "Environment variable of type \"DATA\""},
    {"SGTYPE_", T_SGTYPE, "Signaltype"},
    {"SGTYPE_VAL_", T_SGTYPE_VAL, "Signaltype values"},
    {"BA_DEF_SGTYPE_", T_BA_DEF_SGTYPE, "Definition of user defined attributes for signaltypes"},
    {"BA_SGTYPE_", T_BA_SGTYPE, "User defined attributes for signaltypes"},
    {"SIG_TYPE_REF_", T_SIG_TYPE_REF, "Reference to signaltype"},
    {"VAL_TABLE_", T_VAL_TABLE, "Value description table"},
    {"SIG_GROUP_", T_SIG_GROUP, "Signal group"},
    {"SIG_VALTYPE_", T_SIG_VALTYPE, "Valuetype of signal"},
    {"SIGTYPE_VALTYPE_", T_SIGTYPE_VALTYPE, "Valuetype of signaltype"},
    {"BO_TX_BU_", T_BO_TX_BU, "Transmitting nodes"},
    {"BA_DEF_REL_", T_BA_DEF_REL, "Definition of user defined relation"},
    {"BA_REL_", T_BA_REL, "User defined relation"},
    {"BA_DEF_DEF_REL_", T_BA_DEF_DEF_REL, "Default for user defined relation"},
    {"BU_SG_REL_", T_BU_SG_REL, "Node-Signal-Relation"},
    {"BU_EV_REL_", T_BU_EV_REL, "Node-Environment-variable-Relation"},
    {"BU_BO_REL_", T_BU_BO_REL, "Node-TxMsg-Relation"},
    {"SG_MUL_VAL_", T_SG_MUL_VAL, "Multiple multiplexor values for signal"},
}};

namespace {

/// The keywords by the hashes of their texts.
class KeywordTable {
 public:
  KeywordTable() {
    for (const Keyword& keyword : zelk_keyword)
      table_.enter(hash_(keyword.text), &keyword, WithText{keyword.text});
  }

  const Keyword* find(std::string_view text) const {
    return table_.find(hash_(text), WithText{text});
  }

 private:
  struct WithText {
    std::string_view text;
    bool operator()(const Keyword* keyword) const { return keyword->text == text; }
  };

  SeededHash hash_;
  HashTable<std::uint64_t, const Keyword*> table_{zelk_keyword.size()};
};

}  // namespace

const Keyword* find_keyword(std::string_view name) {
  static Immortal<KeywordTable> table;
  // No keyword has lower-case letters; most names have one here, which spares them the hash.
  const bool is_plain_name = name.size() > 1 && name[1] >= 'a' && name[1] <= 'z';
  return is_plain_name ? nullptr : table.get().find(name);
}

int zelk_keyword_lookup(const char* name, const char** description) {
  const Keyword* keyword = find_keyword(name);
  *description = keyword ? keyword->description : nullptr;
  return keyword ? 1 : 0;
}

}  // namespace zelk
