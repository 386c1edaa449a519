#include "save/exact_text.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "base/characters.hpp"
#include "base/numbers.hpp"
#include "files/files.hpp"
#include "input/lookup.hpp"
#include "save/rounding.hpp"
#include "save/temporary_file.hpp"

namespace zelk::tool {

namespace {

std::string written_text(const ZelkDatabase& database) {
  const TemporaryFile file;
  write_to(file.path(), database);
  return files::read_all(file.path().c_str());
}

/// Stands for the number of an index in a text: 1, a point, digits of the index, and an exponent
/// that the text does not have by itself.
class Marker {
 public:
  /// @throws RequestError when the text has all exponents
  explicit Marker(const std::string& text) {
    for (exponent_ = 300; text.find(ending()) != text.npos; --exponent_)
      if (exponent_ == 200) throw RequestError("not written: too many numbers of many digits");
  }

  double number(std::size_t index) const {
    return literal_to_double(fmt::format("{}.{:012}{}", kLead, index, ending()));
  }
  std::string ending() const { return fmt::format("E+{}", exponent_); }

  /// @param digits  those behind the point, without zeros at their end
  static std::size_t index_of(std::string_view digits) {
    std::size_t index = 0;
    for (std::size_t i = 0; i < kDigits; ++i)
      index = index * 10 + static_cast<std::size_t>(i < digits.size() ? digits[i] - '0' : 0);
    return index;
  }

 private:
  static constexpr int kLead = 1;
  static constexpr std::size_t kDigits = 12;

  int exponent_ = 0;
};

/// With as few digits as it takes.
std::string all_digits(double number) {
  char buffer[32];
  const auto [end, error] = std::to_chars(std::begin(buffer), std::end(buffer), number);
  std::string text(buffer, end);
  std::ranges::replace(text, 'e', 'E');
  return text;
}

/// Puts the numbers back whose markers stand in the text.
std::string without_markers(const std::string& text, const Marker& marker,
                            const std::vector<Rounding>& numbers) {
  const std::string ending = marker.ending();
  std::string result;
  std::size_t done = 0;
  for (std::size_t at = text.find(ending); at != text.npos; at = text.find(ending, done)) {
    std::size_t begin = at;
    while (begin > done && is_digit(text[begin - 1])) --begin;
    const bool has_point = begin > done && text[begin - 1] == '.';
    const std::size_t index =
        has_point ? Marker::index_of(std::string_view(text).substr(begin, at - begin)) : 0;
    result += text.substr(done, (has_point ? begin - 2 : begin) - done);
    result += all_digits(numbers.at(index).before);
    done = at + ending.size();
  }
  return result + text.substr(done);
}

/// Numbers in records that are others for the life of this object.
class MarkedNumbers {
 public:
  MarkedNumbers(const std::vector<Rounding>& numbers, const Marker& marker) : numbers_(numbers) {
    for (std::size_t i = 0; i < numbers_.size(); ++i) place(i) = marker.number(i);
  }
  MarkedNumbers(const MarkedNumbers&) = delete;
  MarkedNumbers& operator=(const MarkedNumbers&) = delete;
  ~MarkedNumbers() {
    for (std::size_t i = 0; i < numbers_.size(); ++i) place(i) = numbers_[i].before;
  }

 private:
  double& place(std::size_t i) const { return const_cast<double&>(*numbers_[i].place); }

  const std::vector<Rounding>& numbers_;
};

}  // namespace

std::string exact_text(EncodedDatabase database) {
  const std::vector<Rounding> numbers = roundings_of(database);
  std::string text = written_text(database.records);
  if (numbers.empty()) return text;
  const Marker marker(text);
  const MarkedNumbers marked(numbers, marker);
  return without_markers(written_text(database.records), marker, numbers);
}

}  // namespace zelk::tool
