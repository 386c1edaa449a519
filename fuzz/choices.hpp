/// The bytes of an input as choices: numbers of what to do next.
#ifndef ZELK_FUZZ_CHOICES_HPP
#define ZELK_FUZZ_CHOICES_HPP

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

/// Behind the end of the input all choices are 0.
class Choices {
 public:
  Choices(const std::uint8_t* data, std::size_t size) : data_(data), left_(size) {}

  bool empty() const { return left_ == 0; }

  /// Numbers as they stand in the input.
  template <typename Number>
  Number take() {
    Number number{};
    const std::size_t count = std::min(left_, sizeof number);
    std::memcpy(&number, data_, count);
    data_ += count;
    left_ -= count;
    return number;
  }

  /// A number below `count`, of one byte.
  unsigned below(unsigned count) { return take<std::uint8_t>() % count; }
  bool flag() { return below(2) != 0; }

 private:
  const std::uint8_t* data_;
  std::size_t left_;
};

#endif
