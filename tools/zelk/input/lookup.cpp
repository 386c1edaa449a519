#include "input/lookup.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <utility>

#include "term/text.hpp"

namespace zelk::tool {

std::optional<std::uint32_t> parse_id(std::string_view text) {
  const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
  if (hexadecimal) text.remove_prefix(2);
  std::uint32_t number = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, hexadecimal ? 16 : 10);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

std::string suggestion(const std::vector<std::string_view>& names, std::string_view name) {
  constexpr std::size_t kMaxNames = 6;
  const std::size_t limit = std::min<std::size_t>(2, name.size() / 3);
  std::vector<std::pair<std::size_t, std::string_view>> near;
  for (const std::string_view candidate : names) {
    const std::size_t distance = edit_distance(candidate, name, limit);
    if (distance <= limit) near.emplace_back(distance, candidate);
  }
  std::ranges::sort(near);
  near.erase(std::unique(near.begin(), near.end()), near.end());
  near.resize(std::min(near.size(), kMaxNames));

  std::string text;
  for (const auto& [distance, candidate] : near)
    text += (text.empty() ? "; did you mean " : ", ") + escaped(candidate);
  return text.empty() ? text : text + "?";
}

void NameSuggestion::add(std::string_view name, std::string_view owner) {
  const bool is_qualified = !owner.empty() && typed_.find('.') != std::string_view::npos;
  names_.push_back(is_qualified ? fmt::format("{}.{}", owner, name) : std::string(name));
}

std::string NameSuggestion::text() const {
  return suggestion(std::vector<std::string_view>(names_.begin(), names_.end()), typed_);
}

std::vector<const msgblk*> find_messages(const ZelkDatabase& database, const std::string& wanted) {
  const std::optional<std::uint32_t> id = parse_id(wanted);
  std::vector<const msgblk*> found;
  std::vector<std::string_view> names;
  for (const msgblk& message : each(database.messages)) {
    const bool is_it = id ? message.id == *id || message.id == (*id | ZELK_ID_EXTENDED)
                          : view(message.name) == wanted;
    if (is_it) found.push_back(&message);
    names.push_back(view(message.name));
  }
  if (!found.empty()) return found;
  if (id) throw RequestError(fmt::format("no message has the identifier 0x{:X} ({})", *id, *id));
  throw RequestError(
      fmt::format("no message is named {}{}", in_quotes(wanted), suggestion(names, wanted)));
}

}  // namespace zelk::tool
