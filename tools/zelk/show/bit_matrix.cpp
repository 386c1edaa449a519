#include "show/bit_matrix.hpp"

#include <cstdint>

#include "term/text.hpp"

namespace zelk::tool {

namespace {

using check::BitOverlap;
using check::FrameBit;
using check::FrameBits;

class Drawing {
 public:
  Drawing(const FrameBits& frame, const SignalKeys& keys, std::size_t key_width)
      : frame_(frame), keys_(keys), key_width_(key_width) {}

  void draw(Output& out) const {
    const auto& rows = frame_.rows();
    if (rows.empty()) return out.line("no data");
    const std::uint32_t dlc = frame_.dlc();
    const std::size_t label_width = fmt::formatted_size("byte {}", rows.rbegin()->first);
    const std::string margin(label_width + 1, ' ');
    std::string bits;
    std::string rule = "+";
    for (int bit = 7; bit >= 0; --bit) {
      bits += fmt::format(" {:^{}}", bit, key_width_ + 2);
      rule += std::string(key_width_ + 2, '-') + '+';
    }
    bits.erase(bits.find_last_not_of(' ') + 1);

    out.line("{}{}", margin, bits);
    out.line("{}{}", margin, rule);
    std::uint32_t expected = rows.begin()->first;
    bool inside = expected < dlc;
    for (const auto& [byte, row] : rows) {
      if (inside && byte >= dlc) out.line("{}{}", margin, rule);
      if (byte != expected) out.line("{}...", margin);
      inside = byte < dlc;
      expected = byte + 1;
      out.line("{:<{}} {}{}", fmt::format("byte {}", byte), label_width, row_text(inside, row),
               inside ? "" : "  outside the data length");
    }
    out.line("{}{}", margin, rule);
    if (frame_.is_cut()) out.line("further bytes are not drawn");
    for (const BitOverlap& overlap : frame_.overlaps())
      out.line("# overlap of {} in {}", names_in(overlap), counted(overlap.bit_count, "bit"));
  }

 private:
  std::string row_text(bool inside, const FrameBits::Row& row) const {
    std::string text = "|";
    for (std::size_t bit = row.size(); bit-- > 0;) {
      const FrameBit& cell = row[bit];
      std::string_view key = inside ? "." : "";
      if (cell.signal_count > 0)
        key = cell.signal_count == 1 ? std::string_view(keys_.at(cell.signals.front())) : "#";
      text +=
          fmt::format("{}{:^{}}{}|", cell.msb ? '[' : ' ', key, key_width_, cell.lsb ? ']' : ' ');
    }
    return text;
  }

  std::string names_in(const BitOverlap& overlap) const {
    std::string names;
    for (const sigblk* signal : overlap.signals)
      names += (names.empty() ? "" : ", ") + keys_.at(signal);
    if (overlap.signal_count > overlap.signals.size())
      names += fmt::format(" and {} more", overlap.signal_count - overlap.signals.size());
    return names;
  }

  const FrameBits& frame_;
  const SignalKeys& keys_;
  std::size_t key_width_;
};

}  // namespace

void draw_bit_matrix(Output& out, const FrameBits& frame, const SignalKeys& keys,
                     std::size_t key_width) {
  Drawing(frame, keys, key_width).draw(out);
}

}  // namespace zelk::tool
