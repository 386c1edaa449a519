#include "json/output.hpp"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "base/enum_items.hpp"

namespace zelk::modules::json {
namespace {

/// Below this, every whole double is an integer of the document with the same digits.
constexpr double kWholeMax = 9007199254740992.0;  // 2 ^ 53

/// -0 is none: its digits would be those of 0.
bool is_whole(double number) {
  return std::abs(number) < kWholeMax && std::trunc(number) == number &&
         !(number == 0 && std::signbit(number));
}

}  // namespace

void ValueOutput::real(double number) const {
  if (std::isnan(number)) {
    out_.string("nan");
  } else if (std::isinf(number)) {
    out_.string(number < 0 ? "-inf" : "inf");
  } else if (is_whole(number)) {
    field(static_cast<std::int64_t>(number));
  } else {
    out_.literal(nlohmann::json(number).dump());  // a number alone, unlike an array, frees nothing
  }
}

void ValueOutput::short_text(std::string_view text) const {
  if (text.size() > ZELK_INLINE_NAME_MAX) check_inline(text, path_.text());
  out_.string(text);
}

void ValueOutput::word(std::int64_t number, Words words) const {
  const auto found = std::find_if(words.begin(), words.end(),
                                  [number](const Word& word) { return word.number == number; });
  if (found == words.end()) return field(number);
  out_.string(found->text);
}

void ValueOutput::items(const char* field) const {
  out_.open('[');
  for (const std::string_view item : EnumItems(view(field))) {
    out_.element();
    out_.string(item);
  }
  out_.close(']');
}

}  // namespace zelk::modules::json
