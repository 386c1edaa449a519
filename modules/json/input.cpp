#include "json/input.hpp"

#include <algorithm>

#include "base/enum_items.hpp"

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

double ValueInput::real() const {
  using Limits = std::numeric_limits<double>;
  if (const auto* const number = value_.get_if<double>()) return *number;
  if (const auto* const number = value_.get_if<std::uint64_t>())
    return static_cast<double>(*number);
  if (const auto* const number = value_.get_if<std::int64_t>()) return static_cast<double>(*number);
  if (value_.is_text("inf")) return Limits::infinity();
  if (value_.is_text("-inf")) return -Limits::infinity();
  if (value_.is_text("nan")) return Limits::quiet_NaN();
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

std::string ValueInput::short_text() const {
  std::string text = decoded();
  if (text.size() > ZELK_INLINE_NAME_MAX) check_inline(text, path_.text());
  return text;
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

bool ValueInput::is_motorola() const {
  if (value_.is_text(kMotorola)) return true;
  if (!value_.is_text(kIntel)) path_.fail(R"(expected "intel" or "motorola")");
  return false;
}

void ValueInput::items(char*& field) const {
  std::string joined;
  each_element([&joined](const ValueInput& item) {
    const std::string text = item.decoded();
    if (text.find(kItemSeparator) != std::string::npos) item.path().fail("a line feed in an item");
    (joined += text) += kItemSeparator;
  });
  if (!joined.empty()) assign_text(field, std::string_view(joined).substr(0, joined.size() - 1));
}

const Value::Array& ValueInput::array() const {
  const auto* const array = value_.get_if<Value::Array>();
  if (!array) path_.fail("expected an array");
  return *array;
}

// --- Objects ---

ObjectInput::ObjectInput(const ValueInput& input) : input_(input) {
  if (!input.is_object()) path().fail("expected an object");
}

std::optional<ValueInput> ObjectInput::find(std::string_view key, bool is_required) {
  asked_.push_back(key);
  const Value* const found = input_.value_.find(key);
  if (!found && is_required) path().fail("the key \"" + std::string(key) + "\" is missing");
  if (!found) return std::nullopt;
  ++found_;
  return ValueInput(*found, Path(path(), key), input_.encoding_);
}

void ObjectInput::finish() const {
  const auto& members = *input_.value_.get_if<Value::Object>();
  if (found_ == members.size()) return;
  for (const auto& [key, value] : members) {
    if (std::find(asked_.begin(), asked_.end(), key) == asked_.end()) {
      path().fail("unknown key \"" + key + "\"");
    }
  }
}

}  // namespace zelk::modules::json
