#include "output.hpp"

#include <algorithm>
#include <bit>
#include <cmath>

namespace zelk::modules::json {
namespace {

/// Below this, every whole double is an integer of the document with the same digits.
constexpr double kWholeMax = 9007199254740992.0;  // 2 ^ 53

bool is_same(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

}  // namespace

void ValueOutput::real(double field) const {
  if (std::isnan(field)) {
    value_ = "nan";
  } else if (std::isinf(field)) {
    value_ = field < 0 ? "-inf" : "inf";
  } else if (std::abs(field) < kWholeMax && is_same(field, std::trunc(field) + 0.0)) {
    value_ = static_cast<std::int64_t>(field);
  } else {
    value_ = field;
  }
}

void ValueOutput::text_or_null(const char* field) const {
  if (field) text(field);
}

void ValueOutput::short_text(std::string_view text) const {
  if (text.size() > ZELK_INLINE_NAME_MAX) check_inline(text, path_.text());
  value_ = text;
}

void ValueOutput::word(std::int64_t field, Words words) const {
  const auto found = std::find_if(words.begin(), words.end(),
                                  [field](const Word& word) { return word.number == field; });
  if (found == words.end()) {
    value_ = field;
  } else {
    value_ = found->text;
  }
}

void ValueOutput::items(const char* field) const {
  value_ = nlohmann::ordered_json::array();
  std::string_view rest = view(field);
  std::size_t end = 0;
  while ((end = rest.find(kItemSeparator)) != std::string_view::npos) {
    value_.push_back(rest.substr(0, end));
    rest.remove_prefix(end + 1);
  }
  value_.push_back(rest);
}

ObjectOutput::ObjectOutput(nlohmann::ordered_json& value, const Path& path)
    : object_(value), path_(path) {
  value = nlohmann::ordered_json::object();
}

void ObjectOutput::real(std::string_view key, double field, double absent) {
  if (!is_same(field, absent)) at(key).real(field);
}

void ObjectOutput::left_out(bool is_there, const char* what) const {
  if (is_there) zelk_note(ZELK_ERR_FORMAT, 0, (path_.text() + ": " + what).c_str());
}

}  // namespace zelk::modules::json
