#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <set>
#include <sstream>
#include <vector>

#include "support/building.hpp"
#include "support/paths.hpp"
#include "support/system.hpp"

// In the expected texts of this file an apostrophe stands for a double quote.

namespace {

using testing::HasSubstr;

/// The file beside this one, which has every section once or more, byte for byte.
const std::string kWhole = content_of(ZELK_SOURCE_DIR "/tests/writer/whole.dbc");

/// Its database, to be edited.
struct Sample : Database {
  Sample() { EXPECT_EQ(read(kWhole), 0u) << reported; }
  sigblk& s() { return *messages->signals; }
  sigblk& t() { return *messages->signals->next; }
};

TEST(Lines, WholeFiles) {
  const std::string empty = "VERSION \"\"\n\nBS_:\n\nBU_:\n\n\n\n\n";
  EXPECT_EQ(written(Database(), 0), empty);
  const TemporaryFile file("");
  ASSERT_EQ(write_to(file.path(), Database(), 0), 0u);
  EXPECT_THAT(bytes_of(file.path()), HasSubstr(kLineEnd + std::string("BU_:") + kLineEnd));
  EXPECT_EQ(written(Database(), 1), empty + "\n");
  const Sample sample;
  EXPECT_EQ(written(sample, 1), kWhole);
  EXPECT_EQ(written(sample, 0), kWhole.substr(0, kWhole.find("\nSG_MUL_VAL_ 1")));
}

TEST(Lines, NewSymbolsAreListedWhereTheyMayBeNeeded) {
  const std::pair<const char*, bool> cases[] = {
      {"BU_: CM_ 'c';", true},
      {"BU_: CM_ '';", false},
      {"BU_: A CM_ BU_ A 'c';", true},
      {"BU_: BO_ 1 M: 8 A CM_ BO_ 1 '';", false},
      {"BU_: BO_ 1 M: 8 A SG_ S : 0|8@1+ (1,0) [0|0] '' A", true},
      {"BU_: EV_ V: 2 [0|0] '' 0 0 DUMMY_NODE_OSTREL0 A; CM_ EV_ V 'c';", false},
      {"BU_: EV_ V: 3 [0|0] '' 0 0 DUMMY_NODE_OSTREL0 A;", true},
      {"BU_: BA_DEF_ 'D' INT 0 1;", true},
      {"BU_: FILTER 1 CAT_ 0 BU_;", true},
      {"BU_: FILTER 1 CAT_ BU_ '<<none>>';", true},
      {"500:1,1 BU_:", false}};
  for (const auto& [content, listed] : cases) {
    Database database;
    ASSERT_EQ(database.read("BS_: " + with_quotes(content) + "\n"), 0u) << database.reported;
    const std::string symbols = kWhole.substr(13, kWhole.find("BS_:") - 13);
    const std::string text = written(database);
    EXPECT_TRUE(text.starts_with("VERSION \"\"\n\n" + (listed ? symbols : "") + "BS_:")) << text;
  }
  Database announcing;
  ASSERT_EQ(announcing.read("NS_ : FOO_ T_ CM_ R_ m3 m3M DUMMY_NODE_OSTREL7 BAR_ m3x BS_: BU_: "
                            "BO_ 1 M: 8 A SG_ S : 0|8 (1,0) "
                            "[0|0] \"\" A\n"),
            0u);
  symblk transmitter{}, receiver{};  // in no list of nodes
  transmitter.name = const_cast<char*>("T_");
  receiver.name = const_cast<char*>("R_");
  announcing.messages->transmitter = &transmitter;
  announcing.messages->signals->receivers->node = &receiver;
  EXPECT_NE(written(announcing).find("\tSG_MUL_VAL_\n\tFOO_\n\tBAR_\n\tm3x\n\nBS_:"),
            std::string::npos);
}

struct EditCase {
  void (*edit)(Sample& d);
  const char* lines;  ///< the lines that the edit adds or changes
  bool comes_back = true;
};

void expect_lines(const std::vector<EditCase>& cases) {
  for (const EditCase& c : cases) {
    Sample sample;
    std::istringstream before(written(sample));
    std::multiset<std::string> old_lines;
    for (std::string line; std::getline(before, line);) old_lines.insert(line);
    c.edit(sample);
    std::istringstream after(written(sample));
    std::string changed;
    for (std::string line; std::getline(after, line);) {
      const auto old_line = old_lines.find(line);
      if (old_line == old_lines.end()) changed += line + "\n";
      if (old_line != old_lines.end()) old_lines.erase(old_line);
    }
    EXPECT_EQ(changed, with_quotes(c.lines));
    Database read_back;
    EXPECT_EQ(read_back.read(after.str()) == 0 && c.comes_back, fault_of(sample).empty())
        << c.lines << read_back.reported;
  }
}

symblk nameless{};

TEST(Lines, Objects) {
  expect_lines({
      {[](Sample& d) { set(d.version, "3\\\"x\\"); }, "VERSION '3\\\\'x\\ '\n"},
      {[](Sample& d) {
         valtable* const table = append_named(d.tables, zelk_create_valtable(), "Ends");
         add_description(table->values, INT32_MIN, "least \"\\\"");
         add_description(table->values, -1, "0xFFFFFFFF\\");
         append(table->values, zelk_create_value());
       },
       "VAL_TABLE_ Ends -2147483648 'least \\'\\\\'' -1 '0xFFFFFFFF\\ ' 0 '' ;\n"},
      {[](Sample& d) {
         append_named(d.messages->siggroups, zelk_create_siggroup(d.messages), "E");
       },
       "SIG_GROUP_ 1 E 1 :;\n"},
      {[](Sample& d) { d.messages->transmitter = &nameless; }, "BO_ 1 M: 8 Ostrel__XXX\n"},
      {[](Sample& d) {
         append(d.messages->next->signals, zelk_create_sigblk())->receivers =
             zelk_create_rx(d.nodes);
       },
       " SG_ Ostrel__XXX : 0|1@1+ (1,0) [0|0] ''  A\n"},
      {[](Sample& d) { d.s().start_bit = d.s().length = 65535, d.s().flags = 3; },
       " SG_ S : 65535|65535@0- (1,0) [0|0] '' Ostrel__XXX\n"},
      {[](Sample& d) { set(d.s().unit, "5\"\\"); },
       " SG_ S M : 0|8@1+ (1,0) [0|0] '5\\'\\ ' Ostrel__XXX\n"},
      {[](Sample& d) { d.t().flags |= 4, d.t().mux_ranges->low = 0xFFFFFFFF; },
       " SG_ T m4294967295M : 8|8@0- (0.5,-40) [-40|87.5] 'C'  A,B\n"
       "SG_MUL_VAL_ 1 T S 4294967295-3, 7-9;\n"},
      {[](Sample& d) { add_signal(d.messages, "U")->mux_signal = &d.s(); },
       " SG_ U m0 : 0|1@1+ (1,0) [0|0] '' Ostrel__XXX\n", false},
      {[](Sample& d) { add_range(add_signal(d.messages, "U"), 5, 7); },
       " SG_ U m5 : 0|1@1+ (1,0) [0|0] '' Ostrel__XXX\n", false},
      {[](Sample& d) { d.variables->type = 3, d.variables->data_size = 0xFFFFFFFF; },
       "EV_ V: 0 [-0.5|10] 'V' 2.5 9 DUMMY_NODE_OSTREL3  A,B;\nENVVAR_DATA_ V: 4294967295;\n"},
  });
}

TEST(Lines, TextsAndAttributes) {
  expect_lines({
      {[](Sample& d) { set(d.comment, "say \"x\"\\\"\n\xE9\\"); },
       "CM_ 'say \\'x\\'\\\\'\n\xE9\\ ';\n"},
      {[](Sample& d) { set(d.comment, ""), set(d.nodes->comment, ""), set(d.s().comment, ""); },
       ""},
      {[](Sample& d) { set(d.definitions->name, "N\"\\"); },
       "BA_DEF_  'N\\'\\ ' INT 0 10;\nBA_DEF_DEF_  'N\\'\\ ' 5;\nBA_ 'N\\'\\ ' 7;\n"},
      {[](Sample& d) { add_definition(d, 2, "X", ZELK_ATTR_STRING, "", "\"\n\\"); },
       "BA_DEF_ BO_  'X' STRING ;\nBA_DEF_DEF_  'X' '\\'\n\\ ';\n"},
      {[](Sample& d) { add_value(d.nodes->attrs, d.variables->attrs->def); },
       "BA_ 'Var' BU_ A '';\n"},
  });
}

/// What is written of a database with one definition.
std::string written_of(int32_t type, const char* items, double default_number) {
  Database database;
  attr_def* const definition = add_definition(database, ZELK_OBJ_REL_SIGNAL, "D", type, items);
  if (type == ZELK_ATTR_FLOAT) definition->default_value.number = default_number;
  return written(database);
}

TEST(Lines, EnumItems) {
  const std::pair<const char*, const char*> cases[] = {
      {"", "'ostrel_leerstring'"},
      {"A\n\n", "'A','ostrel_leerstring'"},
      {"\n\nA", "'ostrel_leerstring','ostrel_leerstring','A'"},
      {"a\"b\nc\\", "'a\\'b','c\\ '"}};
  for (const auto& [items, list] : cases) {
    const std::string line = std::string("\nBA_DEF_REL_ BU_SG_REL_  'D' ENUM  ") + list + ";\n";
    EXPECT_THAT(written_of(ZELK_ATTR_ENUM, items, 0), HasSubstr(with_quotes(line)));
  }
}

TEST(Lines, Numbers) {
  using Limits = std::numeric_limits<double>;
  // clang-format off
  const std::pair<double, const char*> cases[] = {
      {0, "0"}, {-0.0, "-0"}, {-1, "-1"}, {-2.0 / 3, "-0.66666666666667"}, {0.0001, "0.0001"},
      {1e-5, "1E-05"}, {0.000099999999999999, "9.9999999999999E-05"},
      {99999999999999, "99999999999999"}, {99999999999999.5, "1E+14"}, {1e14, "1E+14"},
      {123456789012345, "1.2345678901234E+14"}, {-1e100, "-1E+100"},
      {5e-324, "4.9406564584125E-324"}, {Limits::infinity(), "1.7976931348623E+308"},
      {-Limits::infinity(), "-1.7976931348623E+308"}, {Limits::quiet_NaN(), "0"}};
  // clang-format on
  for (const auto& [number, text] : cases) {
    const std::string line = std::string("\nBA_DEF_DEF_REL_ 'D' ") + text + ";\n";
    EXPECT_THAT(written_of(ZELK_ATTR_FLOAT, "", number), HasSubstr(with_quotes(line)));
  }
}

TEST(Lines, FilterOfNodesAlone) {
  Database database;
  database.filter.mode = -1;
  append(database.filter.nodes, zelk_create_rx(nullptr));
  EXPECT_THAT(written(database), HasSubstr("\nFILTER -1 CAT_ 0 BU_ \"<<none>>\" ;\n"));
}

TEST(Lines, MultiplexorRanges) {
  const struct {
    const char *ranges, *alone;  ///< what is written with one multiplexor in the message
  } cases[] = {
      {"5-5", ""}, {"5-7", "5-7"}, {"5-5, 6-6", "5-5, 6-6"}, {"0-4294967295", "0-4294967295"}};
  for (const auto& c : cases) {
    for (const bool extended : {false, true}) {
      const std::string layout = " : 0|1@1+ (1,0) [0|0] \"\"  A\n", start = "SG_MUL_VAL_ 1 T S ";
      Database database;
      ASSERT_EQ(database.read("BS_: BU_: BO_ 1 M: 8 A SG_ S M" + layout +
                              (extended ? "SG_ U M" + layout : "") + "SG_ T m9" + layout + start +
                              c.ranges + ";"),
                0u);
      const std::string ranges = extended ? c.ranges : c.alone, text = written(database);
      const std::string line = ranges.empty() ? "" : "\n" + start + ranges + ";";
      EXPECT_TRUE(text.ends_with(layout + "\n\n\n" + line + "\n")) << text;
    }
  }
}

}  // namespace
