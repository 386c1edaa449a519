#include "check/picture/message_picture.hpp"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "base/list.hpp"
#include "check/objects/record_words.hpp"
#include "check/picture/layouts.hpp"
#include "check/picture/legend.hpp"
#include "check/picture/notes.hpp"
#include "check/picture/panel.hpp"
#include "check/picture/style.hpp"
#include "check/picture/svg.hpp"

namespace zelk::check {

namespace {

constexpr int kMargin = 24;
constexpr int kGap = 32;                          // between panels, and in front of the table
constexpr int kWideCell = 104;                    // of one panel
constexpr int kSlimCell = 76;                     // of two panels side by side
constexpr std::size_t kMaxPanelBytes = 16 << 20;  // of all; what is larger no viewer shows

class Page {
 public:
  Page(const msgblk& message, Encoding encoding)
      : message_(message), encoding_(encoding), layouts_(layouts_of(message, encoding)) {
    for (const sigblk& signal : each(message.signals))
      marks_[&signal] = {marks_.size() + 1, to_utf8(view(signal.name), encoding)};
  }

  std::string draw() {
    const Legend legend(message_, marks_, encoding_);
    const int width = std::max(panels_width(), legend.width());
    const std::string name = to_utf8(view(message_.name), encoding_);
    int y = kMargin + 20;
    svg_.fitted_text(kMargin, y, width, kTitleFont, name);
    y += 22;
    svg_.fitted_text(kMargin, y, width, kTextFont, subtitle());
    y = draw_panels(y + 16) + kGap / 2;
    if (message_.signals) y = legend.draw(svg_, kMargin, y);
    y = draw_remarks(y + 24, width);
    return svg_.document(width + 2 * kMargin, y + kMargin, "Bit layout of message " + name,
                         description(), style_sheet());
  }

 private:
  bool has_pairs() const { return layouts_.layouts.size() > 1; }
  int cell_width() const { return has_pairs() ? kSlimCell : kWideCell; }
  int panels_width() const {
    const int one = Panel::width(cell_width());
    return has_pairs() ? 2 * one + kGap : one;
  }

  /// "0x123 (291), 11-bit, 8 bytes, sent by Engine".
  std::string subtitle() const {
    std::string text = shown_id(message_.id) + ", " + std::to_string(message_.dlc) +
                       (message_.dlc == 1 ? " byte" : " bytes");
    if (message_.transmitter)
      text += ", sent by " + to_utf8(view(message_.transmitter->name), encoding_);
    return text;
  }

  std::string description() const {
    const std::string comment = to_utf8(view(message_.comment), encoding_);
    return subtitle() + ", " + std::to_string(marks_.size()) +
           (marks_.size() == 1 ? " signal" : " signals") +
           ". Rows are bytes, columns are bits 7 to "
           "0; the table below lists the signals." +
           (comment.empty() ? "" : " " + comment);
  }

  int draw_panels(int y) {
    auto& layouts = layouts_.layouts;
    for (std::size_t i = 0; i < layouts.size(); i += 2) {
      if (svg_.size() > kMaxPanelBytes) {
        layouts.resize(i);
        layouts_.complete = false;
        break;
      }
      int end = panel(i).draw(svg_, kMargin, y);
      if (i + 1 < layouts.size()) {
        const int x = kMargin + Panel::width(cell_width()) + kGap;
        end = std::max(end, panel(i + 1).draw(svg_, x, y));
      }
      y = end + kGap / 2;
    }
    return y;
  }

  Panel panel(std::size_t index) const {
    return {message_, layouts_.layouts[index], marks_, cell_width()};
  }

  int draw_remarks(int y, int width) {
    svg_.fitted_text(kMargin, y, width, kTextFont,
                     "Arrows point to the less significant byte: down for Motorola, up for Intel. "
                     "Small numbers count the bits of the data, 8 \u00D7 byte + bit.");
    for (const std::string& remark : message_notes(message_, layouts_, marks_)) {
      y += 18;
      svg_.rectangle({kMargin, y - 9, 10, 10}, "warning");
      svg_.fitted_text(kMargin + 16, y, width - 16, kTextFont, remark);
    }
    return y;
  }

  const msgblk& message_;
  Encoding encoding_;
  Layouts layouts_;
  SignalMarks marks_;
  Svg svg_;
};

}  // namespace

std::string message_picture(const msgblk& message, Encoding encoding) {
  return Page(message, encoding).draw();
}

}  // namespace zelk::check
