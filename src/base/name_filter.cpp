#include "base/name_filter.hpp"

#include <algorithm>

#include "base/wildcards.hpp"

namespace zelk {

bool NameFilter::takes_message(std::string_view name) const {
  const auto matches = [&](const std::string& pattern) { return matches_wildcards(pattern, name); };
  return messages.empty() || std::ranges::any_of(messages, matches);
}

bool NameFilter::takes_signal(std::string_view name, std::string_view owner) const {
  const auto matches = [&](const std::string& pattern) {
    return matches_object(pattern, name, owner);
  };
  return signals.empty() || std::ranges::any_of(signals, matches);
}

}  // namespace zelk
