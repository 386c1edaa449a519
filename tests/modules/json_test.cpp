#include <gmock/gmock.h>

#include "modules/conversions.hpp"
#include "support/paths.hpp"

namespace {

using testing::AllOf;
using testing::HasSubstr;

const std::string kSources = ZELK_SOURCE_DIR;
constexpr char kHead[] = R"({"format": "zelk-json", "version": 1, )";

struct Host : Conversions {
  Host() : Conversions(ZELK_JSON_MODULE) {}
};

TEST(Json, KeepsEveryByteOfADbcFile) {
  const struct {
    const char *path, *encoding;
  } cases[] = {{"/tests/data/ok_smallest.dbc", "utf-8"},
               {"/tests/data/ok_latin1.dbc", "windows-1252"},
               {"/tests/data/ok_every_statement.dbc", "utf-8"},
               {"/tests/writer/whole.dbc", "utf-8"},
               {"/examples/powertrain.dbc", "utf-8"}};
  for (const auto& [path, encoding] : cases) {
    Host host;
    const char* const read = host.opened(bytes_of(kSources + path));
    const std::string dbc = host.written(read);
    const std::string json = host.exported(read);
    EXPECT_THAT(json, HasSubstr(std::string("\"encoding\": \"") + encoding)) << path;
    ASSERT_EQ(host.import(json), "") << path;
    EXPECT_EQ(host.written(host.name), dbc) << path;
    EXPECT_EQ(host.exported(host.name), json) << path;
  }
}

/// In the form of an export but for the blanks: all that no DBC file can hold.
constexpr char kBeyondDbc[] = R"({"format":"zelk-json","version":1,"encoding":"utf-8",
"version_text":"","comment":"\u0001\u001f",
"attribute_definitions":[{"name":"A","object_type":"node","value_type":"enum"},
{"name":"A","object_type":"node","value_type":"string","maximum":"inf"},
{"name":"A","object_type":77,"value_type":9,"minimum":"-inf","maximum":-0.0,"default":"nan"}],
"categories":[{"name":"C","number":-1},{"name":"C","number":2,"level":65535}],
"signal_types":[{"name":"","length":0,"other_flags":4,"value_type":4294967295,"factor":0}],
"nodes":[{"name":null,"category":1,"attributes":[{"definition":null},
{"definition":1,"value":null},{"definition":2,"value":1e-300},{"definition":"A","value":0.1}]},
{"name":"","category":"C"},{"name":""}],
"messages":[{"name":null,"id":2147483647,"extended":true,"dlc":65535,"transmitter":0,
"transmitters":[null,"",2],"signals":[
{"name":null,"start_bit":65535,"length":65535,"other_flags":65528,"multiplexor":"s",
"multiplexor_values":[{"low":7,"high":1}],"values":[{"value":-2147483648,"text":null}]},
{"name":"s","start_bit":0,"length":1,"multiplexor":2},{"name":"s","start_bit":0,"length":1}],
"signal_groups":[{"name":"g","repetitions":-1,"comment":"","signals":[null,0,"s",2]}]}],
"environment_variables":[{"name":null,"type":4,"id":4294967295,"access_nodes":[
{"node":null,"attributes":[{"definition":0,"value":-0.0}]}],"values":[]}],
"filter":{"mode":-1}})";

/// Without line feeds and the blanks behind them and behind colons; no text here has any.
std::string without_blanks(std::string text) {
  std::erase_if(text, [](char character) { return character == '\n' || character == ' '; });
  return text;
}

TEST(Json, KeepsWhatNoDbcFileHolds) {
  Host host;
  ASSERT_EQ(host.import(kBeyondDbc), "");
  std::string expected = without_blanks(kBeyondDbc);
  expected.erase(expected.find(",\"values\":[]"), 12);  // an empty list is none
  EXPECT_EQ(without_blanks(host.exported(host.name)), expected);
}

