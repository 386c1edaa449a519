#include "growth/database_text.hpp"
#include "growth/shapes.hpp"

namespace zelk::bench {
namespace {

std::string signals_in_one(Numbers n, const char* indicator, const char* message_end = "") {
  return head("N") + "BO_ 1 M: 8 N\n" +
         each(n,
              [=](std::string& text, std::size_t i) {
                put(text, " SG_ S", i, indicator, " : ", i % 64, "|1@1+ (1,0) [0|1] \"\" N\n");
              }) +
         message_end;
}

/// Each signal is the multiplexor of the next.
std::string multiplexor_chain(Numbers n, bool from_the_end) {
  std::string signals = " SG_ S0 M : 0|1@1+ (1,0) [0|1] \"\" N\n";
  std::string ranges;
  for (std::size_t i = 1; i < n.count; ++i) {
    put(signals, " SG_ S", i, " m0M : ", i % 64, "|1@1+ (1,0) [0|1] \"\" N\n");
    const std::size_t k = from_the_end ? n.count - i : i;
    put(ranges, "SG_MUL_VAL_ 1 S", k, " S", k - 1, " 0-0;\n");
  }
  return head("N") + "BO_ 1 M: 8 N\n" + signals + ranges;
}

}  // namespace

std::vector<Shape> object_shapes() {
  return {
      {"BU_", [](Numbers n) { return head(names(n, "N", " ")); }},
      {"BO_", [](Numbers n) { return head("N") + messages(n); }},
      {"BO_ of J1939",
       [](Numbers n) {
         return head("N") +
                each(n,
                     [](std::string& t, std::size_t i) {
                       put(t, "BO_ ", 0x98000000U + (i << 8), " M", i, ": 8 N\n");
                     }) +
                "BA_DEF_ BO_ \"VFrameFormat\" ENUM \"StandardCAN\",\"ExtendedCAN\",\"J1939PG\";\n"
                "BA_DEF_DEF_ \"VFrameFormat\" \"J1939PG\";\n";
       }},
      {"SG_, one in each message", [](Numbers n) { return head("N") + messages_with_signal(n); }},
      {"SG_, all in one message", [](Numbers n) { return signals_in_one(n, ""); }},
      {"SG_, side by side in one message",
       [](Numbers n) {
         return head("N") + "BO_ 1 M: " + std::to_string(n.count / 8 + 1) + " N\n" +
                each({0, n.count}, [](std::string& t, std::size_t i) {
                  put(t, " SG_ S", i, " : ", i, "|1@", i % 2, "+ (1,0) [0|1] \"\" N\n");
                });
       }},
      {"SG_ with a value of its multiplexor each",
       [](Numbers n) {
         return head("N") + "BO_ 1 M: 8 N\n SG_ X M : 0|32@1+ (1,0) [0|0] \"\" N\n" +
                each(n, [](std::string& t, std::size_t i) {
                  put(t, " SG_ S", i, " m", i, " : 32|8@1+ (1,0) [0|0] \"\" N\n");
                });
       }},
      {"SG_, receivers of one",
       [](Numbers n) {
         return head(names(n, "N", " ")) + "BO_ 1 M: 8 N" + std::to_string(n.first) +
                "\n SG_ S : 0|8@1+ (1,0) [0|0] \"\" " + names(n, "N", ",") + "\n";
       }},
      {"SG_, all multiplexors of one message",
       [](Numbers n) {
         return signals_in_one(n, " m0M") + " SG_ X M : 0|8@1+ (1,0) [0|0] \"\" N\n" +
                each(n, [](std::string& t, std::size_t i) {
                  put(t, "SG_MUL_VAL_ 1 S", i, " X 0-0;\n");
                });
       }},
      {"SG_MUL_VAL_, a chain", [](Numbers n) { return multiplexor_chain(n, false); }},
      {"SG_MUL_VAL_, a chain from its end", [](Numbers n) { return multiplexor_chain(n, true); }},
      {"SG_MUL_VAL_, signals of one multiplexor",
       [](Numbers n) {
         return signals_in_one(n, " m1") + " SG_ X M : 0|8@1+ (1,0) [0|0] \"\" N\n" +
                each(n, [](std::string& t, std::size_t i) {
                  put(t, "SG_MUL_VAL_ 1 S", i, " X ", i, "-", i + 1, ";\n");
                });
       }},
      {"SG_MUL_VAL_, ranges of one signal",
       [](Numbers n) {
         return head("N") +
                "BO_ 1 M: 8 N\n SG_ X M : 0|32@1+ (1,0) [0|0] \"\" N\n SG_ S m1 : 32|8@1+ (1,0) "
                "[0|0] \"\" N\nSG_MUL_VAL_ 1 S X 1-1" +
                each(n,
                     [](std::string& t, std::size_t i) { put(t, ", ", 3 * i, "-", 3 * i + 1); }) +
                ";\n";
       }},
      {"BO_TX_BU_",
       [](Numbers n) {
         return head("N O") + messages(n) + each(n, [](std::string& t, std::size_t i) {
                  put(t, "BO_TX_BU_ ", extended_id(i), " : N,O;\n");
                });
       }},
      {"BO_TX_BU_, senders of one",
       [](Numbers n) {
         return head(names(n, "N", " ")) +
                "BO_ 1 M: 8 Ostrel__XXX\nBO_TX_BU_ 1 : " + names(n, "N", ",") + ";\n";
       }},
      {"EV_", [](Numbers n) { return head("N") + variables(n); }},
      {"EV_, nodes of one",
       [](Numbers n) {
         return head(names(n, "N", " ")) + "EV_ V: 0 [0|1] \"\" 0 1 DUMMY_NODE_OSTREL0 " +
                names(n, "N", ",") + ";\n";
       }},
      {"ENVVAR_DATA_",
       [](Numbers n) {
         return head("N") + variables(n) + each(n, [](std::string& t, std::size_t i) {
                  put(t, "ENVVAR_DATA_ V", i, ": 4;\n");
                });
       }},
      {"SGTYPE_, SIG_TYPE_REF_, SIGTYPE_VALTYPE_",
       [](Numbers n) {
         return head("N") + "VAL_TABLE_ T 0 \"a\" ;\n" + messages_with_signal(n) +
                each(n,
                     [](std::string& t, std::size_t i) {
                       put(t, "SGTYPE_ Y", i, " : 32@1- (1,0) [0|0] \"\" 0 T;\n");
                     }) +
                each(n,
                     [](std::string& t, std::size_t i) {
                       put(t, "SIG_TYPE_REF_ ", extended_id(i), " S : Y", i, ";\n");
                     }) +
                each(n, [](std::string& t, std::size_t i) {
                  put(t, "SIGTYPE_VALTYPE_ Y", i, " : 1;\n");
                });
       }},
      {"SIG_GROUP_",
       [](Numbers n) {
         return head("N") + messages_with_signal(n) + each(n, [](std::string& t, std::size_t i) {
                  put(t, "SIG_GROUP_ ", extended_id(i), " G 1 : S;\n");
                });
       }},
      {"SIG_GROUP_, all of one message",
       [](Numbers n) {
         return signals_in_one({0, 1}, "") + each(n, [](std::string& t, std::size_t i) {
                  put(t, "SIG_GROUP_ 1 G", i, " 1 : S0;\n");
                });
       }},
      {"SIG_GROUP_, signals of one",
       [](Numbers n) {
         return signals_in_one(n, "") + "SIG_GROUP_ 1 G 1 : " + names(n, "S", " ") + ";\n";
       }},
      {"SIG_VALTYPE_",
       [](Numbers n) {
         return head("N") + messages_with_signal(n) + each(n, [](std::string& t, std::size_t i) {
                  put(t, "SIG_VALTYPE_ ", extended_id(i), " S : 1;\n");
                });
       }},
      {"CAT_DEF_, CAT_, FILTER",
       [](Numbers n) {
         return head(names(n, "N", " ")) +
                each(n, [](std::string& t,
                           std::size_t i) { put(t, "CAT_DEF_ ", i, " C", i, " 0;\n"); }) +
                each(n, [](std::string& t,
                           std::size_t i) { put(t, "CAT_ BU_ N", i, " ", i, ";\n"); }) +
                "FILTER 0 CAT_" + each(n, [](std::string& t, std::size_t i) { put(t, " ", i); }) +
                " BU_" + each(n, [](std::string& t, std::size_t i) { put(t, " N", i); }) + ";\n";
       }},
  };
}

}  // namespace zelk::bench
