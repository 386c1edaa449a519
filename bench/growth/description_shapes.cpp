#include "growth/database_text.hpp"
#include "growth/shapes.hpp"

namespace zelk::bench {
namespace {

/// Everything that can be described, once.
std::string one_of_each() {
  return head("N") +
         "VAL_TABLE_ T 0 \"a\" ;\nBO_ 1 M: 8 N\n SG_ S : 0|8@1+ (1,0) [0|0] \"\" N\n"
         "EV_ V: 0 [0|1] \"\" 0 1 DUMMY_NODE_OSTREL0 N;\n"
         "SGTYPE_ Y : 8@1+ (1,0) [0|0] \"\" 0 T;\n";
}

/// Definitions of one kind, each with a value on the object.
std::string definitions_with_values(Numbers n, const char* kind, const char* object) {
  return one_of_each() +
         each(n, [=](std::string& t,
                     std::size_t i) { put(t, "BA_DEF_ ", kind, " \"A", i, "\" INT 0 100;\n"); }) +
         each(n, [](std::string& t, std::size_t i) { put(t, "BA_DEF_DEF_ \"A", i, "\" 0;\n"); }) +
         each(n,
              [=](std::string& t, std::size_t i) { put(t, "BA_ \"A", i, "\" ", object, " 1;\n"); });
}

/// Values of one relation attribute.
///
/// @param object  appends the second object of the i-th one
template <typename PutObject>
std::string relations(const std::string& objects, const char* kind, Numbers n,
                      const PutObject& put_object) {
  return objects + "BA_DEF_REL_ " + kind + " \"R\" INT 0 9;\n" +
         each(n, [&](std::string& t, std::size_t i) {
           put(t, "BA_REL_ \"R\" ", kind, " ");
           put_object(t, i);
           put(t, " 1;\n");
         });
}

std::string descriptions(Numbers n) {
  return each(n, [](std::string& t, std::size_t i) { put(t, " ", i, " \"text ", i, "\""); }) +
         " ;\n";
}

std::string enum_items(Numbers n) { return "\"" + names(n, "item ", "\",\"") + "\""; }

}  // namespace

std::vector<Shape> description_shapes() {
  return {
      {"CM_ of BO_ and SG_",
       [](Numbers n) {
         return head("N") + messages_with_signal(n) + each(n, [](std::string& t, std::size_t i) {
                  put(t, "CM_ BO_ ", extended_id(i), " \"a\";\nCM_ SG_ ", extended_id(i),
                      " S \"b\";\n");
                });
       }},
      {"CM_ of BU_ and EV_",
       [](Numbers n) {
         return head(names(n, "N", " ") + " N") + variables(n) +
                each(n, [](std::string& t, std::size_t i) {
                  put(t, "CM_ BU_ N", i, " \"a\";\nCM_ EV_ V", i, " \"b\";\n");
                });
       }},
      {"CM_, all of one object",
       [](Numbers n) {
         return one_of_each() + each(n, [](std::string& t, std::size_t i) {
                  put(t, "CM_ \"", i, "\";\nCM_ SG_ 1 S \"", i, "\";\n");
                });
       }},
      {"CM_, lines of one",
       [](Numbers n) {
         return one_of_each() + "CM_ BO_ 1 \"" +
                each(n, [](std::string& t, std::size_t i) { put(t, "line \\\"", i, "\n"); }) +
                "\";\n";
       }},
      {"BA_DEF_, BA_DEF_DEF_, BA_ of the network",
       [](Numbers n) { return definitions_with_values(n, "", ""); }},
      {"BA_ of one BU_", [](Numbers n) { return definitions_with_values(n, "BU_", "BU_ N"); }},
      {"BA_ of one BO_", [](Numbers n) { return definitions_with_values(n, "BO_", "BO_ 1"); }},
      {"BA_ of one SG_", [](Numbers n) { return definitions_with_values(n, "SG_", "SG_ 1 S"); }},
      {"BA_ of one EV_", [](Numbers n) { return definitions_with_values(n, "EV_", "EV_ V"); }},
      {"BA_ of many BO_ and SG_",
       [](Numbers n) {
         return head("N") + messages_with_signal(n) +
                "BA_DEF_ BO_ \"A\" STRING ;\nBA_DEF_ SG_ \"B\" FLOAT 0 9;\n"
                "BA_DEF_DEF_ \"A\" \"\";\nBA_DEF_DEF_ \"B\" 0;\n" +
                each(n, [](std::string& t, std::size_t i) {
                  put(t, "BA_ \"A\" BO_ ", extended_id(i), " \"x\";\nBA_ \"B\" SG_ ",
                      extended_id(i), " S 1;\n");
                });
       }},
      {"BA_, a value again and again",
       [](Numbers n) {
         return one_of_each() + "BA_DEF_ BO_ \"A\" INT 0 0;\nBA_DEF_DEF_ \"A\" 0;\n" +
                each(n,
                     [](std::string& t, std::size_t i) { put(t, "BA_ \"A\" BO_ 1 ", i, ";\n"); });
       }},
      {"BA_DEF_ of one name",
       [](Numbers n) {
         return one_of_each() + each(n, [](std::string& t, std::size_t i) {
                  const char* const kinds[] = {"", "BU_", "BO_", "SG_", "EV_"};
                  put(t, "BA_DEF_ ", kinds[i % 5], " \"A\" INT 0 ", i, ";\n");
                });
       }},
      {"BA_DEF_, items of an ENUM, all used",
       [](Numbers n) {
         return head("N") + messages(n) + "BA_DEF_ BO_ \"A\" ENUM " + enum_items(n) +
                ";\nBA_DEF_DEF_ \"A\" \"item " + std::to_string(n.first + n.count - 1) + "\";\n" +
                each(n, [&](std::string& t, std::size_t i) {
                  put(t, "BA_ \"A\" BO_ ", extended_id(i), " ", i - n.first, ";\n");
                });
       }},
      {"BA_, items of an ENUM by their text",
       [](Numbers n) {
         return head("N") + messages(n) + "BA_DEF_ BO_ \"A\" ENUM " + enum_items(n) +
                ";\nBA_DEF_DEF_ \"A\" \"\";\n" + each(n, [](std::string& t, std::size_t i) {
                  put(t, "BA_ \"A\" BO_ ", extended_id(i), " \"item ", i, "\";\n");
                });
       }},
      {"BA_SGTYPE_",
       [](Numbers n) {
         return one_of_each() +
                each(n, [](std::string& t,
                           std::size_t i) { put(t, "BA_DEF_ SG_ \"A", i, "\" STRING ;\n"); }) +
                each(n, [](std::string& t,
                           std::size_t i) { put(t, "BA_DEF_SGTYPE_ \"A", i, "\";\n"); }) +
                each(n, [](std::string& t, std::size_t i) {
                  put(t, "BA_SGTYPE_ \"A", i, "\" SGTYPE_ Y \"x\";\n");
                });
       }},
      {"BA_REL_ BU_BO_REL_, nodes with one message",
       [](Numbers n) {
         return relations(head(names(n, "N", " ")) + "BO_ 1 M: 8 Ostrel__XXX\n", "BU_BO_REL_", n,
                          [](std::string& t, std::size_t i) { put(t, "N", i, " 1"); });
       }},
      {"BA_REL_ BU_BO_REL_, a node with messages",
       [](Numbers n) {
         return relations(head("N") + messages(n), "BU_BO_REL_", n,
                          [](std::string& t, std::size_t i) { put(t, "N ", extended_id(i)); });
       }},
      {"BA_REL_ BU_SG_REL_, nodes with one signal",
       [](Numbers n) {
         return relations(head(names(n, "N", " ")) +
                              "BO_ 1 M: 8 Ostrel__XXX\n SG_ S : 0|8@1+ (1,0) [0|0] \"\" " +
                              names(n, "N", ",") + "\n",
                          "BU_SG_REL_", n,
                          [](std::string& t, std::size_t i) { put(t, "N", i, " SG_ 1 S"); });
       }},
      {"BA_REL_ BU_SG_REL_, a node with signals",
       [](Numbers n) {
         return relations(
             head("N") + messages_with_signal(n), "BU_SG_REL_", n,
             [](std::string& t, std::size_t i) { put(t, "N SG_ ", extended_id(i), " S"); });
       }},
      {"BA_REL_ BU_EV_REL_",
       [](Numbers n) {
         return relations(head(names(n, "N", " ") + " N") + variables(n), "BU_EV_REL_", n,
                          [](std::string& t, std::size_t i) { put(t, "N", i, " V", i); });
       }},
      {"BA_DEF_REL_, BA_REL_ of one link",
       [](Numbers n) {
         return one_of_each() +
                each(n,
                     [](std::string& t, std::size_t i) {
                       put(t, "BA_DEF_REL_ BU_SG_REL_ \"R", i, "\" INT 0 9;\n");
                     }) +
                each(n, [](std::string& t, std::size_t i) {
                  put(t, "BA_REL_ \"R", i, "\" BU_SG_REL_ N SG_ 1 S 3;\n");
                });
       }},
      {"VAL_TABLE_",
       [](Numbers n) {
         return head("N") + each(n, [](std::string& t, std::size_t i) {
                  put(t, "VAL_TABLE_ T", i, " 0 \"a\" 1 \"b\" ;\n");
                });
       }},
      {"VAL_TABLE_, entries of one",
       [](Numbers n) { return head("N") + "VAL_TABLE_ T" + descriptions(n); }},
      {"VAL_",
       [](Numbers n) {
         return head("N") + messages_with_signal(n) + each(n, [](std::string& t, std::size_t i) {
                  put(t, "VAL_ ", extended_id(i), " S 0 \"a\" 1 \"b\" ;\n");
                });
       }},
      {"VAL_, entries of one",
       [](Numbers n) {
         return one_of_each() + "VAL_ 1 S" + descriptions(n) + "VAL_ V" + descriptions(n);
       }},
      {"VAL_, again and again",
       [](Numbers n) {
         return one_of_each() + each(n, [](std::string& t, std::size_t i) {
                  put(t, "VAL_ 1 S ", i, " \"a\" ;\nVAL_ V ", i, " \"b\" ;\n");
                });
       }},
      {"VAL_, entries of one number",
       [](Numbers n) {
         return one_of_each() + "VAL_ 1 S" +
                each(n, [](std::string& t, std::size_t i) { put(t, " 7 \"", i, "\""); }) + " ;\n";
       }},
  };
}

}  // namespace zelk::bench
