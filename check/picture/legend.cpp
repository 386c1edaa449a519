#include "check/picture/legend.hpp"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

#include "base/escaping.hpp"
#include "base/list.hpp"
#include "base/multiplexing.hpp"
#include "check/objects/record_words.hpp"

namespace zelk::check {

namespace {

constexpr int kRowHeight = 20;
constexpr int kLineHeight = 15;  // of the further lines of a row
constexpr std::size_t kMostLines = 12;
constexpr int kMarkWidth = 36;
constexpr int kLineGap = 14;

/// "always", "multiplexor", "for Mode = 3, 5..7".
std::string presence_of(const sigblk& signal, Encoding encoding) {
  std::string text = is_multiplexor(signal) ? "multiplexor" : "";
  if (!is_multiplexed(signal)) return text.empty() ? "always" : text;
  const std::string name =
      signal.mux_signal ? to_utf8(view(signal.mux_signal->name), encoding) : "(no multiplexor)";
  const std::string values = signal.mux_ranges ? presence_values(signal) : "(none)";
  return text + (text.empty() ? "" : ", ") + "for " + name + " = " + values;
}

std::string receivers_of(const sigblk& signal, Encoding encoding) {
  std::string names;
  for (const rxblk& link : each(signal.receivers)) {
    if (!link.node) continue;
    if (!names.empty()) names += ", ";
    names += to_utf8(view(link.node->name), encoding);
  }
  return names;
}

}  // namespace

Legend::Legend(const msgblk& message, const SignalMarks& marks, Encoding encoding) {
  std::vector<const sigblk*> signals;
  for (const sigblk& signal : each(message.signals)) {
    signals.push_back(&signal);
    rows_.push_back({&marks.at(&signal), to_utf8(view(signal.comment), encoding)});
  }
  const auto column = [&](std::string_view heading, int most, bool is_number, const auto& text_of) {
    std::vector<std::string> texts;
    texts.reserve(signals.size());
    for (const sigblk* signal : signals) texts.push_back(escaped(text_of(*signal)));
    add(heading, most, is_number, std::move(texts));
  };
  column("Name", 260, false, [&](const sigblk& s) { return marks.at(&s).name; });
  column("Start", 60, true, [](const sigblk& s) { return std::to_string(s.start_bit); });
  column("Length", 60, true, [](const sigblk& s) { return std::to_string(s.length); });
  column("Byte order", 80, false, [](const sigblk& s) { return std::string(byte_order(s.flags)); });
  column("Sign", 100, false, [](const sigblk& s) { return number_format(s.flags, s.value_type); });
  column("Factor", 150, true, [](const sigblk& s) { return number_text(s.factor); });
  column("Offset", 150, true, [](const sigblk& s) { return number_text(s.offset); });
  column("Range", 240, false,
         [](const sigblk& s) { return number_text(s.minimum) + " to " + number_text(s.maximum); });
  column("Unit", 90, false, [&](const sigblk& s) { return to_utf8(view(s.unit), encoding); });
  if (std::ranges::any_of(signals, [](const sigblk* s) { return is_multiplexed(*s); }))
    column("Present", 220, false, [&](const sigblk& s) { return presence_of(s, encoding); });
  column("Receivers", 320, false, [&](const sigblk& s) { return receivers_of(s, encoding); });
}

void Legend::add(std::string_view heading, int most, bool is_number,
                 std::vector<std::string> texts) {
  int width = text_width(heading, kStrongFont);
  for (const std::string& text : texts)
    width = std::max(width, std::min(most, text_width(text, kTextFont)));
  columns_.push_back({heading, is_number, std::move(texts), width});
}

int Legend::width() const {
  int width = kMarkWidth;
  for (const Column& column : columns_) width += kLineGap + column.width;
  return width;
}

void Legend::draw_heading(Svg& svg, int x, int y) const {
  int left = x + kMarkWidth + kLineGap;
  for (const Column& column : columns_) {
    svg.text(column.is_number ? left + column.width : left, y + 14, kStrongFont, column.heading,
             column.is_number ? Anchor::kEnd : Anchor::kStart);
    left += column.width + kLineGap;
  }
  svg.line(x, y + kRowHeight, x + width(), y + kRowHeight, "rule");
}

int Legend::draw(Svg& svg, int x, int y) const {
  draw_heading(svg, x, y);
  y += kRowHeight;
  for (std::size_t i = 0; i < rows_.size(); ++i) y = draw_row(svg, i, x, y);
  return y;
}

int Legend::draw_row(Svg& svg, std::size_t index, int x, int y) const {
  std::vector<std::vector<std::string>> cells;
  std::size_t line_count = 1;
  for (const Column& column : columns_) {
    cells.push_back(wrapped(column.texts[index], column.width, kTextFont, kMostLines));
    line_count = std::max(line_count, cells.back().size());
  }
  const int height = kRowHeight + kLineHeight * static_cast<int>(line_count - 1);
  const Row& row = rows_[index];
  const Svg::Group group(svg, row.mark->name, row.comment);
  if (index % 2 == 1) svg.rectangle({x, y, width(), height}, "band");
  draw_mark(svg, *row.mark, x, y);
  int left = x + kMarkWidth + kLineGap;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    const Column& column = columns_[i];
    int line_y = y + 14;
    for (const std::string& line : cells[i]) {
      svg.fitted_text(column.is_number ? left + column.width : left, line_y, column.width,
                      kTextFont, line, column.is_number ? Anchor::kEnd : Anchor::kStart);
      line_y += kLineHeight;
    }
    left += column.width + kLineGap;
  }
  return y + height;
}

void Legend::draw_mark(Svg& svg, const SignalMark& mark, int x, int y) const {
  const Box box{x + 2, y + 3, kMarkWidth - 4, 14};
  fill(svg, box, mark.number);
  svg.rectangle(box, "edge");
  svg.text(x + kMarkWidth / 2, y + 14, kCellFont, std::to_string(mark.number), Anchor::kMiddle);
}

}  // namespace zelk::check
