#include "log/frame_filter.hpp"

#include <algorithm>
#include <iterator>
#include <optional>

#include "base/frame_id.hpp"
#include "input/lookup.hpp"
#include "zelk/records.h"

namespace zelk::tool {

namespace {

/// An end of a range.
struct Bound {
  std::uint32_t number;
  bool is_extended;  ///< whatever the number is
};

std::optional<Bound> parse_bound(std::string_view text) {
  const bool has_suffix = text.size() > 1 && (text.ends_with('x') || text.ends_with('X'));
  if (has_suffix && text.size() == 2 && text.front() == '0') return std::nullopt;  // "0x"
  if (has_suffix) text.remove_suffix(1);
  const std::optional<std::uint32_t> id = parse_id(text);
  if (!id || (*id & ~ZELK_ID_EXTENDED) > kLargestExtendedId) return std::nullopt;
  return Bound{*id & ~ZELK_ID_EXTENDED, has_suffix || (*id & ZELK_ID_EXTENDED)};
}

}  // namespace

bool IdSet::add(std::string_view text) {
  const std::size_t dash = text.find('-');
  const std::optional<Bound> first = parse_bound(text.substr(0, dash));
  const std::optional<Bound> last =
      dash == std::string_view::npos ? first : parse_bound(text.substr(dash + 1));
  if (!first || !last || first->number > last->number) return false;
  if (first->is_extended || last->is_extended) {
    add_range(first->number | ZELK_ID_EXTENDED, last->number | ZELK_ID_EXTENDED);
    return true;
  }
  if (first->number <= kLargestStandardId)
    add_range(first->number, std::min(last->number, kLargestStandardId));
  if (last->number > kLargestStandardId) {
    add_range(std::max(first->number, kLargestStandardId + 1) | ZELK_ID_EXTENDED,
              last->number | ZELK_ID_EXTENDED);
  }
  return true;
}

/// Swallows the ranges that the new one overlaps.
void IdSet::add_range(std::uint32_t first, std::uint32_t last) {
  auto next = ranges_.upper_bound(first);
  if (next != ranges_.begin() && std::prev(next)->second >= first) --next;
  while (next != ranges_.end() && next->first <= last) {
    first = std::min(first, next->first);
    last = std::max(last, next->second);
    next = ranges_.erase(next);
  }
  ranges_.emplace(first, last);
}

bool IdSet::holds(std::uint32_t id) const {
  const auto behind = ranges_.upper_bound(id);
  return behind != ranges_.begin() && std::prev(behind)->second >= id;
}

bool FrameFilter::takes_interface(std::string_view interface_name) const {
  return interfaces.empty() || std::ranges::find(interfaces, interface_name) != interfaces.end();
}

}  // namespace zelk::tool
