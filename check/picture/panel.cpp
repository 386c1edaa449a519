#include "check/picture/panel.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "base/signal_bits.hpp"
#include "check/picture/frame_bits.hpp"
#include "check/picture/notes.hpp"

namespace zelk::check {

namespace {

constexpr int kPanelRowHeight = 40;
constexpr int kPanelLineHeight = 18;
constexpr int kPadding = 4;
constexpr int kBitsPerRow = 8;

bool same_signals(const FrameBit& a, const FrameBit& b) {
  return a.signal_count == b.signal_count && a.signals == b.signals;
}

}  // namespace

/// Neighbouring bits of a byte that the same signals have, and where they are drawn.
struct Panel::Run {
  std::uint32_t byte;
  int left;   // the higher bit
  int right;  // the lower one
  const FrameBit* left_bit;
  const FrameBit* right_bit;
  Box box;
};

int Panel::draw(Svg& svg, int x, int y) const {
  const Svg::Group group(
      svg, layout_.condition.empty() ? "Bits of the frame" : "Bits for " + layout_.condition);
  if (!layout_.condition.empty()) {
    svg.fitted_text(x, y + 14, width(cell_width_), kHeadingFont, layout_.condition);
    y += 26;
  }
  const FrameBits frame(message_.dlc, layout_.signals);
  return draw_notes(svg, frame, x, draw_rows(svg, frame, x, y));
}

int Panel::draw_rows(Svg& svg, const FrameBits& frame, int x, int y) const {
  const int left = x + kLabelWidth;
  for (int bit = 0; bit < kBitsPerRow; ++bit) {
    svg.text(left + (7 - bit) * cell_width_ + cell_width_ / 2, y + 12, kTextFont,
             std::to_string(bit), Anchor::kMiddle);
  }
  y += kPanelLineHeight;
  std::uint32_t expected = 0;
  std::vector<Run> used;  // drawn last, so that their edges are on top
  for (const auto& [byte, row] : frame.rows()) {
    if (byte >= frame.dlc()) break;
    if (byte != expected) y += kPanelLineHeight / 2;  // bytes are left out here
    expected = byte + 1;
    svg.text(left - 8, y + kPanelRowHeight / 2 + 4, kTextFont, "byte " + std::to_string(byte),
             Anchor::kEnd);
    for (const Run& run : runs_of(byte, row, left, y)) {
      if (run.left_bit->signal_count == 0) {
        svg.rectangle(run.box, "unused");
        draw_numbers(svg, run, kFreeNumberFont);
      } else {
        used.push_back(run);
      }
    }
    y += kPanelRowHeight;
  }
  for (const Run& run : used)
    run.left_bit->signal_count == 1 ? draw_signal(svg, run) : draw_overlap(svg, run);
  return y;
}

std::vector<Panel::Run> Panel::runs_of(std::uint32_t byte, const std::array<FrameBit, 8>& row,
                                       int x, int y) const {
  std::vector<Run> runs;
  for (int bit = kBitsPerRow - 1; bit >= 0; --bit) {
    const FrameBit& here = row[static_cast<std::size_t>(bit)];
    if (runs.empty() || !same_signals(here, *runs.back().left_bit)) {
      runs.push_back(
          {byte, bit, bit, &here, &here, {x + (7 - bit) * cell_width_, y, 0, kPanelRowHeight}});
    }
    runs.back().right = bit;
    runs.back().right_bit = &here;
    runs.back().box.width += cell_width_;
  }
  return runs;
}

/// The numbers of the bits in the data.
void Panel::draw_numbers(Svg& svg, const Run& run, const Font& font) const {
  for (int bit = run.left; bit >= run.right; --bit) {
    const int x = run.box.x + (run.left - bit) * cell_width_;
    if (bit < run.left) svg.line(x, run.box.y, x, run.box.y + kPadding, "tick");
    svg.text(x + cell_width_ - kPadding, run.box.y + 11, font,
             std::to_string(std::uint64_t{run.byte} * 8 + static_cast<unsigned>(bit)),
             Anchor::kEnd);
  }
}

/// Which ends of signals lie in the box; the one bit of a short signal needs no mark.
void Panel::draw_ends(Svg& svg, const Run& run) const {
  if (run.left == run.right && run.left_bit->msb && run.left_bit->lsb) return;
  const int y = run.box.y + run.box.height - kPadding;
  if (run.left_bit->msb) svg.text(run.box.x + kPadding, y, kMarkFont, "MSB");
  if (run.right_bit->lsb)
    svg.text(run.box.x + run.box.width - kPadding, y, kMarkFont, "LSB", Anchor::kEnd);
}

void Panel::draw_signal(Svg& svg, const Run& run) const {
  const Box& box = run.box;
  const sigblk& signal = *run.left_bit->signals.front();
  const SignalMark& mark = marks_.at(&signal);
  const Svg::Group group(svg, mark.name + ", " + place_text(signal));
  fill(svg, box, mark.number);
  svg.rectangle(box, "edge");
  draw_numbers(svg, run, kNumberFont);
  if (bit_place(signal, 0).byte != bit_place(signal, signal.length - 1u).byte)
    svg.arrow(box.x + kPadding + 2, box.y + kPadding, is_motorola(signal));
  const int middle = box.x + box.width / 2;
  const std::string name = fitted(mark.name, box.width - 2 * kPadding, kCellFont);
  svg.text(middle, box.y + 26, kCellFont, name, Anchor::kMiddle);
  if (name != mark.name) {  // the number leads to the name in the table
    svg.text(middle, box.y + kPanelRowHeight - kPadding, kMarkFont, std::to_string(mark.number),
             Anchor::kMiddle);
  }
  draw_ends(svg, run);
}

void Panel::draw_overlap(Svg& svg, const Run& run) const {
  const Box& box = run.box;
  const std::string names = names_of(run.left_bit->signals, run.left_bit->signal_count, marks_);
  const Svg::Group group(svg, "overlap of " + names);
  svg.rectangle(box, "overlap");
  svg.rectangle({box.x + 1, box.y + 1, box.width - 2, box.height - 2}, "clash");
  draw_numbers(svg, run, kNumberFont);
  svg.text(box.x + box.width / 2, box.y + 26, kCellFont,
           fitted(names, box.width - 2 * kPadding, kCellFont), Anchor::kMiddle);
  draw_ends(svg, run);
}

int Panel::draw_notes(Svg& svg, const FrameBits& frame, int x, int y) const {
  for (const std::string& note : layout_notes(frame, layout_, marks_)) {
    y += kPanelLineHeight;
    svg.rectangle({x + kLabelWidth, y - 9, 10, 10}, "warning");
    svg.fitted_text(x + kLabelWidth + 16, y, 8 * cell_width_ - 16, kTextFont, note);
  }
  return y + kPadding;
}

}  // namespace zelk::check