TEST(Json, ImportsTheExampleOfTheDocument) {
  const std::string document = content_of(kSources + "/docs/json.md");
  const std::size_t start = document.find("```json\n") + 8;
  Host host;
  ASSERT_EQ(host.import(document.substr(start, document.find("```", start) - start)), "");
  EXPECT_THAT(host.written(host.name),
              AllOf(HasSubstr("BU_: Engine Dash"), HasSubstr("BO_ 256 Motor: 4 Engine"),
                    HasSubstr(" SG_ Temperature : 0|8@1- (0.5,0) [0|63.5] \"\u00B0C\"  Dash"),
                    HasSubstr("BA_ \"CycleTime\" BO_ 256 20;")));
}

TEST(Json, RefusesFaultyDocumentsAndTellsWhere) {
  const std::string signal = R"("messages":[{"name":"M","id":1,"dlc":8,"signals":[)";
  std::string many_keys = R"("0":0)";
  for (int i = 1; i < 100; ++i) many_keys += ",\"" + std::to_string(i) + "\":0";
  const std::string two = signal + R"({"name":"a","start_bit":0,"length":1,"multiplexor":"b"},)";
  const struct {
    std::string members;  ///< behind the format and the version
    const char* error;
  } kCases[] = {
      {"\n\n\"nodes\":[}", ", line 3, syntax error while parsing value"},
      {"\n\"comment\":\"\xC0\x80\"}", ", line 2, syntax error while parsing value - invalid"},
      {"\n\"comment\":\"a\",\n\"comment\":\"b\"}", ", line 3, the key \"comment\" stands twice"},
      {R"("bit_timings":[{"baudrate":1e999}]})", "number overflow"},
      {R"("nodes":)" + std::string(100000, '['), "more than 32 deep"},
      {many_keys + "}", "an object has more than 64 keys"},
      {R"("nods":[]})", R"(the document: unknown key "nods")"},
      {R"("encoding":"latin1"})", R"(encoding: expected "utf-8" or "windows-1252")"},
      {R"("encoding":"windows-1252","comment":"Ω"})", "comment: a character that Windows-1252"},
      {R"("encoding":1})", R"(encoding: expected "utf-8" or "windows-1252")"},
      {R"("comment":"a\u0000b"})", "comment: a NUL character"},
      {R"("comment":1})", "comment: expected a text"},
      {R"("nodes":{}})", "nodes: expected an array"},
      {R"("nodes":["A"]})", "nodes[0]: expected an object"},
      {R"("nodes":[{"name":"A","category":0}]})",
       "nodes[0].category: expected a name, or a position below 0"},
      {R"("nodes":[{"name":"A","category":-1}]})",
       "nodes[0].category: expected a name, or a position below 0"},
      {R"("signal_types":[{"name":"T","length":1,"factor":"1"}]})",
       R"(signal_types[0].factor: expected a number, "inf", "-inf" or "nan")"},
      {R"("signal_types":[{"name":"T","length":1,"value_type":"word"}]})",
       R"(signal_types[0].value_type: expected ")"},
      {R"("signal_types":[{"name":"T","length":1,"byte_order":1}]})",
       R"(signal_types[0].byte_order: expected "intel" or "motorola")"},
      {R"("nodes":[{"name":"A"},{}]})", R"(nodes[1]: the key "name" is missing)"},
      {R"("value_tables":[{"name":"abcdefghijklmnopqrstuvwxyz0123456"}]})",
       "has more than 32 char"},
      {R"("categories":[{"name":"C","number":1.0}]})", "from -32768 to 32767"},
      {R"("categories":[{"name":"C","number":-32769}]})", "from -32768 to 32767"},
      {R"("filter":{"mode":18446744073709551615}})", "filter.mode: expected a whole number"},
      {R"("signal_types":[{"name":"T","length":1,"other_flags":1}]})", "a bit that has a key of"},
      {R"("attribute_definitions":[{"name":"E","value_type":"enum","items":["a\nb"]}]})",
       "attribute_definitions[0].items[0]: a line feed"},
      {R"("attribute_definitions":[{"name":"E","object_type":"node","value_type":"int"}],
       "attributes":[{"definition":"E","value":1}]})",
       R"(attributes[0].definition: there is no attribute definition of this kind "E")"},
      {R"("messages":[{"name":"M","id":1,"dlc":8,"extended":1}]})", "expected true or false"},
      {two + R"({"name":"b","start_bit":0,"length":1,"multiplexor":0}]}]})",
       R"(messages[0]: the multiplexor of the signal "a" depends on that signal)"},
      {two + R"({"name":"c","start_bit":0,"length":1}]}]})",
       R"(messages[0].signals[0].multiplexor: there is no signal "b")"},
  };
  Host host;
  for (const auto& test : kCases) {
    EXPECT_THAT(host.import(kHead + test.members), HasSubstr(test.error)) << test.members;
  }
  EXPECT_THAT(host.import("[]"), HasSubstr("the document: expected an object"));
  EXPECT_THAT(host.import(R"({"version":1})"), HasSubstr(R"(format: expected "zelk-json")"));
  EXPECT_THAT(host.import(""), HasSubstr(", line 1, syntax error"));
  EXPECT_THAT(host.import(R"({"format":"zelk-json","version":2})"), HasSubstr("version: expecte"));
  EXPECT_THAT(host.import(R"({"format":"zelk-json","version":1.5})"),
              HasSubstr("version: expecte"));
  EXPECT_EQ(Host().import(kHead + std::string(R"("filter":{"mode":0},"attribute_definitions":[
      {"name":"E","value_type":"enum","items":[]}],"signal_types":[{"name":"T","length":1,
      "byte_order":"intel","signed":false}]})")),
            "");
  EXPECT_THAT(host.import(R"({"format":1})"), HasSubstr(R"(format: expected "zelk-json")"));
  EXPECT_THAT(host.import(R"({"format":"zelk-json"})"), HasSubstr("version: expecte"));
  EXPECT_EQ(Host().import(R"({"format":"zelk-json","version":1.0})"), "");
  EXPECT_EQ(host.import(std::string("\xEF\xBB\xBF") + kHead + "\"nodes\":[]}"), "");
}

