#include "json/document.hpp"

#include <algorithm>
#include <cstddef>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "base/counted_characters.hpp"
#include "common/records.hpp"

namespace zelk::modules::json {
namespace {

constexpr std::size_t kDepthMax = 32;
/// Twice as many as any object of the form has. Few keys are found in constant time.
constexpr std::size_t kKeysMax = 64;

/// The line, from 1, of the last character in front of `end`.
std::int32_t line_at(std::string_view text, const char* end) {
  const char* const last = end == text.data() ? end : end - 1;
  return static_cast<std::int32_t>(std::count(text.data(), last, '\n')) + 1;
}

/// The parser's message without what stands in front: "[json.exception.parse_error.101] parse error
/// at line 1, column 2: ", which is not yet what is wrong.
std::string reason(std::string_view message) {
  message.remove_prefix(message.find("] ") + 2);
  if (message.starts_with("parse error at ")) message.remove_prefix(message.find(": ") + 2);
  return std::string(message);
}

/// Builds the document as the parser meets its parts.
class Builder : public nlohmann::json_sax<nlohmann::json> {
 public:
  explicit Builder(Value& document) : next_(&document) {}

  bool null() override { return put(nullptr); }
  bool boolean(bool value) override { return put(value); }
  bool number_integer(number_integer_t value) override { return put(value); }
  bool number_unsigned(number_unsigned_t value) override { return put(value); }
  bool number_float(number_float_t value, const string_t&) override { return put(value); }
  bool string(string_t& value) override { return put(std::move(value)); }
  bool binary(binary_t&) override { return false; }  // no text has any

  bool start_object(std::size_t) override { return open(Value::Object()); }
  bool start_array(std::size_t) override { return open(Value::Array()); }
  bool end_object() override { return close(); }
  bool end_array() override { return close(); }

  bool key(string_t& key) override {
    auto& object = std::get<Value::Object>(open_.back()->content);
    if (open_.back()->find(key)) {
      throw Fault("the key \"" + key + "\" stands twice in one object");
    }
    if (object.size() == kKeysMax) {
      throw Fault("an object has more than " + std::to_string(kKeysMax) + " keys");
    }
    object.push_back({std::move(key), {}});
    next_ = &object.back().value;
    return true;
  }

  bool parse_error(std::size_t, const std::string&,
                   const nlohmann::json::exception& error) override {
    throw Fault(reason(error.what()));
  }

 private:
  /// The place of the value that comes now.
  Value& place() {
    auto* const array = open_.empty() ? nullptr : std::get_if<Value::Array>(&open_.back()->content);
    return array ? array->emplace_back() : *next_;
  }

  template <typename Content>
  bool put(Content&& content) {
    place().content = std::forward<Content>(content);
    return true;
  }

  template <typename Container>
  bool open(Container&& container) {
    if (open_.size() == kDepthMax) {
      throw Fault("arrays and objects are more than " + std::to_string(kDepthMax) + " deep");
    }
    Value& value = place();
    value.content = std::forward<Container>(container);
    open_.push_back(&value);
    return true;
  }

  bool close() {
    open_.pop_back();
    return true;
  }

  Value* next_;               ///< the document itself, or the value of the last key
  std::vector<Value*> open_;  ///< arrays and objects, outermost first; only the last one grows
};

}  // namespace

bool Value::is_text(std::string_view text) const {
  const auto* const own = get_if<std::string>();
  return own && *own == text;
}

bool Value::is_number(double number) const {
  const auto* const whole = get_if<std::uint64_t>();
  const auto* const real = get_if<double>();
  return (whole && static_cast<double>(*whole) == number) || (real && *real == number);
}

const Value* Value::find(std::string_view key) const {
  const auto& object = std::get<Object>(content);
  const auto found = std::find_if(object.begin(), object.end(),
                                  [key](const Member& member) { return member.key == key; });
  return found == object.end() ? nullptr : &found->value;
}

Value parse(std::string_view text) {
  const char* reached = text.data();
  Value document;
  Builder builder(document);
  try {
    nlohmann::json::sax_parse(CountedCharacters(text.data(), reached),
                              CountedCharacters(text.data() + text.size(), reached), &builder);
  } catch (const Fault& fault) {
    throw Fault(fault.what(), line_at(text, reached));
  }
  return document;
}

}  // namespace zelk::modules::json
