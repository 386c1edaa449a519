#include "input/name_filter.hpp"

#include <algorithm>
#include <string_view>

#include "base/text_view.hpp"

namespace zelk::tool {

namespace {

bool matches_any(const std::vector<std::string>& patterns, std::string_view name) {
  return std::ranges::any_of(
      patterns, [&](const std::string& pattern) { return matches_wildcards(pattern, name); });
}

}  // namespace

bool NameFilter::takes(const msgblk& message) const {
  return messages.empty() || matches_any(messages, view(message.name));
}

bool NameFilter::takes(const msgblk& message, const sigblk& signal) const {
  return signals.empty() || std::ranges::any_of(signals, [&](const std::string& pattern) {
           return matches_object(pattern, view(signal.name), view(message.name));
         });
}

}  // namespace zelk::tool
