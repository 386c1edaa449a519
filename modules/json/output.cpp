#include "json/output.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <nlohmann/json.hpp>

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
    out_.string("nan");
  } else if (std::isinf(field)) {
    out_.string(field < 0 ? "-inf" : "inf");
  } else if (std::abs(field) < kWholeMax && is_same(field, std::trunc(field) + 0.0)) {
    whole(static_cast<std::int64_t>(field));
  } else {
    out_.literal(nlohmann::json(field).dump());  // a number alone, unlike an array, frees nothing
  }
}

void ValueOutput::text_or_null(const char* field) const {
  if (field) {
    text(field);
  } else {
    out_.literal("null");
  }
}

void ValueOutput::short_text(std::string_view text) const {
  if (text.size() > ZELK_INLINE_NAME_MAX) check_inline(text, path_.text());
  out_.string(text);
}

void ValueOutput::word(std::int64_t field, Words words) const {
  const auto found = std::find_if(words.begin(), words.end(),
                                  [field](const Word& word) { return word.number == field; });
  if (found == words.end()) {
    whole(field);
  } else {
    out_.string(found->text);
  }
}

void ValueOutput::items(const char* field) const {
  out_.open('[');
  std::string_view rest = view(field);
  for (std::size_t end = 0; end != std::string_view::npos;) {
    end = rest.find(kItemSeparator);
    out_.element();
    out_.string(rest.substr(0, end));
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  }
  out_.close(']');
}

void ObjectOutput::real(std::string_view key, double field, double absent) {
  if (!is_same(field, absent)) at(key).real(field);
}

void ObjectOutput::left_out(bool is_there, const char* what) const {
  if (is_there) zelk_note(ZELK_ERR_FORMAT, 0, (path_.text() + ": " + what).c_str());
}

}  // namespace zelk::modules::json
