#include "check/picture/svg.hpp"

#include <algorithm>
#include <initializer_list>
#include <utility>

#include "base/escaping.hpp"

namespace zelk::check {

namespace {

/// Hundredths of the size that a character takes in a wide face.
int width_of(std::string_view character) {
  const char c = character.front();
  if (character.size() > 1) return character.size() == 2 || character == "\u2026" ? 75 : 100;
  constexpr std::pair<std::string_view, int> kClasses[] = {
      {"ijl.,:;'|! I()[]", 40}, {"frt-/\"", 46}, {"mwMW@%", 99}};
  for (const auto& [characters, width] : kClasses)
    if (characters.find(c) != std::string_view::npos) return width;
  return c >= 'A' && c <= 'Z' ? 76 : 64;
}

/// The first character of a text in UTF-8, with all its bytes.
std::string_view first_character(std::string_view text) {
  std::size_t size = 1;
  while (size < text.size() && (static_cast<unsigned char>(text[size]) & 0xC0) == 0x80) ++size;
  return text.substr(0, size);
}

std::string_view last_character(std::string_view text) {
  std::size_t begin = text.size() - 1;
  while (begin > 0 && (static_cast<unsigned char>(text[begin]) & 0xC0) == 0x80) --begin;
  return text.substr(begin);
}

int pixels(int hundredths, const Font& font) {
  return (hundredths * font.size * (font.is_bold ? 11 : 10) + 999) / 1000;
}

/// Appends text as XML. U+FFFE and U+FFFF, which XML does not have, become U+FFFD.
void append_xml(std::string& out, std::string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    switch (text[i]) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      case '\xBE':
      case '\xBF':
        out += i >= 2 && text.substr(i - 2, 2) == "\xEF\xBF" ? '\xBD' : text[i];
        break;
      default:
        out += text[i];
    }
  }
}

/// ` name="value"` for each.
void append_numbers(std::string& out,
                    std::initializer_list<std::pair<std::string_view, int>> attributes) {
  for (const auto& [name, value] : attributes)
    out.append(" ").append(name).append("=\"").append(std::to_string(value)).append("\"");
}

void append_class(std::string& out, std::string_view classes) {
  out.append(" class=\"").append(classes).append("\"");
}

}  // namespace

int text_width(std::string_view text, const Font& font) {
  int hundredths = 0;
  constexpr int kWideEnough = 10'000'000;  // wider than any page; far from an overflow
  while (!text.empty() && hundredths < kWideEnough) {
    const std::string_view character = first_character(text);
    hundredths += width_of(character);
    text.remove_prefix(character.size());
  }
  return pixels(hundredths, font);
}

std::string fitted(std::string_view text, int width, const Font& font) {
  if (text_width(text, font) <= width) return std::string(text);
  constexpr std::string_view kEllipsis = "\u2026";
  int used = width_of(kEllipsis);
  if (pixels(used, font) > width) return {};
  std::string_view rest = text;
  std::size_t head = 0;
  std::size_t tail = 0;
  // Two characters of the beginning for one of the end.
  for (int turn = 0; !rest.empty(); turn = (turn + 1) % 3) {
    const bool at_end = turn == 2;
    const std::string_view next = at_end ? last_character(rest) : first_character(rest);
    used += width_of(next);
    if (pixels(used, font) > width) break;
    (at_end ? tail : head) += next.size();
    at_end ? rest.remove_suffix(next.size()) : rest.remove_prefix(next.size());
  }
  std::string result(text.substr(0, head));
  return result.append(kEllipsis).append(text.substr(text.size() - tail));
}

std::vector<std::string> wrapped(std::string_view text, int width, const Font& font,
                                 std::size_t most_lines) {
  if (text_width(text, font) <= width) return {std::string(text)};
  std::vector<std::string> lines(1);
  int used = 0;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(' '), text.size());
    const std::string_view word = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    const int needed = text_width(word, font);
    if (!lines.back().empty() && used + text_width(" ", font) + needed > width) {
      if (lines.size() == most_lines) {
        lines.back() += " \u2026";
        return lines;
      }
      lines.emplace_back();
    }
    used = lines.back().empty() ? needed : used + text_width(" ", font) + needed;
    lines.back().append(lines.back().empty() ? "" : " ").append(word);
  }
  return lines;
}

void Svg::rectangle(const Box& box, std::string_view classes) {
  content_ += "<rect";
  append_numbers(content_,
                 {{"x", box.x}, {"y", box.y}, {"width", box.width}, {"height", box.height}});
  append_class(content_, classes);
  content_ += "/>\n";
}

void Svg::line(int x1, int y1, int x2, int y2, std::string_view classes) {
  content_ += "<line";
  append_numbers(content_, {{"x1", x1}, {"y1", y1}, {"x2", x2}, {"y2", y2}});
  append_class(content_, classes);
  content_ += "/>\n";
}

void Svg::arrow(int x, int y, bool points_down) {
  const int base = points_down ? y : y + 8;
  const int tip = points_down ? y + 8 : y;
  content_ += "<path d=\"M" + std::to_string(x) + ' ' + std::to_string(base) + "h8L" +
              std::to_string(x + 4) + ' ' + std::to_string(tip) + "z\" class=\"arrow\"/>\n";
}

void Svg::text(int x, int y, const Font& font, std::string_view text, Anchor anchor) {
  constexpr std::string_view kAnchors[] = {"", " middle", " end"};
  content_ += "<text";
  append_numbers(content_, {{"x", x}, {"y", y}});
  append_class(content_, std::string(font.name).append(kAnchors[static_cast<int>(anchor)]));
  content_ += '>';
  append_xml(content_, escaped(text));
  content_ += "</text>\n";
}

void Svg::fitted_text(int x, int y, int width, const Font& font, std::string_view text,
                      Anchor anchor) {
  const std::string whole = escaped(text);
  const std::string shown = fitted(whole, width, font);
  if (shown == whole) return Svg::text(x, y, font, whole, anchor);
  const Group group(*this, whole);
  Svg::text(x, y, font, shown, anchor);
}

Svg::Group::Group(Svg& svg, std::string_view title, std::string_view description) : svg_(svg) {
  svg.content_ += "<g>";
  svg.element("title", title);
  if (!description.empty()) svg.element("desc", description);
  svg.content_ += '\n';
}

void Svg::element(std::string_view name, std::string_view text) {
  content_.append("<").append(name).append(">");
  append_xml(content_, escaped_between_lines(text));
  content_.append("</").append(name).append(">");
}

std::string Svg::document(int width, int height, std::string_view title,
                          std::string_view description, std::string_view style) const {
  Svg head;
  head.content_ =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<svg xmlns=\"http://www.w3.org/2000/svg\" role=\"graphics-document\" "
      "class=\"zelk-frame\"";
  const std::string size = std::to_string(width) + ' ' + std::to_string(height);
  head.content_ += " viewBox=\"0 0 " + size + '"';
  append_numbers(head.content_, {{"width", width}, {"height", height}});
  head.content_ += ">\n";
  head.element("title", title);
  head.content_ += '\n';
  head.element("desc", description);
  head.content_.append("\n").append(style);
  head.rectangle({0, 0, width, height}, "page");
  return head.content_.append(content_).append("</svg>\n");
}

}  // namespace zelk::check
