#include "check/picture/message_picture.hpp"

#include <gtest/gtest.h>

#include <algorithm>
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
  const std::string picture = message_picture(*lists.messages, encoding_of(text));
  EXPECT_EQ(fault_in_xml(picture), "");
  return picture;
}

std::string signal(const std::string& layout, const std::string& unit = "") {
  return " SG_ " + layout + " (1,0) [0|100000] \"" + unit + "\" N\n";
}

TEST(Picture, ShowsWhatAnExpertLooksFor) {
  const std::string long_name(300, 'n');
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
