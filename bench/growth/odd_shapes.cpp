#include "growth/collisions.hpp"
#include "growth/database_text.hpp"
#include "growth/shapes.hpp"

namespace zelk::bench {
namespace {

std::string colliding(Numbers n, const char* front, const char* back) {
  return each(n, [=](std::string& t, std::size_t i) { put(t, front, colliding_name(i), back); });
}

std::string one_message() { return "BO_ 1 M: 8 N\n SG_ S : 0|8@1+ (1,0) [0|0] \"\" N\n"; }

/// Names that are equal on the 32 characters that a file has of them.
std::string long_name(std::size_t number) {
  std::string name = "AName_Of_Which_The_First_32_Characters_Are_The_Same_";
  put(name, number);
  return name;
}

}  // namespace

std::vector<Shape> odd_shapes() {
  return {
      {"NS_ and statements that it announces",
       [](Numbers n) {
         return head("N", names(n, "\n\tNEW_", "")) + one_message() +
                each(n, [](std::string& t, std::size_t i) { put(t, "NEW_", i, " a 1 \"b\" ;\n"); });
       }},
      {"unknown statements of one kind",
       [](Numbers n) {
         return head("N", "\n\tNEW_") + one_message() +
                each(n, [](std::string& t, std::size_t i) { put(t, "NEW_ ", i, " \"b\" ;\n"); });
       }},
      {"one long text",
       [](Numbers n) {
         return head("N") + one_message() + "CM_ BO_ 1 \"" + std::string(20 * n.count, 'x') +
                "\";\n";
       }},
      {"names of 1,000 characters",
       [](Numbers n) {
         return head("N") + each({n.first, n.count / 50}, [](std::string& t, std::size_t i) {
                  put(t, "BO_ ", i, " ", std::string(990, 'x'), i, ": 8 N\n");
                });
       }},
      {"one long line of blanks",
       [](Numbers n) { return head("N") + std::string(20 * n.count, ' ') + one_message(); }},
      {"empty lines",
       [](Numbers n) { return head("N") + std::string(20 * n.count, '\n') + one_message(); }},
      {"long names of one beginning",
       [](Numbers n) {
         return head("N") + each(n, [](std::string& t, std::size_t i) {
                  put(t, "BO_ ", extended_id(i), " ", long_name(i), ": 8 N\n SG_ ", long_name(i),
                      " : 0|8@1+ (1,0) [0|0] \"\" N\n");
                });
       }},
      {"long names in attributes",
       [](Numbers n) {
         return head("N") +
                each(n, [](std::string& t,
                           std::size_t i) { put(t, "BO_ ", extended_id(i), " M", i, ": 8 N\n"); }) +
                "BA_DEF_ BO_ \"SystemMessageLongSymbol\" STRING ;\nBA_DEF_DEF_ "
                "\"SystemMessageLongSymbol\" \"\";\n" +
                each(n, [](std::string& t, std::size_t i) {
                  put(t, "BA_ \"SystemMessageLongSymbol\" BO_ ", extended_id(i), " \"",
                      long_name(i), "\";\n");
                });
       }},
      {"BO_ of one name and identifier",
       [](Numbers n) {
         return head("N") + each(n, [](std::string& t, std::size_t) {
                  put(t, "BO_ 1 M: 8 N\n SG_ S : 0|8@1+ (1,0) [0|0] \"\" N\n");
                });
       }},
      {"SG_ of one name in one message",
       [](Numbers n) {
         return head("N") + "BO_ 1 M: 8 N\n" + each(n, [](std::string& t, std::size_t i) {
                  put(t, " SG_ S : ", i % 64, "|1@1+ (1,0) [0|0] \"\" N\n");
                });
       }},
      {"BU_ of one name",
       [](Numbers n) {
         return head(each(n, [](std::string& t, std::size_t) { put(t, "N "); })) + one_message();
       }},
      {"BU_ that collide",
       [](Numbers n) { return head(colliding(n, " ", "")) + "BO_ 1 M: 8 Ostrel__XXX\n"; },
       kCollidingNames},
      {"BO_ and SG_ that collide",
       [](Numbers n) {
         return head("N") + each(n, [](std::string& t, std::size_t i) {
                  put(t, "BO_ ", colliding_id(i), " ", colliding_name(i), ": 8 N\n SG_ ",
                      colliding_name(i), " : 0|8@1+ (1,0) [0|0] \"\" N\n");
                });
       },
       kCollidingNames},
      {"SG_ of one message that collide",
       [](Numbers n) {
         return head("N") + "BO_ 1 M: 8 N\n" +
                colliding(n, " SG_ ", " : 0|8@1+ (1,0) [0|0] \"\" N\n");
       },
       kCollidingNames},
      {"units, EV_, VAL_TABLE_ and CAT_DEF_ that collide",
       [](Numbers n) {
         return head("N") + colliding(n, "VAL_TABLE_ ", " 0 \"a\" ;\n") +
                each(n,
                     [](std::string& t, std::size_t i) {
                       put(t, "BO_ ", extended_id(i), " M", i,
                           ": 8 N\n SG_ S : 0|8@1+ (1,0) [0|0] \"", colliding_name(i), "\" N\n");
                     }) +
                colliding(n, "EV_ ", ": 0 [0|1] \"\" 0 1 DUMMY_NODE_OSTREL0 N;\n") +
                each(n, [](std::string& t, std::size_t i) {
                  put(t, "CAT_DEF_ ", i, " ", colliding_name(i), " 0;\n");
                });
       },
       kCollidingNames},
      {"BA_DEF_ and BA_ that collide",
       [](Numbers n) {
         return head("N") + one_message() + colliding(n, "BA_DEF_ BO_ \"", "\" INT 0 9;\n") +
                colliding(n, "BA_DEF_DEF_ \"", "\" 0;\n") + colliding(n, "BA_ \"", "\" BO_ 1 5;\n");
       },
       kCollidingNames},
      {"items of an ENUM, texts and symbols that collide",
       [](Numbers n) {
         std::string items = colliding(n, "\"", "\",");
         items.pop_back();
         return head("N", colliding(n, "\n\t", "")) + one_message() +
                colliding(n, "CM_ \"", "\";\n") + "BA_DEF_ BO_ \"A\" ENUM " + items +
                ";\nBA_DEF_DEF_ \"A\" \"\";\nVAL_ 1 S" +
                each(n, [](std::string& t,
                           std::size_t i) { put(t, " ", i, " \"", colliding_name(i), "\""); }) +
                " ;\n";
       },
       kCollidingNames},
  };
}

}  // namespace zelk::bench
