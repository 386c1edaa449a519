#include "table/cell.hpp"

#include <fmt/format.h>

#include <cmath>

#include "term/text.hpp"

namespace zelk::tool {

namespace {

std::string shown_number(double number, int hex_digits) {
  if (hex_digits == 0) return fmt::format("{}", number);
  return fmt::format("0x{:0{}X}", static_cast<std::uint64_t>(number), hex_digits);
}

std::string shown_element(const CellElement& element) {
  if (element.number) return fmt::format("{}={}", *element.number, in_quotes(element.text));
  return element.text.empty() ? "\"\"" : escaped(element.text);
}

}  // namespace

// From 2^53 on, doubles skip whole numbers.
bool is_whole(double number) {
  constexpr double kEndOfWhole = 9007199254740992.0;
  return std::abs(number) < kEndOfWhole && number == std::floor(number);
}

std::string shown(const Cell& cell) {
  if (const double* const number = cell.number()) return shown_number(*number, cell.hex_digits);
  if (const std::string* const text = cell.text()) return escaped(*text);
  if (const bool* const yes = std::get_if<bool>(&cell.value)) return *yes ? "yes" : "no";
  if (cell.is_none()) return {};
  std::string shown;
  for (const CellElement& element : *cell.list())
    shown += (shown.empty() ? "" : ", ") + shown_element(element);
  return shown;
}

}  // namespace zelk::tool
