#include "report/value_lists.hpp"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/list.hpp"
#include "base/seeded_hash.hpp"
#include "report/record_data.hpp"

namespace zelk::tool {

using nlohmann::json;

namespace {

/// Shorter lists take no more room than a link to them.
constexpr std::size_t kLeastBytes = 48;

/// The same for equal lists alone: texts have no zeros.
std::string content_of(const val* values) {
  std::string content;
  for (const val& value : each(values)) {
    content += std::to_string(value.value) + ' ';
    content += view(value.text);
    content += '\0';
  }
  return content;
}

}  // namespace

ValueLists::ValueLists(EncodedDatabase database, std::size_t most_messages)
    : encoding_(database.encoding) {
  std::unordered_map<std::string, std::vector<const val*>, SeededHash> lists;
  std::vector<const std::vector<const val*>*> order;
  std::size_t messages = 0;
  for (const msgblk& message : each(database.records.messages)) {
    if (messages++ == most_messages) break;
    for (const sigblk& signal : each(message.signals)) {
      std::string content = content_of(signal.values);
      if (content.size() < kLeastBytes) continue;
      auto& equal = lists[std::move(content)];
      if (equal.empty()) order.push_back(&equal);
      equal.push_back(signal.values);
    }
  }
  unsigned number = 0;
  for (const auto* equal : order) {
    if (equal->size() == 1) continue;
    ++number;
    const std::size_t count = each(equal->front()).size();
    for (const val* values : *equal) uses_[values] = {number, count, values == equal->front()};
  }
}

json ValueLists::data(const val* values) const {
  const auto found = uses_.find(values);
  if (found == uses_.end()) return values_data(values, encoding_);
  const Use& use = found->second;
  if (!use.is_first) return {{"same", use.number}, {"count", use.count}};
  json data = values_data(values, encoding_);
  data["number"] = use.number;
  return data;
}

}  // namespace zelk::tool
