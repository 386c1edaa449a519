#include "input.hpp"

#include <algorithm>
#include <array>

namespace zelk::modules::json {

using Json = nlohmann::json;

// --- Values ---

std::int64_t ValueInput::whole(std::int64_t lowest, std::int64_t highest) const {
  bool fits = false;
  if (value_.is_number_unsigned()) {
    fits = value_.get<std::uint64_t>() <= static_cast<std::uint64_t>(highest);
  } else if (value_.is_number_integer()) {  // then it is below 0
    fits = value_.get<std::int64_t>() >= lowest;
  }
  if (fits) return value_.get<std::int64_t>();
  path_.fail("expected a whole number from " + std::to_string(lowest) + " to " +
             std::to_string(highest));
}

void ValueInput::real(double& field) const {
  using Limits = std::numeric_limits<double>;
  if (value_.is_number()) {
    field = value_.get<double>();
    return;
  }
  constexpr std::array<std::pair<std::string_view, double>, 3> kWords = {
      {{"inf", Limits::infinity()}, {"-inf", -Limits::infinity()}, {"nan", Limits::quiet_NaN()}}};
  for (const auto& [word, number] : kWords) {
    if (value_ != word) continue;
    field = number;
    return;
  }
  path_.fail("expected a number, \"inf\", \"-inf\" or \"nan\"");
}

std::string ValueInput::decoded() const {
  if (!value_.is_string()) path_.fail("expected a text");
  const auto bytes = from_utf8(value_.get_ref<const std::string&>(), encoding_);
  if (!bytes) path_.fail("a character that Windows-1252 does not have");
  if (bytes->find('\0') != std::string::npos) {
    path_.fail("a NUL character, which no database can hold");
  }
  return *bytes;
}

void ValueInput::text_or_null(char*& field) const {
  if (!value_.is_null()) text(field);
}

void ValueInput::check_length(std::string_view text) const {
  if (text.size() > ZELK_INLINE_NAME_MAX) check_inline(text, path_.text());
}

std::int64_t ValueInput::number_of_word(Words words) const {
  const auto& text = value_.get_ref<const std::string&>();
  const auto found = std::find_if(words.begin(), words.end(),
                                  [&text](const Word& word) { return word.text == text; });
  if (found != words.end()) return found->number;
  std::string known;
  for (const Word& word : words) known += "\"" + std::string(word.text) + "\", ";
  path_.fail("expected " + known + "or a number");
}

bool ValueInput::flag() const {
  if (!value_.is_boolean()) path_.fail("expected true or false");
  return value_.get<bool>();
}

void ValueInput::fail_reference(const char* what, std::size_t count) const {
  if (value_.is_string()) {
    path_.fail("there is no " + std::string(what) + " \"" + value_.get<std::string>() + "\"");
  }
  path_.fail("expected a name, or a position below " + std::to_string(count));
}

void ValueInput::items(char*& field) const {
  std::string joined;
  std::size_t position = 0;
  for (const auto& element : array()) {
    const ValueInput item(element, Path(path_, position), encoding_);
    const std::string text = item.decoded();
    if (text.find(kItemSeparator) != std::string::npos) item.path().fail("a line feed in an item");
    if (position++ != 0) joined += kItemSeparator;
    joined += text;
  }
  if (position != 0) assign_text(field, joined);
}

const Json& ValueInput::array() const {
  if (!value_.is_array()) path_.fail("expected an array");
  return value_;
}

// --- Objects ---

ObjectInput::ObjectInput(const Json& value, const Path& path, Encoding encoding)
    : object_(value), path_(path), encoding_(encoding) {
  if (!value.is_object()) path_.fail("expected an object");
}

const Json* ObjectInput::find(std::string_view key) {
  asked_.push_back(key);
  const auto found = object_.find(key);
  if (found == object_.end()) return nullptr;
  ++found_;
  return &*found;
}

ValueInput ObjectInput::at(std::string_view key) {
  const Json* const value = find(key);
  if (!value) path_.fail("the key \"" + std::string(key) + "\" is missing");
  return input(key, *value);
}

void ObjectInput::real(std::string_view key, double& field, double absent) {
  field = absent;
  if (const Json* const value = find(key)) input(key, *value).real(field);
}

void ObjectInput::text(std::string_view key, char*& field) {
  if (const Json* const value = find(key)) input(key, *value).text(field);
}

void ObjectInput::byte_order(std::string_view key, std::uint16_t& flags) {
  const Json* const value = find(key);
  if (!value || *value == kIntel) return;
  if (*value != kMotorola) Path(path_, key).fail(R"(expected "intel" or "motorola")");
  flags |= ZELK_SIGNAL_MOTOROLA;
}

void ObjectInput::bits(std::string_view key, std::uint16_t& flags, std::uint16_t mask) {
  std::uint16_t bits = 0;
  whole(key, bits, bits);
  if ((bits & ~mask) != 0) Path(path_, key).fail("a bit that has a key of its own");
  flags |= bits;
}

void ObjectInput::items(std::string_view key, char*& field) {
  if (const Json* const value = find(key)) input(key, *value).items(field);
}

void ObjectInput::finish() const {
  if (found_ == object_.size()) return;
  for (const auto& [key, value] : object_.items()) {
    if (std::find(asked_.begin(), asked_.end(), key) == asked_.end()) {
      path_.fail("unknown key \"" + key + "\"");
    }
  }
}

}  // namespace zelk::modules::json
