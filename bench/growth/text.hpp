/// \file
/// Texts of many lines that resemble each other.

#ifndef ZELK_BENCH_GROWTH_TEXT_HPP
#define ZELK_BENCH_GROWTH_TEXT_HPP

#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>

namespace zelk::bench {

/// The numbers from which the names and identifiers of a text are made.
struct Numbers {
  std::size_t first;
  std::size_t count;
};

/// Appends texts, characters and numbers.
template <typename... Parts>
void put(std::string& text, const Parts&... parts) {
  const auto put_one = [&text](const auto& part) {
    using Part = std::decay_t<decltype(part)>;
    if constexpr (std::is_integral_v<Part> && !std::is_same_v<Part, char>) {
      text += std::to_string(part);
    } else {
      text += part;
    }
  };
  (put_one(parts), ...);
}

/// What `put_one(text, number)` appends for all numbers.
template <typename PutOne>
std::string each(Numbers numbers, const PutOne& put_one) {
  std::string text;
  for (std::size_t i = 0; i < numbers.count; ++i) put_one(text, numbers.first + i);
  return text;
}

/// An identifier of 29 bits, as files have it.
inline std::uint32_t extended_id(std::size_t number) {
  return 0x80000000U | static_cast<std::uint32_t>(number & 0x1FFFFFFFU);
}

}  // namespace zelk::bench

#endif
