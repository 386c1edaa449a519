#include "edit/parse_words.hpp"

#include <fmt/format.h>

#include <cmath>

#include "base/frame_id.hpp"
#include "base/numbers.hpp"
#include "input/lookup.hpp"
#include "term/text.hpp"
#include "zelk/records.h"

namespace zelk::tool {

std::optional<double> parse_real(std::string_view text) {
  if (text.starts_with("0x") || text.starts_with("0X")) {
    const auto number = parse_whole<std::uint64_t>(text.substr(2), 16);
    return number ? std::optional(static_cast<double>(*number)) : std::nullopt;
  }
  const bool has_plus = text.starts_with('+') && !text.starts_with("+-");
  const auto number = parse_whole<double>(text.substr(has_plus ? 1 : 0));
  return number && std::isfinite(*number) ? number : std::nullopt;
}

double real_of(std::string_view text) {
  if (const auto number = parse_real(text)) return *number;
  throw RequestError(fmt::format("{} is no number", in_quotes(text)));
}

std::uint32_t count_of(std::string_view text, std::uint32_t least, std::uint32_t most) {
  const std::optional<std::uint32_t> number = parse_id(text);
  if (number && *number >= least && *number <= most) return *number;
  throw RequestError(
      fmt::format("{} is no whole number from {} to {}", in_quotes(text), least, most));
}

std::vector<std::string> list_of(std::string_view text) {
  std::vector<std::string> parts;
  while (!text.empty()) {
    const std::string_view part = text.substr(0, text.find(','));
    text.remove_prefix(part.size() == text.size() ? part.size() : part.size() + 1);
    const std::size_t begin = part.find_first_not_of(' ');
    if (begin == part.npos) continue;
    parts.emplace_back(part.substr(begin, part.find_last_not_of(' ') + 1 - begin));
  }
  return parts;
}

std::uint32_t message_id_of(std::string_view text) {
  const std::optional<std::uint32_t> id = parse_id(text);
  if (!id) throw RequestError(fmt::format("{} is no identifier", in_quotes(text)));
  if ((*id & ~ZELK_ID_EXTENDED) > kLargestExtendedId) {
    throw RequestError(
        fmt::format("{} is no identifier: one has at most 29 bits", in_quotes(text)));
  }
  return *id > kLargestStandardId ? *id | ZELK_ID_EXTENDED : *id;
}

}  // namespace zelk::tool
