#include "document.hpp"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "common/records.hpp"

namespace zelk::modules::json {
namespace {

using Json = nlohmann::json;

constexpr std::size_t kDepthMax = 32;

/// Walks over the text and leaves behind how far the parser has come.
class Cursor {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  Cursor(const char* at, const char*& reached) : at_(at), reached_(&reached) {}
  reference operator*() const { return *at_; }
  Cursor& operator++() {
    *reached_ = ++at_;
    return *this;
  }
  bool operator==(const Cursor& other) const { return at_ == other.at_; }
  bool operator!=(const Cursor& other) const { return at_ != other.at_; }

 private:
  const char* at_;
  const char** reached_;
};

/// The line, from 1, of the last character in front of `end`.
std::int32_t line_at(std::string_view text, const char* end) {
  const char* const last = end == text.data() ? end : end - 1;
  return static_cast<std::int32_t>(std::count(text.data(), last, '\n')) + 1;
}

/// What the parser's message says behind its own name and place.
std::string reason(std::string_view message) {
  for (const std::string_view mark : {"] ", ": "}) {
    const bool is_left = mark == "] " || message.starts_with("parse error at ");
    const std::size_t end = message.find(mark);
    if (is_left && end != std::string_view::npos) message.remove_prefix(end + mark.size());
  }
  return std::string(message);
}

/// Builds the document as the parser meets its parts. The library's own builder would keep the last
/// of two equal keys, and with a callback to notice it walks each list once per element.
class Builder : public nlohmann::json_sax<Json> {
 public:
  explicit Builder(Json& document) : next_(&document) {}

  bool null() override { return put(nullptr); }
  bool boolean(bool value) override { return put(value); }
  bool number_integer(number_integer_t value) override { return put(value); }
  bool number_unsigned(number_unsigned_t value) override { return put(value); }
  bool number_float(number_float_t value, const string_t&) override { return put(value); }
  bool string(string_t& value) override { return put(std::move(value)); }
  bool binary(binary_t& value) override { return put(std::move(value)); }

  bool start_object(std::size_t) override { return open(Json::object()); }
  bool start_array(std::size_t) override { return open(Json::array()); }
  bool end_object() override { return close(); }
  bool end_array() override { return close(); }

  bool key(string_t& key) override {
    const auto [member, is_new] = open_.back()->get_ref<Json::object_t&>().emplace(key, nullptr);
    if (!is_new) throw Fault("the key \"" + key + "\" stands twice in one object");
    next_ = &member->second;
    return true;
  }

  bool parse_error(std::size_t, const std::string&, const Json::exception& error) override {
    throw Fault(reason(error.what()));
  }

 private:
  /// The place of the value that comes now.
  Json& place() {
    const bool is_element = !open_.empty() && open_.back()->is_array();
    return is_element ? open_.back()->emplace_back() : *next_;
  }

  template <typename Value>
  bool put(Value&& value) {
    place() = std::forward<Value>(value);
    return true;
  }

  bool open(Json&& value) {
    if (open_.size() == kDepthMax) {
      throw Fault("arrays and objects are more than " + std::to_string(kDepthMax) + " deep");
    }
    Json& container = place();
    container = std::move(value);
    open_.push_back(&container);
    return true;
  }

  bool close() {
    open_.pop_back();
    return true;
  }

  Json* next_;               ///< for the document itself, and for the value of the last key
  std::vector<Json*> open_;  ///< arrays and objects, outermost first; only the last one grows
};

}  // namespace

nlohmann::json parse(std::string_view text) {
  const char* reached = text.data();
  Json document;
  Builder builder(document);
  try {
    Json::sax_parse(Cursor(text.data(), reached), Cursor(text.data() + text.size(), reached),
                    &builder);
  } catch (const Fault& fault) {
    throw Fault(fault.what(), line_at(text, reached));
  }
  return document;
}

}  // namespace zelk::modules::json
