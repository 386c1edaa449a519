#include "report/record_data.hpp"

#include <fmt/format.h>

#include <algorithm>

#include "base/list.hpp"
#include "words/attribute_words.hpp"

namespace zelk::tool {

using nlohmann::json;

namespace {

constexpr std::size_t kMostOpenValues = 8;  // that are shown without being asked for

/// The beginning of a text, which ends with a whole character.
std::string_view beginning(std::string_view text, Encoding encoding, std::size_t most_bytes) {
  if (text.size() <= most_bytes) return text;
  std::size_t size = most_bytes;
  constexpr std::size_t kLongestCharacter = 4;
  const auto is_later_byte = [&](std::size_t at) { return (text[at] & 0xC0) == 0x80; };
  while (encoding == Encoding::kUtf8 && most_bytes - size < kLongestCharacter &&
         is_later_byte(size))
    --size;
  return text.substr(0, size);
}

std::string rest_note(std::size_t bytes) {
  return bytes == 0 ? "" : fmt::format("... and {} more bytes, which are left out", bytes);
}

}  // namespace

json text_data(std::string_view text, Encoding encoding) {
  if (text.empty()) return nullptr;
  const std::string_view shown = beginning(text, encoding, kMostTextBytes);
  return {{"text", to_utf8(shown, encoding)}, {"cut", rest_note(text.size() - shown.size())}};
}

std::string brief(std::string_view text, Encoding encoding, std::size_t most_bytes) {
  const std::string_view shown = beginning(text, encoding, most_bytes);
  std::string line = to_utf8(shown, encoding);
  std::ranges::replace(line, '\n', ' ');
  return shown.size() == text.size() ? line : line + "...";
}

json attributes_data(const attr* values, Encoding encoding) {
  json list = json::array();
  for (const attr& value : each(values)) {
    json data = text_data(shown_value(value, encoding), Encoding::kUtf8);
    data["name"] = to_utf8(view(value.def->name), encoding);
    list.push_back(std::move(data));
  }
  return list.empty() ? json(nullptr) : json{{"list", std::move(list)}};
}

json values_data(const val* values, Encoding encoding) {
  if (!values) return nullptr;
  json list = json::array();
  std::size_t count = 0;
  for (const val& value : each(values)) {
    if (++count > kMostValues) continue;
    constexpr std::size_t kMostBytes = 1000;
    list.push_back(
        {{"number", value.value}, {"text", brief(view(value.text), encoding, kMostBytes)}});
  }
  const std::size_t rest = count - list.size();
  return {{"list", std::move(list)},
          {"long", count > kMostOpenValues ? json(count) : json(nullptr)},
          {"cut", rest == 0 ? "" : fmt::format("{} more are left out", rest)}};
}

}  // namespace zelk::tool
