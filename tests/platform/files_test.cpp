#include <gtest/gtest.h>

#include <cstdio>

#include "files/files.hpp"
#include "platform/folder.hpp"
#include "platform/platform.hpp"
#include "support/files.hpp"

namespace {

using namespace zelk::files;
using namespace zelk::platform;
namespace fs = std::filesystem;

std::string read_all(const std::string& path) {
  const File file = open_for_reading(path.c_str());
  if (!file) return "not opened";
  char bytes[100];
  return {bytes, std::fread(bytes, 1, sizeof bytes, file.get())};
}

// The line ends, the end-of-file character of text files, and a zero byte among them.
TEST(Files, ReadAsTheyAre) {
  const WorkingFolder folder;
  constexpr std::string_view kBytes("a\r\nb\n\x1A\0\xFFz", 9);
  const fs::path name = u8"Gr\u00F6\u00DFe und mehr.dbc";
  put_bytes(name, kBytes);
  EXPECT_EQ(read_all(encoded(name)), kBytes);
  EXPECT_EQ(read_all(encoded(folder.path() / name)), kBytes);
}

TEST(Files, WrittenWithTheLineEndOfTheSystem) {
  const WorkingFolder folder;
  put_bytes("out.dbc", "what was there before");
  const File file = open_for_writing("out.dbc");
  std::fputs("a\n\nb\r\xE4", file.get());
  EXPECT_EQ(bytes_of("out.dbc"), std::string("a") + kLineEnd + kLineEnd + "b\r\xE4")
      << "before it is closed: there is no buffer";
}

TEST(Files, ReplacedByTwoAtOnce) {
  const WorkingFolder folder;
  put_bytes("f.dbc", "old");
  Replacement first("f.dbc"), second("f.dbc");
  for (Replacement* replacement : {&first, &second}) {
    const char* const content = replacement == &first ? "1" : "2";
    std::fputs(content, replacement->file());
    EXPECT_TRUE(replacement->take_place()) << replacement->failure();
    EXPECT_EQ(bytes_of("f.dbc"), content);
  }
  for (const auto& entry : fs::directory_iterator(".")) EXPECT_EQ(entry.path().filename(), "f.dbc");
}

TEST(Files, LongerThan260Characters) {
  const WorkingFolder folder;
  fs::path relative;
  for (const char letter : {'a', 'b', 'c'}) {
    relative /= std::string(100, letter);
    fs::create_directory(at_any_length(folder.path() / relative));
  }
  const std::string absolute = encoded(folder.path() / relative / "long.dbc");
  std::fputs("x", open_for_writing(absolute.c_str()).get());
  for (const std::string& path : {absolute, encoded(relative / "long.dbc")}) {
    EXPECT_EQ(read_all(path), "x");
    EXPECT_TRUE(file_status(path.c_str()).has_value());
    EXPECT_TRUE(is_same_path(path.c_str(), absolute.c_str()));
    EXPECT_FALSE(is_same_path(path.c_str(), (absolute + "x").c_str()));
  }
  // Not every C++ library can remove the tree at once.
  for (relative /= "long.dbc"; !relative.empty(); relative = relative.parent_path()) {
    fs::remove(at_any_length(folder.path() / relative));
  }
}

TEST(Files, Same) {
  const WorkingFolder folder;
  put_bytes("here.dbc", "x");
  put_bytes("there.dbc", "x");
  fs::create_directory("sub");
  const std::string absolute = encoded(folder.path() / "here.dbc");
  const struct {
    std::string a, b;
    bool same;
  } cases[] = {
      {"here.dbc", ".//sub/../here.dbc", true},
      {"here.dbc", absolute, true},
      {"here.dbc", "HERE.dbc", true},
      {"HERE.DBC", absolute, true},
      {"missing.dbc", "./Missing.dbc", true},
      {"here.dbc", "there.dbc", false},
      {"", "here.dbc", false},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(is_same_path(c.a.c_str(), c.b.c_str()), c.same) << c.a << " " << c.b;
    EXPECT_EQ(is_same_path(c.b.c_str(), c.a.c_str()), c.same) << c.b << " " << c.a;
  }
}

}  // namespace
