#include <filesystem>

#include "tools/run_tool.hpp"

namespace {

constexpr const char* kText =
    "BS_:\nBU_: A B\nBO_ 256 M: 1 A\n SG_ P : 0|9@1+ (1,0) [0|0] \"\" B\nBO_ 257 N: 9 A\n";

TEST(LintCommand, ExitsBySeverityAndConfiguration) {
  const auto folder = write_file("x.dbc", kText).parent_path();
  std::filesystem::create_directories(folder / "sub");
  write_file("sub/x.dbc", kText);
  write_file("sub/.zelk-lint.json",
             "{\"fail-on\": \"warning\", \"rules\": {\"frame-length\": \"off\",\n"
             " \"signal-outside-frame\": {\"severity\": \"note\"}}}");
  const ToolCase cases[] = {
      {"lint x.dbc", 1, "x.dbc:4:10: error: the signal reaches to byte 1"},
      {"lint x.dbc --disable frame-length --disable signal-outside-frame", 0, "x.dbc: no findings"},
      {"lint x.dbc --disable all", 0, "x.dbc: no findings"},
      {"lint x.dbc --disable all --enable frame-length", 1, "x.dbc: 1 error"},
      {"lint x.dbc --max-errors 1", 1, "x.dbc: 2 errors", "1 finding more"},
      {"lint sub/x.dbc", 0, "sub/x.dbc: 1 note"},
      {"lint sub/x.dbc --fail-on note", 1, "sub/x.dbc: 1 note"},
      {"lint sub/x.dbc --no-config", 1, "sub/x.dbc: 2 errors"},
      {"lint x.dbc --config sub/.zelk-lint.json", 0, "x.dbc: 1 note"},
      {"lint x.dbc --config none.json", 2, "", "none.json: "},
      {"lint none.dbc x.dbc", 2, "x.dbc: 2 errors", "none.dbc: "},
      {"lint x.dbc --disable frame-lenght", 2, "", "did you mean frame-length?"},
      {"lint", 2, "", "FILE"},
  };
  for (const ToolCase& c : cases) check_parts(c);
}

TEST(LintCommand, SaysWhereAConfigurationIsWrong) {
  write_file("x.dbc", kText);
  const struct {
    const char* text;
    const char* error;
  } cases[] = {
      {"{\"rule\": {}}", "c.json:1:2: unknown key \"rule\""},
      {"{\"rules\": {\n  \"frame-size\": \"off\"}}", "c.json:2:3: there is no rule \"frame-size\""},
      {"{\"rules\": {\"frame-length\": \"of\"}}", "c.json:1:12: expected \"off\", \"note\""},
      {"{\"rules\": {\"frame-length\": {\"size\": 1}}}", "the rule has no parameter"},
      {"{\"rules\": {\"narrow-range\": {\"share\": 2}}}", "expected a number from 0 to 1"},
      {"{\"rules\": {\"narrow-range\": {\"share\": \"note\"}}}", "expected a number from 0 to 1"},
      {"{\"rules\": [\"frame-length\"]}", "c.json:1:2: expected an object for \"rules\""},
      {"{\"fail-on\": \"off\"}", "c.json:1:2: expected \"note\""},
      {"{\"fail-on\": \"note\",}", "c.json:1:20: this is no JSON"},
      {"", "c.json:1:1: this is no JSON"},
      {"[]", "c.json:1:1: expected an object"},
  };
  for (const auto& c : cases) {
    write_file("c.json", c.text);
    check_parts({"lint x.dbc --config c.json", 2, "", c.error});
  }
}

}  // namespace
