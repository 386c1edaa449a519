#include "check/picture/message_picture.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "base/encoding.hpp"
#include "check/picture/svg.hpp"
#include "support/lists.hpp"

namespace zelk::check {
namespace {

/// Where a text stops being XML; empty when it does not.
std::string fault_in_xml(std::string_view text) {
  std::vector<std::string> open;
  text.remove_prefix(text.find("?>") + 2);
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::string_view rest = text.substr(i);
    const std::string_view near = rest.substr(0, 60);
    const bool is_control =
        static_cast<unsigned char>(text[i]) < 0x20 && text[i] != '\n' && text[i] != '\t';
    if (is_control || (text[i] == '&' && rest.find(';') > 5)) return std::string(near);
    if (text[i] != '<') continue;
    const std::string_view tag = rest.substr(1, rest.find('>') - 1);
    if (tag.find('<') != std::string_view::npos || std::ranges::count(tag, '"') % 2 != 0)
      return std::string(near);
    const std::string name(tag.substr(0, tag.find_first_of(" /", 1)));
    if (tag.front() != '/' && tag.back() != '/') open.push_back(name);
    if (tag.front() == '/' && (open.empty() || '/' + open.back() != tag)) return std::string(near);
    if (tag.front() == '/') open.pop_back();
  }
  return open.empty() ? "" : "not closed: " + open.back();
}

/// The picture of the first message.
std::string picture_of(const std::string& rest) {
  const std::string text = "BS_:\nBU_: N\n" + rest;
  Lists lists;
  EXPECT_EQ(lists.read_by(zelk_try_read_text, text.data(), text.size()), 0u) << text;
  std::string picture = message_picture(*lists.messages, encoding_of(text));
  EXPECT_EQ(fault_in_xml(picture), "");
  return picture;
}

std::string signal(const std::string& layout, const std::string& unit = "") {
  return " SG_ " + layout + " (1,0) [0|100000] \"" + unit + "\" N\n";
}

TEST(Picture, ShowsWhatAnExpertLooksFor) {
  const std::string long_name(300, 'n');
  std::string pages = "BO_ 100 M: 8 N\n" + signal("X M : 0|16@1+"), crowd = "BO_ 100 M: 1 N\n";
  for (int i = 0; i < 300; ++i)
    pages += signal("p" + std::to_string(i) + " m" + std::to_string(i) + " : 16|8@1+");
  for (int i = 0; i < 30; ++i)
    crowd += signal("c" + std::to_string(i) + " : " + std::to_string(8 + i) + "|1@1+");
  const struct {
    std::string database;
    std::vector<std::string> parts;
    std::string absent = "no such text";
  } cases[] = {
      {"BO_ 100 M: 2 N\n" + signal("A : 0|12@1+") + signal("B : 8|8@1-") + signal("C : 17|3@0+"),
       {"Overlap: A, B share 4 bits from byte 1 bit 0", "<title>overlap of A, B</title>",
        "Beyond the data length: C, byte 2 bit 1 to byte 3 bit 7", "0 to 100000</text>",
        "class=\"cell middle\">A, B</text>", "2 bytes, sent by N"}},
      {"BO_ 100 M: 1 N\n" + signal("M M : 0|1@1+") + signal("Hot m1 : 1|1@1+") +
           signal("Never : 2|1@1+") + signal("Cold m0 : 1|1@1+") + "VAL_ 100 M 1 \"a<b\" ;\n",
       {"M = 1 &quot;a&lt;b&quot;</text>", "M = 0</text>", "for M = 1</text>", "always</text>"},
       "Overlap"},
      {"BO_ 100 M: 8 N\n" + signal("I : 0|16@1+") + signal("J : 23|16@0+"),
       {"<path d=\"M82 112h8L86 104z\"", "<path d=\"M82 184h8L86 192z\""}},
      {"BO_ 100 M: 8 N\n" + signal("S : 0|8@1+", "\xB0\x01<&>\x81"),
       {"\u00B0\\x01&lt;&amp;&gt;\\xC2\\x81</title>"}},
      {"BO_ 100 M: 8 N\n" + signal("S : 0|8@1+", "\xEF\xBF\xBF") +
           "CM_ SG_ 100 S \"a\x02]]>\nb\";\n",
       {"\uFFFD</text>", "<desc>a\\x02]]&gt;\nb</desc>"}},
      {"BO_ 100 M: 0 N\n", {"The frame has no data"}},
      {crowd, {"Beyond the data length: c19, byte 3 bit 3", "and 10 more"}, "length: c20"},
      {pages, {"X = 255", "Not drawn: p256, there are too many", "Not drawn: 25 more signals"}},
      {"BO_ 100 M: 8 N\n" + signal("X M : 0|8@1+") + signal("P m1 : 8|8@1+") +
           "SG_MUL_VAL_ 100 P X 1-2,3-4,9-8;\n",
       {"X = 1..4</text>"}},
      {"BO_ 100 M: 1 N\n" + signal(long_name + " : 0|8@1+"),
       {"<title>" + long_name + ", byte 0 bits 7 to 0</title>", "n\u2026n"},
       ">" + long_name + "</text>"},
  };
  for (const auto& c : cases) {
    const std::string picture = picture_of(c.database);
    for (const std::string& part : c.parts)
      EXPECT_NE(picture.find(part), std::string::npos) << c.database << part;
    EXPECT_EQ(picture.find(c.absent), std::string::npos) << c.database;
  }
}

/// A line for each group: its title, and the texts in it that have one of these classes.
std::string groups_of(const std::string& picture, std::initializer_list<const char*> classes) {
  std::string all;
  std::istringstream lines(picture);
  const auto between = [](const std::string& line, const char* begin, const char* end) {
    const std::size_t from = line.find(begin) + std::string_view(begin).size();
    return line.substr(from, line.find(end, from) - from);
  };
  bool is_open = false;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("<g><title>")) {
      all += (all.empty() ? "" : "\n") + between(line, "<title>", "</title>") + ":";
      is_open = true;
    }
    if (line == "</g>") is_open = false;
    if (!is_open || !line.starts_with("<text")) continue;
    const std::string name = between(line, "class=\"", "\"");
    for (const char* const wanted : classes)
      if (name == wanted) all += ' ' + between(line, ">", "<");
  }
  return all;
}

