#include <utility>

#include "database/own_database.hpp"
#include "support/failing.hpp"

namespace {

using LongNames = DatabaseTest;

constexpr std::string_view kNamed =
    "BS_:\nBU_: A\nBO_ 1 M: 8 A\n SG_ S : 0|8@1+ (1,0) [0|0] \"\" A\n\n"
    "EV_ V: 0 [0|0] \"\" 0 1 DUMMY_NODE_OSTREL0 A;\n"
    "BA_DEF_ BU_ \"NodeAlias\" STRING ;\nBA_DEF_ BO_ \"MessageAlias\" STRING ;\n"
    "BA_DEF_ SG_ \"SignalAlias\" STRING ;\nBA_DEF_ EV_ \"VariableAlias\" STRING ;\n"
    "BA_ \"NodeAlias\" BU_ A \"NewA\";\nBA_ \"MessageAlias\" BO_ 1 \"NewM\";\n"
    "BA_ \"SignalAlias\" SG_ 1 S \"NewS\";\nBA_ \"VariableAlias\" EV_ V \"NewV\";\n";

TEST_F(LongNames, FollowTheNameOfTheDefinition) {
  const struct {
    const char *alias, *name;
    int slot;
    const char* names;  // of node, message, signal and variable
  } cases[] = {{"SignalAlias", "SystemSignalLongSymbol", 0, "A M NewS V"},
               {"MessageAlias", "SystemMessageLongSymbol", 1, "A NewM S V"},
               {"NodeAlias", "SystemNodeLongSymbol", 2, "NewA M S V"},
               {"VariableAlias", "SystemEnvVarLongSymbol", 3, "A M S NewV"},
               {"NodeAlias", "SystemNodeLongSymbolOfSomeoneElse", -1, "A M S V"},
               {"NodeAlias", "systemnodelongsymbol", -1, "A M S V"}};
  for (const auto& c : cases) {
    OwnDatabase d(folder_.write("a.dbc", kNamed));
    attr_def& definition = *d.GetAttrDef(c.alias);
    const auto expect_slot = [&](int slot) {
      for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(d.predefined.slots[i], i == slot ? &definition : nullptr) << c.name << i;
      }
      const std::string names = std::string(d.nodes->name) + " " + d.messages->name + " " +
                                d.messages->signals->name + " " + d.env_vars->name;
      EXPECT_EQ(names, c.names) << c.name << slot;
    };
    d.RenameAttrDef(definition, c.name);
    EXPECT_EQ(definition.name, std::string(c.name).substr(0, 32));
    EXPECT_EQ(ZelkPredefinedAttributes::IsPredefinedAttribute(definition), c.slot >= 0) << c.name;
    expect_slot(c.slot);
    d.CheckAndRemovePredefinedAttrs(definition);
    expect_slot(-1);
    EXPECT_FALSE(d.predefined.Remove(definition)) << c.name;
    attr_def other = definition;
    other.value_type = ZELK_ATTR_ENUM;
    EXPECT_FALSE(ZelkPredefinedAttributes::IsPredefinedAttribute(other)) << "no text";
  }
}

TEST_F(LongNames, AreSuchAsAFileCanHold) {
  OwnDatabase d(folder_.write("a.dbc", kNamed));
  attr_def& definition = *d.GetAttrDef("NodeAlias");
  for (const char* refused : {"", "two words", "BO_", "a\nb", ZELK_NO_NODE}) {
    set(d.nodes->attrs->value.text, refused);
    zelk_clear_error_text();
    d.RenameAttrDef(definition, nullptr);
    EXPECT_STREQ(zelk_get_error_text(), "") << "null is no name";
    d.RenameAttrDef(definition, "SystemNodeLongSymbol");
    EXPECT_STREQ(d.nodes->name, "A") << refused;
    const std::string line = zelk_format_error(ZELK_ERR_FORMAT, 0, refused);
    EXPECT_EQ(zelk_get_error_text(), *refused ? line + "\n" : "") << refused;
  }
  zelk_mfree(std::exchange(d.nodes->attrs->value.text, nullptr));
  d.CheckAndInsertPredefinedAttrs(definition);
  EXPECT_STREQ(d.nodes->name, "A");
  set(d.nodes->attrs->value.text, std::string(200, 'n'));
  {
    const FailingCalloc failure(0);
    d.CheckAndInsertPredefinedAttrs(definition);
  }
  EXPECT_STREQ(d.nodes->name, "A") << "without memory";
  d.CheckAndInsertPredefinedAttrs(definition);
  EXPECT_EQ(d.nodes->name, std::string(200, 'n'));
}

}  // namespace