TEST(Json, ExportsNoReferenceThatLeadsOut) {
  Host host;
  ASSERT_EQ(host.import(std::string(kHead) + R"("messages":[{"name":"M","id":1,"dlc":8,"signals":[
      {"name":"a","start_bit":0,"length":1},{"name":"b","start_bit":0,"length":1}]},
      {"name":"N","id":2,"dlc":8,"signals":[{"name":"a","start_bit":0,"length":1}]}]})"),
            "");
  msgblk& first = *host.imported().messages;
  first.signals->next->mux_signal = first.next->signals;
  EXPECT_THAT(
      host.exported(host.name),
      HasSubstr("messages[0].signals[1].multiplexor: refers to a record that is no signal"));
  first.signals->next->mux_signal = first.signals->next;
  EXPECT_THAT(host.exported(host.name),
              HasSubstr("messages[0]: the multiplexor of the signal \"b"));
  first.signals->next->mux_signal = first.signals;
  EXPECT_THAT(host.exported(host.name), HasSubstr(R"("multiplexor": "a")"));
  std::ranges::fill(first.signals->unit, 'u');
  EXPECT_THAT(host.exported(host.name),
              HasSubstr("messages[0].signals[0].unit: \"" + std::string(40, 'u') + "\" has more"));
}

TEST(Json, TellsWhatHostsHaveForThemselves) {
  Host host;
  ASSERT_EQ(host.import(std::string(kHead) + R"("messages":[{"name":"M","id":1,"dlc":8,
      "signal_groups":[{"name":"g"}]}],"environment_variables":[{"name":"v","type":0,"id":1}]})"),
            "");
  host.imported().messages->siggroups->extra =
      static_cast<siggroup_extra*>(zelk_malloc(sizeof(siggroup_extra)));
  host.imported().env_vars->unused = 1;
  EXPECT_THAT(host.exported(host.name),
              AllOf(HasSubstr("messages[0].signal_groups[0]: the host's own entries of the group"),
                    HasSubstr("environment_variables[0]: the host's own number of the variable")));
}

}  // namespace
