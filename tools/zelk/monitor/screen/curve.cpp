#include "monitor/screen/curve.hpp"

#include <algorithm>
#include <array>
#include <cmath>

#include "base/encoding.hpp"

namespace zelk::tool {

namespace {

constexpr std::array kSteps = {1.0, 5.0, 10.0, 30.0, 60.0, 300.0};  // seconds

double seconds_before(std::int64_t time, std::int64_t now) {
  return (static_cast<double>(now) - static_cast<double>(time)) / 1e9;
}

/// What falls into one column of dots.
struct Span {
  double least = 0;
  double greatest = 0;
  bool is_set = false;

  void take(double value) {
    least = is_set ? std::min(least, value) : value;
    greatest = is_set ? std::max(greatest, value) : value;
    is_set = true;
  }
};

/// Dots of a picture; row 0 is at the bottom.
class Dots {
 public:
  Dots(std::size_t columns, std::size_t rows) : rows_(rows), dots_(columns * rows) {}

  void set(std::size_t column, std::size_t row) { dots_[column * rows_ + row] = true; }
  bool at(std::size_t column, std::size_t row) const { return dots_[column * rows_ + row]; }
  std::size_t rows() const { return rows_; }

 private:
  std::size_t rows_;
  std::vector<bool> dots_;
};

/// A character of Braille has two columns of four dots:
///
///     0 3
///     1 4   bit numbers in its code point, U+2800 and up
///     2 5
///     6 7
void append_braille(std::string& line, const Dots& dots, std::size_t column, std::size_t top) {
  constexpr std::array<std::array<std::uint32_t, 4>, 2> kBits = {{{0, 1, 2, 6}, {3, 4, 5, 7}}};
  std::uint32_t bits = 0;
  for (std::size_t x = 0; x < 2; ++x) {
    for (std::size_t y = 0; y < 4; ++y)
      if (dots.at(2 * column + x, top - y)) bits |= 1u << kBits[x][y];
  }
  append_utf8(line, bits == 0 ? ' ' : 0x2800 + bits);
}

/// A column of two dots in ASCII.
char ascii_of(bool upper, bool lower) {
  if (upper && lower) return '|';
  return upper ? '\'' : (lower ? '.' : ' ');
}

}  // namespace

void SignalCurve::zoom(bool is_out) {
  auto step = std::ranges::find(kSteps, seconds_);
  if (is_out && step + 1 != kSteps.end()) ++step;
  if (!is_out && step != kSteps.begin()) --step;
  seconds_ = *step;
}

std::optional<SignalCurve::Range> SignalCurve::shown(std::size_t stretch, std::int64_t now) const {
  const auto& stretches = track_.stretches();
  const ValueStretch& values = stretches[stretch];
  const bool is_last = stretch + 1 == stretches.size();
  if (!is_last && seconds_before(stretches[stretch + 1].time, now) >= seconds_) return std::nullopt;
  if (seconds_before(values.time, now) > seconds_) return Range{values.last, values.last};
  return Range{values.least, values.greatest};
}

std::optional<SignalCurve::Range> SignalCurve::range(std::int64_t now) const {
  Span span;
  for (std::size_t i = 0; i < track_.stretches().size(); ++i) {
    const auto values = shown(i, now);
    if (!values) continue;
    span.take(values->least);
    span.take(values->greatest);
  }
  if (!span.is_set) return std::nullopt;
  return Range{span.least, span.greatest};
}

std::vector<std::string> SignalCurve::draw(std::size_t columns, std::size_t lines, std::int64_t now,
                                           const CharacterSet& characters) const {
  const std::size_t dots_across = characters.is_utf8 ? 2 : 1;
  const std::size_t dots_down = characters.is_utf8 ? 4 : 2;
  std::vector<std::string> result(lines);
  const std::optional<Range> extent = range(now);
  if (!extent || columns == 0 || lines == 0) return result;

  const std::size_t width = columns * dots_across;
  std::vector<Span> spans(width);
  const auto column_of = [&](std::int64_t time) {
    const double part = 1 - seconds_before(time, now) / seconds_;
    return std::clamp(part, 0.0, 1.0) * static_cast<double>(width - 1);
  };
  const auto& stretches = track_.stretches();
  for (std::size_t i = 0; i < stretches.size(); ++i) {
    const auto values = shown(i, now);
    if (!values) continue;
    const std::int64_t end = i + 1 < stretches.size() ? stretches[i + 1].time : now;
    const auto first = static_cast<std::size_t>(column_of(stretches[i].time));
    const auto last = static_cast<std::size_t>(column_of(end));
    spans[first].take(values->least);
    spans[first].take(values->greatest);
    for (std::size_t x = first; x <= last; ++x) spans[x].take(stretches[i].last);
  }

  Dots dots(width, lines * dots_down);
  const double height = extent->greatest / 2 - extent->least / 2;  // a half, which is always finite
  const auto row_of = [&](double value) {
    if (height <= 0) return dots.rows() / 2;
    const double part = (value / 2 - extent->least / 2) / height;
    return static_cast<std::size_t>(std::lround(part * static_cast<double>(dots.rows() - 1)));
  };
  for (std::size_t x = 0; x < width; ++x) {
    if (!spans[x].is_set) continue;
    const std::size_t top = row_of(spans[x].greatest);
    for (std::size_t y = row_of(spans[x].least); y <= top; ++y) dots.set(x, y);
  }

  for (std::size_t line = 0; line < lines; ++line) {
    const std::size_t top = (lines - line) * dots_down - 1;
    for (std::size_t column = 0; column < columns; ++column) {
      if (characters.is_utf8) {
        append_braille(result[line], dots, column, top);
      } else {
        result[line] += ascii_of(dots.at(column, top), dots.at(column, top - 1));
      }
    }
  }
  return result;
}

}  // namespace zelk::tool
