#include "plot/raster.hpp"

#include <algorithm>
#include <array>
#include <cmath>

#include "base/encoding.hpp"

namespace zelk::tool {

namespace {

constexpr std::uint32_t kBraille = 0x2800;
constexpr std::array<std::array<std::uint8_t, 2>, 4> kDots = {
    {{0x01, 0x08}, {0x02, 0x10}, {0x04, 0x20}, {0x40, 0x80}}};

/// A coordinate as a number of dots from 0 to below `count`.
std::size_t dot_at(double coordinate, std::size_t count) {
  const double last = static_cast<double>(count - 1);
  return static_cast<std::size_t>(std::clamp(std::floor(coordinate), 0.0, last));
}

}  // namespace

Raster::Raster(std::size_t columns, std::size_t rows, bool has_unicode)
    : columns_(columns),
      rows_(rows),
      across_(has_unicode ? 2 : 1),
      down_(has_unicode ? 4 : 1),
      cells_(columns * rows) {}

PlotArea Raster::area() const {
  return {0, 0, static_cast<double>(columns_ * across_), static_cast<double>(rows_ * down_)};
}

void Raster::draw(const Curve& curve, const Span& times, const Span& values, std::size_t index,
                  char mark) {
  Place before{0, std::nan("")};
  for (const Place& place : trace(curve, area(), times, values)) {
    if (!std::isnan(place.y)) line(std::isnan(before.y) ? place : before, place, index, mark);
    before = place;
  }
}

void Raster::line(const Place& from, const Place& to, std::size_t index, char mark) {
  const double length = std::max(std::abs(to.x - from.x), std::abs(to.y - from.y));
  const auto steps = static_cast<std::size_t>(std::max(1.0, std::ceil(length)));
  for (std::size_t i = 0; i <= steps; ++i) {
    const double part = static_cast<double>(i) / static_cast<double>(steps);
    dot({from.x + part * (to.x - from.x), from.y + part * (to.y - from.y)}, index, mark);
  }
}

void Raster::dot(const Place& place, std::size_t index, char mark) {
  const std::size_t x = dot_at(place.x, columns_ * across_);
  const std::size_t y = dot_at(place.y, rows_ * down_);
  Cell& cell = cells_[y / down_ * columns_ + x / across_];
  cell.mark = cell.mark == ' ' || cell.mark == mark ? mark : '#';
  cell.dots |= kDots[y % down_][x % across_];
  cell.curve = index;
}

std::string Raster::text_at(std::size_t column, std::size_t row) const {
  const Cell& cell = cells_[row * columns_ + column];
  if (across_ == 1 || cell.mark == ' ') return {cell.mark};
  std::string text;
  append_utf8(text, kBraille + cell.dots);
  return text;
}

std::size_t Raster::curve_at(std::size_t column, std::size_t row) const {
  return cells_[row * columns_ + column].curve;
}

std::size_t Raster::last_row_of(const Curve& curve, const Span& values) const {
  for (std::size_t i = curve.values.size(); i-- > 0;) {
    if (!std::isfinite(curve.values[i])) continue;
    return dot_at(area().up(values, curve.values[i]), rows_ * down_) / down_;
  }
  return rows_;
}

}  // namespace zelk::tool
