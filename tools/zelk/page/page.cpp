#include "page/page.hpp"

#include <kainjow/mustache.hpp>
#include <stdexcept>

#include "base/encoding.hpp"

namespace zelk::tool {

namespace {

using kainjow::mustache::data;

constexpr std::uint32_t kReplacement = 0xFFFD;
constexpr std::uint32_t kControlPictures = 0x2400;
constexpr std::uint32_t kDelete = 0x7F;
constexpr std::uint32_t kDeletePicture = 0x2421;

bool is_control(std::uint32_t c) { return c < 0x20 && c != '\t' && c != '\n'; }

/// What stands for a character that pages cannot contain; others as they are. Those from 0x80 on
/// and the two at the end are allowed at most with warnings.
std::uint32_t visible(std::uint32_t c) {
  if (is_control(c)) return kControlPictures + c;
  if (c == kDelete) return kDeletePicture;
  if ((c > kDelete && c < 0xA0) || c == 0xFFFE || c == 0xFFFF) return kReplacement;
  return c;
}

/// The reference for a character that has a meaning in pages; null for others.
const char* reference(char c) {
  switch (c) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case '\'':
      return "&#39;";
    default:
      return nullptr;
  }
}

data to_data(const nlohmann::json& value);

data to_object(const nlohmann::json& members) {
  data object;
  for (const auto& [name, value] : members.items()) object[name] = to_data(value);
  return object;
}

data to_list(const nlohmann::json& elements) {
  data list{data::type::list};
  for (const nlohmann::json& element : elements) list.push_back(to_data(element));
  return list;
}

data to_data(const nlohmann::json& value) {
  switch (value.type()) {
    case nlohmann::json::value_t::object:
      return to_object(value);
    case nlohmann::json::value_t::array:
      return to_list(value);
    case nlohmann::json::value_t::string: {
      const auto& text = value.get_ref<const std::string&>();
      return text.empty() ? data(false) : data(text);
    }
    case nlohmann::json::value_t::boolean:
      return {value.get<bool>()};
    case nlohmann::json::value_t::null:
      return {false};
    default:
      return {value.dump()};
  }
}

constexpr std::string_view kPartTag = "{{>";

/// Whether a part includes no other one.
bool is_leaf(std::string_view part) { return part.find(kPartTag) == std::string_view::npos; }

/// The template with the parts that include no others in their places: kainjow's library parses a
/// part again wherever it stands in what is filled, such as in each row of a table.
std::string with_parts(std::string text, const PageParts& parts) {
  for (const auto& [name, part] : parts) {
    if (!is_leaf(part)) continue;
    const std::string tag = std::string(kPartTag) + name + "}}";
    for (std::size_t at = text.find(tag); at != std::string::npos; at = text.find(tag, at))
      text.replace(at, tag.size(), part);
  }
  return text;
}

}  // namespace

std::string escaped_for_page(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const CodePoint c = first_code_point(text);
    const char* const special = c.size == 1 ? reference(text.front()) : nullptr;
    if (special) {
      result += special;
    } else {
      append_utf8(result, c.size == 0 ? kReplacement : visible(c.value));
    }
    text.remove_prefix(c.size == 0 ? 1 : c.size);
  }
  return result;
}

struct PageTemplate::Parsed {
  explicit Parsed(const std::string& text) : page(text) {}

  kainjow::mustache::mustache page;
  std::map<std::string, std::string> parts;  // those that include others
};

PageTemplate::PageTemplate(std::string_view page_template, const PageParts& parts) {
  const std::string text = with_parts(std::string(page_template), parts);
  parsed_ = std::make_unique<Parsed>(text);
  parsed_->page.set_custom_escape([](const std::string& raw) { return escaped_for_page(raw); });
  for (const auto& [name, part] : parts)
    if (!is_leaf(part)) parsed_->parts[name] = with_parts(std::string(part), parts);
  if (!parsed_->page.is_valid())
    throw std::logic_error("page template: " + parsed_->page.error_message());
}

PageTemplate::~PageTemplate() = default;

std::string PageTemplate::fill(const nlohmann::json& data) const {
  kainjow::mustache::data content = to_data(data);
  for (const auto& [name, part] : parsed_->parts) {
    content[name] = kainjow::mustache::partial([text = part] { return text; });
  }
  std::string result = parsed_->page.render(content);
  if (!parsed_->page.is_valid())
    throw std::logic_error("page template: " + parsed_->page.error_message());
  return result;
}

std::string render(std::string_view page_template, const nlohmann::json& data,
                   const PageParts& parts) {
  return PageTemplate(page_template, parts).fill(data);
}

std::string script_json(const nlohmann::json& data) {
  const std::string plain = data.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
  std::string result;
  result.reserve(plain.size());
  for (const char c : plain) {
    if (c == '<') {
      result += "\\u003c";
    } else {
      result += c;
    }
  }
  return result;
}

}  // namespace zelk::tool
