#include "check/objects/record_words.hpp"

#include <iterator>

#include "base/decimal.hpp"
#include "base/frame_id.hpp"
#include "base/list.hpp"

namespace zelk::check {

std::string hex_text(std::uint64_t number, int digits) {
  char buffer[16];
  return "0x" + std::string(std::begin(buffer), put_hex(buffer, number, digits));
}

std::string number_text(double number) {
  char buffer[kNumberBytes];
  return {buffer, put_double(buffer, number)};
}

std::string padded_id(std::uint32_t id) { return hex_text(bare_id(id), id_digits(id)); }

std::string_view id_format(std::uint32_t id) { return id & ZELK_ID_EXTENDED ? "29-bit" : "11-bit"; }

std::string shown_id(std::uint32_t id) {
  const std::uint32_t number = bare_id(id);
  const bool fits = number <= (number == id ? kLargestStandardId : kLargestExtendedId);
  const std::string text = hex_text(number, 1) + " (" + std::to_string(number) + "), ";
  return text + std::string(id_format(id)) + (fits ? "" : ", out of range");
}

std::string_view byte_order(std::uint16_t flags) {
  return flags & ZELK_SIGNAL_MOTOROLA ? "Motorola" : "Intel";
}

std::string number_format(std::uint16_t flags, std::uint32_t value_type) {
  std::string sign = flags & ZELK_SIGNAL_SIGNED ? "signed" : "unsigned";
  switch (value_type) {
    case ZELK_VALUE_INTEGER:
      return sign;
    case ZELK_VALUE_IEEE_SINGLE:
      return "IEEE single";
    case ZELK_VALUE_IEEE_DOUBLE:
      return "IEEE double";
    default:
      return sign + ", value type " + std::to_string(value_type);
  }
}

std::string_view env_var_type(std::uint32_t type) {
  switch (type) {
    case ZELK_ENVVAR_INTEGER:
      return "integer";
    case ZELK_ENVVAR_FLOAT:
      return "float";
    case ZELK_ENVVAR_STRING:
      return "string";
    case ZELK_ENVVAR_DATA:
      return "data";
    default:
      return "unknown type";
  }
}

std::string range_text(std::uint64_t low, std::uint64_t high) {
  return std::to_string(low) + (low == high ? "" : ".." + std::to_string(high));
}

std::string presence_values(const sigblk& signal) {
  std::string text;
  for (const muxor_val_range& range : each(signal.mux_ranges))
    text += (text.empty() ? "" : ", ") + range_text(range.low, range.high);
  return text;
}

}  // namespace zelk::check