// Bits are counted as the file counts them, 8 * byte + bit: a Motorola signal goes on downwards
// from bit 0 of a byte to bit 7 of the next one.
TEST(Picture, PutsBitsInTheirPlaces) {
  const struct {
    std::string database;
    std::string groups;
  } cases[] = {
      {"BO_ 100 M: 4 N\n" + signal("I : 6|4@1+") + signal("J : 17|5@0-") + signal("K : 15|1@0+"),
       "Bits of the frame:\nI, byte 1 bit 1 to byte 0 bit 6: 7 6 LSB\n"
       "K, byte 1 bit 7: 15\nI, byte 1 bit 1 to byte 0 bit 6: 9 8 MSB\n"
       "J, byte 2 bit 1 to byte 3 bit 5: 17 16 MSB\nJ, byte 2 bit 1 to byte 3 bit 5: 31 30 29 LSB"},
      {"BO_ 100 M: 1 N\n" + signal("X M : 0|2@1+") + signal("P m0 : 2|2@1+") +
           signal("Q m3 : 4|2@0+") + signal("R m0 : 7|1@1+"),
       "Bits for X = 0:\nR, byte 0 bit 7: 7\nP, byte 0 bits 3 to 2: 3 2 MSB LSB\n"
       "X, byte 0 bits 1 to 0: 1 0 MSB LSB\nBits for X = 3:\n"
       "Q, byte 0 bits 4 to 3: 4 3 MSB LSB\nX, byte 0 bits 1 to 0: 1 0 MSB LSB"},
      {"BO_ 100 M: 2 N\n" + signal("A : 0|9@1+") + signal("B : 5|6@0+"),
       "Bits of the frame:\nA, byte 1 bit 0 to byte 0 bit 0: 7 6\noverlap of A, B: 5 4 3 2 1 0 MSB "
       "LSB\nA, byte 1 bit 0 to byte 0 bit 0: 8 MSB"},
  };
  for (const auto& c : cases) {
    std::string groups = groups_of(picture_of(c.database), {"number end", "mark", "mark end"});
    // Behind them come the rows of the table, which have neither.
    for (std::size_t at; groups.ends_with(':') && (at = groups.rfind('\n')) != groups.npos;)
      groups.resize(at);
    EXPECT_EQ(groups, c.groups) << c.database;
  }
}

TEST(Picture, ListsTheSignals) {
  const std::string picture = picture_of(
      "BO_ 100 M: 8 N\n SG_ I : 6|4@1- (0.5,-40) [-1|1.5] \"k<m\" N\n SG_ J : 17|5@0+ (1,0) [0|0] "
      "\"\" Ostrel__XXX\n");
  const std::string rows = groups_of(picture, {"body", "body end"});
  const std::size_t table = rows.find("\nI:");
  ASSERT_NE(table, rows.npos) << rows;
  EXPECT_EQ(rows.substr(table),
            "\nI: I 6 4 Intel signed 0.5 -40 -1 to 1.5 k&lt;m N\n"
            "J: J 17 5 Motorola unsigned 1 0 0 to 0  ");
}

TEST(Picture, TextsKeepToTheirWidth) {
  EXPECT_EQ(fitted("Speed", 200, kTextFont), "Speed");
  EXPECT_EQ(fitted("Speed", 5, kTextFont), "");
  const std::string cut = fitted("W\u00E4rmetauscher\u6E29\u5EA6", 70, kTextFont);
  EXPECT_TRUE(cut.starts_with("W\u00E4r") && cut.ends_with("\u5EA6")) << cut;
  EXPECT_LE(text_width(cut, kTextFont), 70);
  EXPECT_EQ(wrapped("Alpha, Beta, Gamma", 85, kTextFont, 9).size(), 2u);
  EXPECT_EQ(wrapped("Alpha, Beta, Gamma", 45, kTextFont, 2).back(), "Beta, \u2026");
}

}  // namespace
}  // namespace zelk::check
