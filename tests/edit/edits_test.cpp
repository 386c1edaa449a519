// Every edit of the write manager, shown by what it changes in the written file.

#include <cstring>
#include <functional>

#include "edit/edited.hpp"
#include "zelk/errors.h"

namespace {

using Edits = ManagerTest;

struct Case {
  const char* what;
  std::function<void(Edited&)> edit;
  const char* expected;
};

const Case kCases[] = {
    {"new message",
     [](Edited& e) {
       msgblk& message = *e.CreateMessage(e.db, 0);
       message.id = 5;
       e.SetName(message, "New");
       e.AddTransmitter(message, e.node("B"));
       e.AddTransmitter(message, e.node("A"));
       sigblk& signal = *e.CreateSignal(message, 0);
       e.SetName(signal, "Late");
       e.SetName(*e.CreateSignal(message, 0), "Early");
       if (signal.message != &message || message.signal_count != 3) e.SetName(message, "wrong");
       siggroupblk& group = *e.CreateSignalGroup(message, 7);
       std::strcpy(group.name, "Both");
       e.AddSignal(group, signal);
     },
     R"(
+BO_ 5 New: 1 B
+ SG_ Early : 0|1@1+ (1,0) [0|0] "" Ostrel__XXX
+ SG_ Late : 0|1@1+ (1,0) [0|0] "" Ostrel__XXX
+BO_TX_BU_ 5 : A,B;
+SIG_GROUP_ 5 Both 1 : Late;
)"},
    {"new records",
     [](Edited& e) {
       e.SetName(*e.CreateNode(e.db, 1), "New");
       e.SetName(*e.CreateNode(e.db, 99), "Last");
       e.CreateBitTiming(e.db, 1)->baudrate = 100;
       std::strcpy(e.CreateSignalType(e.db, 0)->name, "Type");
       std::strcpy(e.CreateAttrDefinition(e.db, 0)->name, "Def");
     },
     R"(
-BU_: A B ANodeWhoseNameIsLongerThanThirty D E
+   100:  0,  0
+BU_: A New B ANodeWhoseNameIsLongerThanThirty D E Last
+SGTYPE_ Type : 0@1+ (0,0) [0|0] ""  0;
+BA_DEF_  "Def" INT 0 0;
+BA_DEF_DEF_  "Def" 0;
)"},
    {"names and comments",
     [](Edited& e) {
       e.SetName(e.message(), "M2");
       e.SetName(*e.GetEnvvar("W", e.db), "W2");
       e.SetName(e.signal("U"), "U2");
       e.SetName(e.node("B"), nullptr);
       e.SetComment(e.node("A"), "n");
       e.SetComment(e.message(), nullptr);
       e.SetComment(e.signal("T"), "s");
       e.SetDatabaseComment(e.db, nullptr);
       e.SetUserData(e.db, "8");
     },
     R"(
-VERSION "7.1 \"beta\""
-BO_ 1 M: 8 A
- SG_ U m2 : 16|32@1- (1,0) [0|0] "\"" Ostrel__XXX
-EV_ W: 0 [0|1] "" 0 10 DUMMY_NODE_OSTREL0 Ostrel__XXX;
-ENVVAR_DATA_ W: 4;
-CM_ "the
-network";
-CM_ BU_ A "a node";
-CM_ BO_ 1 "a message";
-SIG_VALTYPE_ 1 U : 1;
-SG_MUL_VAL_ 1 U T 2-3, 7-9;
+VERSION "8"
+BO_ 1 M2: 8 A
+ SG_ U2 m2 : 16|32@1- (1,0) [0|0] "\"" Ostrel__XXX
+EV_ W2: 0 [0|1] "" 0 10 DUMMY_NODE_OSTREL0 Ostrel__XXX;
+ENVVAR_DATA_ W2: 4;
+CM_ BU_ A "n";
+CM_ SG_ 1 T "s";
+SIG_VALTYPE_ 1 U2 : 1;
+SG_MUL_VAL_ 1 U2 T 2-3, 7-9;
)"},
    {"value descriptions and filter",
     [](Edited& e) {
       e.SetValueDescription(*e.signal("S").values, 7, "seven");
       e.SetValueDescription(e.signal("S"), 1, "ON");
       e.SetValueDescription(e.signal("S"), -2, "new");
       e.SetValueDescription(e.variable(), 0, nullptr);
       e.SetValueDescription(*e.GetValueTable("Gears", e.db), 0xFFFFFFFFUL, "-1");
       e.AddFilterCategory(ZelkNoneFilterCategory(), e.db);
       e.AddFilterNode(ZelkNoneFilterNode(), e.db);
       e.AddFilterNode(e.node("B"), e.db);
       e.RemoveFilterCategory(*e.GetCategory("Drive", e.db), e.db);
       e.RemoveFilterNode(e.node("A"), e.db);
       e.RemoveFilterNode(ZelkNoneFilterNode(), e.db);
     },
     R"(
-VAL_TABLE_ Gears -1 "reverse" 0 "neutral" ;
-VAL_ 1 S 0 "off" 1 "on" ;
-VAL_ V 0 "low" ;
-FILTER 3 CAT_ 1 0 BU_ A "<<none>>" ;
+VAL_TABLE_ Gears -1 "-1" 0 "neutral" ;
+VAL_ 1 S -2 "new" 7 "seven" 1 "ON" ;
+VAL_ V 0 "" ;
+FILTER 3 CAT_ 0 0 BU_ B "<<none>>" "<<none>>" ;
)"},
    {"links",
     [](Edited& e) {
       sigblk& signal = e.signal("S");
       e.AddReceiver(signal, e.node("D"));
       e.AddReceiver(signal, e.node("D"));
       if (signal.receiver_count != 4) e.SetName(signal, "wrong");
       e.RemoveReceiver(signal, e.node("D"));
       e.AddReceiver(e.signal("U"), e.node("D"));
       if (signal.receiver_count != 2) e.SetName(signal, "wrong");
       e.RemoveTransmitter(e.message(), e.node("A"));
       e.AddTransmitter(e.message(), e.node("D"));
       e.AddAccessNode(e.variable(), e.node("D"));
       e.AddSignal(e.group(), e.signal("T"));
       e.RemoveSignal(e.group(), e.signal("T"));
       e.AddSignal(e.group(), e.signal("U"));
     },
     R"(
-BO_ 1 M: 8 A
- SG_ U m2 : 16|32@1- (1,0) [0|0] "\"" Ostrel__XXX
-BO_TX_BU_ 1 : A,E;
-EV_ V: 0 [-0.5|10] "V" 2.5 9 DUMMY_NODE_OSTREL8003  A,B;
-SIG_GROUP_ 1 G 1 : S T;
+BO_ 1 M: 8 E
+ SG_ U m2 : 16|32@1- (1,0) [0|0] "\""  D
+BO_TX_BU_ 1 : D,E;
+EV_ V: 0 [-0.5|10] "V" 2.5 9 DUMMY_NODE_OSTREL8003  D,A,B;
+SIG_GROUP_ 1 G 1 : U S;
)"},
    {"attribute values",
     [](Edited& e) {
       e.ResetAttrValue(e.node("B"), "Nd");
       e.ResetAttrValue(e.message(), "Msg");
       e.ResetAttrValue(e.variable(), "Var");
       e.SetAttrValue(e.db, "Net", number(12));
       e.SetAttrValue(e.node("A"), "Nd", number(2));
       e.SetAttrValue(e.signal("T"), "Sig", number(-0.5));
       e.SetAttrValue(*e.GetEnvvar("W", e.db), "Var", text_value("second"));
     },
     R"(
-BA_ "Net" 7;
-BA_ "Nd" BU_ B 255;
-BA_ "Msg" BO_ 1 0;
-BA_ "Var" EV_ V "text";
+BA_ "Net" 12;
+BA_ "Nd" BU_ A 2;
+BA_ "Sig" SG_ 1 T -0.5;
+BA_ "Var" EV_ W "second";
)"},
    {"values of doubled definitions",
     [](Edited& e) {
       attr_def& first = *e.CreateAttrDefinition(e.db, 0);
       std::strcpy(first.name, "Two");
       first.value_type = ZELK_ATTR_STRING;
       first.object_type = ZELK_OBJ_NODE;
       attr_def& second = *e.CreateAttrDefinition(e.db, 1);
       std::strcpy(second.name, "Two");
       second.object_type = ZELK_OBJ_MESSAGE;
       const bool is_text = e.GetAttrDefinition(e.message(), "Two")->value_type == ZELK_ATTR_STRING;
       e.SetAttrValue(e.message(), "Two", is_text ? text_value("x") : number(7));
       e.SetAttrValue(e.node("A"), "Two", text_value("node's"));
     },
     R"(
+BA_DEF_ BU_  "Two" STRING ;
+BA_DEF_ BO_  "Two" INT 0 0;
+BA_DEF_DEF_  "Two" "";
+BA_DEF_DEF_  "Two" 0;
+BA_ "Two" BU_ A "node's";
+BA_ "Two" BO_ 1 7;
)"},
    {"no such attribute or database",
     [](Edited& e) {
       e.SetAttrValue(e.db, "No", number(11));
       e.SetAttrValue(e.db, nullptr, number(11));
       e.SetAttrValue("edited", "Net", number(11));
       e.SetAttrValue(e.signal("T"), "Sig", number(3), "edited");
       e.SetAttrValue(e.db, "RelSig", number(3));
       e.ResetAttrValue(e.db, "Msg");
       e.ResetAttrValue("edited", "Net");
       e.AddFilterNode(e.node("B"), "edited");
       e.SetDatabaseComment("edited", "x");
       e.DeleteNode(e.node("B"), "edited");
     },
     "\n"},
    {"delete a node", [](Edited& e) { e.DeleteNode(e.node("A")); }, R"(
-BU_: A B ANodeWhoseNameIsLongerThanThirty D E
-BO_ 1 M: 8 A
- SG_ S M : 0|8@1+ (1,0) [0|255] ""  A,B
-BO_TX_BU_ 1 : A,E;
-EV_ V: 0 [-0.5|10] "V" 2.5 9 DUMMY_NODE_OSTREL8003  A,B;
-CM_ BU_ A "a node";
-BA_REL_ "RelVar" BU_EV_REL_ A V 1;
-CAT_ BU_ A 1;
-FILTER 3 CAT_ 1 0 BU_ A "<<none>>" ;
+BU_: B ANodeWhoseNameIsLongerThanThirty D E
+BO_ 1 M: 8 E
+ SG_ S M : 0|8@1+ (1,0) [0|255] ""  B
+EV_ V: 0 [-0.5|10] "V" 2.5 9 DUMMY_NODE_OSTREL8003  B;
+FILTER 3 CAT_ 1 0 BU_ "<<none>>" ;
)"},
    {"delete a multiplexor",
     [](Edited& e) {
       e.DeleteSignal(e.signal("S"));
       if (e.message().signal_count != 2) e.SetName(e.message(), "wrong");
     },
     R"(
- SG_ S M : 0|8@1+ (1,0) [0|255] ""  A,B
- SG_ T m1M : 8|8@0- (0.5,-40) [-40|87.5] "degC"  B,D
-CM_ SG_ 1 S "a signal";
-BA_ "Sig" SG_ 1 S 0.25;
-BA_REL_ "RelSig" BU_SG_REL_ B SG_ 1 S 3;
-VAL_ 1 S 0 "off" 1 "on" ;
-SIG_GROUP_ 1 G 1 : S T;
-SG_MUL_VAL_ 1 T S 1-1;
+ SG_ T M : 8|8@0- (0.5,-40) [-40|87.5] "degC"  B,D
+SIG_GROUP_ 1 G 1 : T;
)"},
};

TEST_F(Edits, ChangeTheFile) {
  for (const Case& c : kCases) {
    Edited edited(folder);
    const auto before = edited.lines();
    c.edit(edited);
    EXPECT_EQ("\n" + difference(before, edited.lines()), c.expected) << c.what;
    EXPECT_EQ(edited.ReopenDatabase(edited.db), 0) << c.what << ": " << zelk_get_error_text();
  }
}

}  // namespace
