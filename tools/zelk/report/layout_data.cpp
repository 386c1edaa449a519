#include "report/layout_data.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/list.hpp"
#include "base/seeded_hash.hpp"
#include "check/picture/layouts.hpp"
#include "check/picture/notes.hpp"
#include "check/picture/svg.hpp"
#include "page/page.hpp"
#include "report/layout_shape.hpp"
#include "report/texts.hpp"
#include "term/text.hpp"

namespace zelk::tool {

using check::FrameBits;
using check::Layout;
using nlohmann::json;

namespace {

constexpr std::uint32_t kNumberedBytes = 64;  // have rows in layout_parts.mustache
constexpr std::size_t kColors = 8;
constexpr std::size_t kMostLayouts = 64;
/// Shapes of one message: those of signals that are always there are drawn in each of its layouts.
constexpr std::size_t kMostShapes = 400;

json but_0(int number) { return number == 0 ? json() : json(number); }

/// A width, unless it is that of one block, which the style sheet has.
json but_usual(int pixels) {
  return pixels == LayoutGrid::kBlockWidth * LayoutGrid::kPixels ? json() : json(pixels);
}

/// Draws one layout.
class Drawing {
 public:
  Drawing(const msgblk& message, const Layout& layout, const check::SignalMarks& marks,
          const LayoutOptions& options)
      : layout_(layout),
        marks_(marks),
        options_(options),
        bits_(message.dlc, layout.signals),
        grid_(bytes_of(bits_)) {}

  json data() const {
    return {{"width", grid_.width()},
            {"height", grid_.height()},
            {"pixels", but_usual(grid_.width() * LayoutGrid::kPixels)},
            {"parts", parts()},
            {"bytes", byte_labels()},
            {"shapes", shapes()},
            {"overlaps", overlaps()},
            {"beyond", beyond()},
            {"notes", check::layout_notes(bits_, layout_, marks_)}};
  }

 private:
  static std::vector<std::uint32_t> bytes_of(const FrameBits& bits) {
    std::vector<std::uint32_t> bytes;
    for (const auto& row : bits.rows()) bytes.push_back(row.first);
    return bytes;
  }

  /// Whether eight bytes begin at a row that layout_parts.mustache has together.
  bool begins_octet(std::size_t row) const {
    const auto& bytes = grid_.bytes();
    constexpr std::size_t kOctet = 8;
    return row + kOctet <= bytes.size() && bytes[row] % kOctet == 0 &&
           bytes[row + 7] == bytes[row] + 7 && bytes[row + 7] < kNumberedBytes &&
           grid_.block_of(row) == grid_.block_of(row + 7);
  }

  json parts() const {
    const auto& bytes = grid_.bytes();
    if (bytes.size() == 8 && begins_octet(0) && bytes[0] == 0)
      return json::array({{{"part", "frame"}, {"x", nullptr}, {"y", nullptr}}});
    json parts = json::array();
    const auto add = [&](std::string part, int x, int y) {
      parts.push_back({{"part", std::move(part)}, {"x", but_0(x)}, {"y", but_0(y)}});
    };
    for (std::size_t block = 0; block < grid_.block_count(); ++block)
      add("bits", grid_.block_x(block), 0);
    for (std::size_t row = 0; row < bytes.size();) {
      const std::uint32_t byte = bytes[row];
      const bool is_octet = begins_octet(row);
      const std::string part = is_octet                ? fmt::format("octet{}", byte / 8)
                               : byte < kNumberedBytes ? fmt::format("byte{}", byte)
                                                       : "byte";
      add(part, grid_.block_x(grid_.block_of(row)), grid_.y(row));
      row += is_octet ? 8 : 1;
    }
    return parts;
  }

  /// Numbers of bytes that layout_parts.mustache does not number.
  json byte_labels() const {
    json labels = json::array();
    for (std::size_t row = 0; row < grid_.bytes().size(); ++row) {
      if (grid_.bytes()[row] < kNumberedBytes) continue;
      labels.push_back(
          {{"x", grid_.x(row, 0) - 1}, {"y", grid_.y(row) + 5}, {"byte", grid_.bytes()[row]}});
    }
    return labels;
  }

