/// \file
/// How far a parser has come in a text.

#ifndef ZELK_BASE_COUNTED_CHARACTERS_HPP
#define ZELK_BASE_COUNTED_CHARACTERS_HPP

#include <cstddef>
#include <iterator>

namespace zelk {

/// Walks over a text for a parser that takes iterators and does not say where it stands. All copies
/// note in one place how many characters were taken.
class CountedCharacters {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  /// @param taken  behind the last character that was taken; must outlive all copies
  CountedCharacters(const char* at, const char*& taken) : at_(at), taken_(&taken) {}
  reference operator*() const { return *at_; }
  CountedCharacters& operator++() {
    *taken_ = ++at_;
    return *this;
  }
  CountedCharacters operator++(int) {
    CountedCharacters before = *this;
    ++*this;
    return before;
  }
  bool operator==(const CountedCharacters& other) const { return at_ == other.at_; }
  bool operator!=(const CountedCharacters& other) const { return at_ != other.at_; }

 private:
  const char* at_;
  const char** taken_;
};

}  // namespace zelk

#endif
