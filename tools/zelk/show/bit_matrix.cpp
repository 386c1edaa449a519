#include "show/bit_matrix.hpp"

#include <array>
#include <map>

#include "base/signal_bits.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

constexpr std::size_t kMaxRows = 128;
constexpr std::uint32_t kLongestFrameBytes =
    64;  // CAN FD; longer data go through a transport protocol
constexpr std::size_t kMaxNamedPerCell = 8;

struct Cell {
  std::vector<const std::string*> keys;  // of the signals here, up to kMaxNamedPerCell of them
  std::size_t signal_count = 0;
  bool msb = false;
  bool lsb = false;
};

using Row = std::array<Cell, 8>;  // indexed by bit

class Matrix {
 public:
  explicit Matrix(std::uint32_t dlc) : dlc_(dlc) {
    if (dlc <= kLongestFrameBytes)
      for (std::uint32_t byte = 0; byte < dlc; ++byte) rows_[byte];
  }

  void place(const KeyedSignal& keyed) {
    const sigblk& signal = *keyed.signal;
    const std::uint32_t length = signal.length;
    const bool motorola = is_motorola(signal);
    // Bytes are visited upwards in both byte orders; a signal that leaves the drawing is not
    // followed any further.
    for (std::uint32_t i = 0; i < length; ++i) {
      const std::uint32_t index = motorola ? length - 1 - i : i;
      const BitPlace place = bit_place(signal, index);
      Row* row = row_of(place.byte);
      if (!row) return;
      Cell& cell = (*row)[place.bit];
      if (cell.signal_count++ < kMaxNamedPerCell) cell.keys.push_back(&keyed.key);
      cell.lsb |= index == 0;
      cell.msb |= index == length - 1;
    }
  }

  void draw(Output& out, std::size_t key_width) const {
    if (rows_.empty()) return out.line("no data");
    const std::size_t label_width = fmt::formatted_size("byte {}", rows_.rbegin()->first);
    const std::string margin(label_width + 1, ' ');
    std::string bits;
    std::string rule = "+";
    for (int bit = 7; bit >= 0; --bit) {
      bits += fmt::format(" {:^{}}", bit, key_width + 2);
      rule += std::string(key_width + 2, '-') + '+';
    }
    bits.erase(bits.find_last_not_of(' ') + 1);

    out.line("{}{}", margin, bits);
    out.line("{}{}", margin, rule);
    std::uint32_t expected = rows_.begin()->first;
    bool inside = expected < dlc_;
    for (const auto& [byte, row] : rows_) {
      if (inside && byte >= dlc_) out.line("{}{}", margin, rule);
      if (byte != expected) out.line("{}...", margin);
      inside = byte < dlc_;
      expected = byte + 1;
      out.line("{:<{}} {}{}", fmt::format("byte {}", byte), label_width,
               row_text(byte, row, key_width), inside ? "" : "  outside the data length");
    }
    out.line("{}{}", margin, rule);
    if (cut_) out.line("further bytes are not drawn");
    print_overlaps(out);
  }

 private:
  Row* row_of(std::uint32_t byte) {
    const auto found = rows_.find(byte);
    if (found != rows_.end()) return &found->second;
    cut_ |= rows_.size() >= kMaxRows;
    return rows_.size() < kMaxRows ? &rows_[byte] : nullptr;
  }

  std::string row_text(std::uint32_t byte, const Row& row, std::size_t key_width) const {
    std::string text = "|";
    for (std::size_t bit = row.size(); bit-- > 0;) {
      const Cell& cell = row[bit];
      std::string_view key = byte < dlc_ ? "." : "";
      if (cell.signal_count > 0)
        key = cell.signal_count == 1 ? std::string_view(*cell.keys.front()) : "#";
      text +=
          fmt::format("{}{:^{}}{}|", cell.msb ? '[' : ' ', key, key_width, cell.lsb ? ']' : ' ');
    }
    return text;
  }

  /// One line for each set of signals that share bits, in the order of the bytes.
  void print_overlaps(Output& out) const {
    std::map<std::string, std::size_t> bits_of;
    std::vector<std::string> order;
    for (const auto& [byte, row] : rows_) {
      for (const Cell& cell : row) {
        if (cell.signal_count < 2) continue;
        const std::string names = names_in(cell);
        if (++bits_of[names] == 1) order.push_back(names);
      }
    }
    for (const std::string& names : order)
      out.line("# overlap of {} in {}", names, counted(bits_of[names], "bit"));
  }

  static std::string names_in(const Cell& cell) {
    std::string names;
    for (const std::string* key : cell.keys) names += (names.empty() ? "" : ", ") + *key;
    if (cell.signal_count > cell.keys.size())
      names += fmt::format(" and {} more", cell.signal_count - cell.keys.size());
    return names;
  }

  std::uint32_t dlc_;
  std::map<std::uint32_t, Row> rows_;
  bool cut_ = false;
};

}  // namespace

// Motorola signals run along the bits as transmitted, most significant first.
BitPlace bit_place(const sigblk& signal, std::uint32_t index) {
  const std::uint32_t start = signal.start_bit;
  const std::uint32_t bit = is_motorola(signal)
                                ? mirrored_bit(mirrored_bit(start) + signal.length - 1 - index)
                                : start + index;
  return {bit >> 3, bit & 7};
}

void draw_bit_matrix(Output& out, std::uint32_t dlc, const std::vector<KeyedSignal>& signals,
                     std::size_t key_width) {
  Matrix matrix(dlc);
  for (const KeyedSignal& signal : signals) matrix.place(signal);
  matrix.draw(out, key_width);
}

}  // namespace zelk::tool