  json shapes() const {
    json shapes = json::array();
    for (const sigblk* signal : layout_.signals) {
      const auto segments = segments_of(*signal, grid_);
      if (segments.empty()) continue;
      json data = shape(*signal, segments);
      // Number and colour follow from the place of the shape, as long as it is that of the signal.
      if (options_.color_of || marks_.at(signal).number != shapes.size() + 1) {
        const std::size_t number = marks_.at(signal).number;
        data["number"] = number;
        data["color"] = (options_.color_of ? options_.color_of(*signal) : number - 1) % kColors;
      }
      shapes.push_back(std::move(data));
    }
    if (!options_.is_marked) drop_needless_tips(shapes);
    return shapes;
  }

  json shape(const sigblk& signal, const std::vector<LayoutSegment>& segments) const {
    const LayoutSegment& widest = *std::ranges::max_element(
        segments, {}, [](const LayoutSegment& segment) { return segment.right - segment.left; });
    const int left = grid_.x(widest.row, widest.left);
    const int width = grid_.x(widest.row, widest.right) - left;
    const int top = grid_.y(widest.row);
    const std::string name = escaped(marks_.at(&signal).name);
    const std::string label =
        check::fitted(name, width * LayoutGrid::kPixels - 4, check::kCellFont);
    const bool is_bit = signal.length == 1;
    const bool is_box = !is_bit && segments.size() == 1;
    return {{"number", nullptr},
            {"is_marked", options_.is_marked && options_.is_marked(signal)},
            {"bit", is_bit ? json{{"left", left}, {"top", top}} : json()},
            {"box", is_box ? json{{"cells", segments[0].right - segments[0].left},
                                  {"left", left},
                                  {"top", top}}
                           : json()},
            {"outline", is_bit || is_box ? "" : outline(segments, grid_)},
            {"line", order_line(signal, segments, grid_)},
            {"x", left + width / 2},
            {"y", top + 5},
            {"label", label},
            {"tip", tip(signal, name, label)}};
  }

  /// A shortened name that no other one looks like is found in the table of signals.
  static void drop_needless_tips(json& shapes) {
    std::unordered_map<std::string, std::size_t, SeededHash> uses;
    for (const json& shape : shapes) ++uses[shape["label"].get<std::string>()];
    for (json& shape : shapes)
      if (uses[shape["label"].get<std::string>()] == 1) shape["tip"] = "";
  }

  /// What the page says nowhere else: the whole name; in a comparison, which has no table of the
  /// signals, also where it lies.
  std::string tip(const sigblk& signal, const std::string& name, const std::string& label) const {
    if (!options_.is_marked) return label == name ? "" : name;
    return name + ": " + check::place_text(signal) +
           (options_.is_marked(signal) ? ", changed" : "");
  }

  json overlaps() const {
    json overlaps = json::array();
    for (const auto& [byte, row] : bits_.rows()) {
      for (int left = 7; left >= 0;) {
        const check::FrameBit& first = row[static_cast<std::size_t>(left)];
        int right = left;
        while (right > 0 && same_signals(row[static_cast<std::size_t>(right) - 1], first)) --right;
        if (first.signal_count > 1)
          overlaps.push_back(overlap(grid_.row_of(byte), 7 - left, 8 - right, first));
        left = right - 1;
      }
    }
    return overlaps;
  }

  static bool same_signals(const check::FrameBit& a, const check::FrameBit& b) {
    return a.signal_count == b.signal_count && a.signals == b.signals;
  }

  json overlap(std::size_t row, int left, int right, const check::FrameBit& bit) const {
    return {{"outline", box_outline({row, left, right}, grid_)},
            {"tip", "Overlap: " + escaped(check::names_of(bit.signals, bit.signal_count, marks_))}};
  }

  /// The outline of bytes that the frame does not have; empty when there are none.
  std::string beyond() const {
    std::string path;
    for (std::size_t row = 0; row < grid_.bytes().size(); ++row)
      if (grid_.bytes()[row] >= bits_.dlc()) path += box_outline({row, 0, 8}, grid_);
    return path;
  }

  const Layout& layout_;
  const check::SignalMarks& marks_;
  const LayoutOptions& options_;
  FrameBits bits_;
  LayoutGrid grid_;
};

/// All layouts of a message.
class MessageLayouts {
 public:
  MessageLayouts(const msgblk& message, Encoding encoding, const LayoutOptions& options)
      : message_(message), options_(options), layouts_(check::layouts_of(message, encoding)) {
    for (const sigblk& signal : each(message.signals))
      marks_[&signal] = {marks_.size() + 1, to_utf8(view(signal.name), encoding)};
    drawn_count_ = count_drawn();
  }

