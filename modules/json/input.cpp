#include "json/input.hpp"

#include <algorithm>
#include <array>

namespace zelk::modules::json {

// --- Values ---

std::int64_t ValueInput::whole(std::int64_t lowest, std::int64_t highest) const {
  const auto* const positive = value_.get_if<std::uint64_t>();
  const auto* const negative = value_.get_if<std::int64_t>();
  if (positive && *positive <= static_cast<std::uint64_t>(highest)) {
    return static_cast<std::int64_t>(*positive);
  }
  if (negative && *negative >= lowest) return *negative;
  path_.fail("expected a whole number from " + std::to_string(lowest) + " to " +
             std::to_string(highest));
}

void ValueInput::real(double& field) const {
  using Limits = std::numeric_limits<double>;
  const auto take = [&field](const auto* number) {
    if (number) field = static_cast<double>(*number);
    return number != nullptr;
  };
  if (take(value_.get_if<double>()) || take(value_.get_if<std::uint64_t>()) ||
      take(value_.get_if<std::int64_t>())) {
    return;
  }
  constexpr std::array<std::pair<std::string_view, double>, 3> kWords = {
      {{"inf", Limits::infinity()}, {"-inf", -Limits::infinity()}, {"nan", Limits::quiet_NaN()}}};
  for (const auto& [word, number] : kWords) {
    if (!value_.is_text(word)) continue;
    field = number;
    return;
  }
  path_.fail("expected a number, \"inf\", \"-inf\" or \"nan\"");
}

std::string ValueInput::decoded() const {
  const auto* const text = value_.get_if<std::string>();
  if (!text) path_.fail("expected a text");
  const auto bytes = from_utf8(*text, encoding_);
  if (!bytes) path_.fail("a character that Windows-1252 does not have");
  if (bytes->find('\0') != std::string::npos) {
    path_.fail("a NUL character, which no database can hold");
  }
  return *bytes;
}

void ValueInput::text_or_null(char*& field) const {
  if (!value_.is<std::nullptr_t>()) text(field);
}

void ValueInput::check_length(std::string_view text) const {
  if (text.size() > ZELK_INLINE_NAME_MAX) check_inline(text, path_.text());
}

std::int64_t ValueInput::number_of_word(Words words) const {
  const auto found = std::find_if(words.begin(), words.end(),
                                  [this](const Word& word) { return value_.is_text(word.text); });
  if (found != words.end()) return found->number;
  std::string known;
  for (const Word& word : words) known += "\"" + std::string(word.text) + "\", ";
  path_.fail("expected " + known + "or a number");
}

bool ValueInput::flag() const {
  const auto* const flag = value_.get_if<bool>();
  if (!flag) path_.fail("expected true or false");
  return *flag;
}

void ValueInput::fail_reference(const char* what, std::size_t count) const {
  if (const auto* const name = value_.get_if<std::string>()) {
    path_.fail("there is no " + std::string(what) + " \"" + *name + "\"");
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

const Value::Array& ValueInput::array() const {
  const auto* const array = value_.get_if<Value::Array>();
  if (!array) path_.fail("expected an array");
  return *array;
}

// --- Objects ---

ObjectInput::ObjectInput(const Value& value, const Path& path, Encoding encoding)
    : object_(value), path_(path), encoding_(encoding) {
  if (!value.is<Value::Object>()) path_.fail("expected an object");
}

const Value* ObjectInput::find(std::string_view key) {
  asked_.push_back(key);
  const Value* const found = object_.find(key);
  if (found) ++found_;
  return found;
}

ValueInput ObjectInput::at(std::string_view key) {
  const Value* const value = find(key);
  if (!value) path_.fail("the key \"" + std::string(key) + "\" is missing");
  return input(key, *value);
}

void ObjectInput::real(std::string_view key, double& field, double absent) {
  field = absent;
  if (const Value* const value = find(key)) input(key, *value).real(field);
}

void ObjectInput::text(std::string_view key, char*& field) {
  if (const Value* const value = find(key)) input(key, *value).text(field);
}

void ObjectInput::byte_order(std::string_view key, std::uint16_t& flags) {
  const Value* const value = find(key);
  if (!value || value->is_text(kIntel)) return;
  if (!value->is_text(kMotorola)) Path(path_, key).fail(R"(expected "intel" or "motorola")");
  flags |= ZELK_SIGNAL_MOTOROLA;
}

void ObjectInput::bits(std::string_view key, std::uint16_t& flags, std::uint16_t mask) {
  std::uint16_t bits = 0;
  whole(key, bits, bits);
  if ((bits & ~mask) != 0) Path(path_, key).fail("a bit that has a key of its own");
  flags |= bits;
}

void ObjectInput::items(std::string_view key, char*& field) {
  if (const Value* const value = find(key)) input(key, *value).items(field);
}

void ObjectInput::finish() const {
  const auto& members = *object_.get_if<Value::Object>();
  if (found_ == members.size()) return;
  for (const auto& [key, value] : members) {
    if (std::find(asked_.begin(), asked_.end(), key) == asked_.end()) {
      path_.fail("unknown key \"" + key + "\"");
    }
  }
}

}  // namespace zelk::modules::json