  json data() const {
    const bool is_multiplexed =
        layouts_.layouts.size() > 1 ||
        layouts_.layouts[0].common_count < layouts_.layouts[0].signals.size();
    json drawings = json::array();
    for (std::size_t i = 0; i < drawn_count_; ++i) {
      json drawing = Drawing(message_, layouts_.layouts[i], marks_, options_).data();
      drawing["condition"] = layouts_.layouts[i].condition;
      drawing["element"] = is_multiplexed ? element_of(i) : "";
      drawings.push_back(std::move(drawing));
    }
    return {{"is_multiplexed", is_multiplexed},
            {"is_choice", drawn_count_ > 1},
            {"drawings", std::move(drawings)},
            {"tree", is_multiplexed ? tree() : json::array()},
            {"remarks", remarks()}};
  }

 private:
  std::size_t count_drawn() const {
    const std::size_t most_shapes = std::max(kMostShapes, 2 * marks_.size());
    std::size_t shapes = 0;
    std::size_t count = 0;
    for (const Layout& layout : layouts_.layouts) {
      shapes += layout.signals.size();
      if (count == kMostLayouts || (count > 0 && shapes > most_shapes)) break;
      ++count;
    }
    return count;
  }

  std::string element_of(std::size_t index) const {
    return fmt::format("{}-layout{}", options_.element, index + 1);
  }

  /// The layouts as nested lists: an entry opens a list below itself, or ends as many as it closes.
  json tree() const {
    json entries = json::array();
    const auto& layouts = layouts_.layouts;
    for (std::size_t i = 0; i < layouts.size(); ++i) {
      const std::size_t next = i + 1 < layouts.size() ? layouts[i + 1].depth : 0;
      entries.push_back(
          {{"target", i < drawn_count_ ? element_of(i) : ""},
           {"step", layouts[i].step},
           {"names", own_names(layouts[i])},
           {"opens", next > layouts[i].depth},
           {"closes", json(next < layouts[i].depth ? layouts[i].depth - next : 0, 1)}});
    }
    return entries;
  }

  /// The signals that the layout has beside those of the one that it refines.
  std::string own_names(const Layout& layout) const {
    constexpr std::size_t kMostNames = 12;
    const auto begin = layout.signals.begin() + static_cast<std::ptrdiff_t>(layout.common_count);
    const std::size_t count = layout.signals.size() - layout.common_count;
    const auto end = begin + static_cast<std::ptrdiff_t>(std::min(count, kMostNames));
    return escaped(check::names_of({begin, end}, count, marks_));
  }

  std::vector<std::string> remarks() const {
    std::vector<std::string> remarks = check::message_notes(message_, layouts_, marks_);
    const std::size_t more = layouts_.layouts.size() - drawn_count_;
    if (more > 0)
      remarks.push_back(fmt::format("{} not drawn here.", counted(more, "further layout")));
    return remarks;
  }

  const msgblk& message_;
  const LayoutOptions& options_;
  check::Layouts layouts_;
  check::SignalMarks marks_;
  std::size_t drawn_count_;
};

}  // namespace

json layout_data(const msgblk& message, Encoding encoding, const LayoutOptions& options) {
  return MessageLayouts(message, encoding, options).data();
}

std::string layout_parts() {
  json octets = json::array();
  for (std::uint32_t octet = 0; octet < kNumberedBytes / 8; ++octet) {
    json rows = json::array();
    for (std::uint32_t byte = 8 * octet; byte < 8 * octet + 8; ++byte) {
      json bits = json::array();
      for (std::uint32_t column = 0; column < 8; ++column) {
        bits.push_back({{"x", LayoutGrid::kLabelWidth +
                                  (static_cast<int>(column) + 1) * LayoutGrid::kCellWidth - 1},
                        {"bit", 8 * byte + 7 - column}});
      }
      rows.push_back({{"byte", byte},
                      {"y", static_cast<int>(byte % 8) * LayoutGrid::kRowHeight},
                      {"bits", std::move(bits)}});
    }
    octets.push_back({{"octet", octet}, {"rows", std::move(rows)}});
  }
  json boxes = json::array();
  for (int cells = 1; cells <= 8; ++cells)
    boxes.push_back({{"cells", cells}, {"right", cells * LayoutGrid::kCellWidth}});
  return render(report_texts::layout_parts_mustache,
                {{"octets", std::move(octets)}, {"boxes", std::move(boxes)}});
}

}  // namespace zelk::tool
