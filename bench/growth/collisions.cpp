#include "growth/collisions.hpp"

#include <array>
#include <cstring>
#include <functional>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace zelk::bench {
namespace {

// std::hash mixes words of 8 bytes one after the other:
//
//     hash = (hash ^ mixed(word)) * kMultiplier
//
// Every step can be reversed, so for any first word there is a second one that leads to a given
// hash. One in 75,000 of these consists of letters, digits and underscores alone.

constexpr std::uint64_t kMultiplier = 0xC6A4A7935BD1E995U;
constexpr std::uint64_t kSeed = 0xC70F6907U;
constexpr std::string_view kCharacters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_0123456789";
constexpr std::size_t kLetters = 52;

/// The number whose product with `odd` is 1: each round doubles the correct bits.
constexpr std::uint64_t inverse_of(std::uint64_t odd) {
  std::uint64_t inverse = odd;
  for (int round = 0; round < 5; ++round) inverse *= 2 - odd * inverse;
  return inverse;
}
constexpr std::uint64_t kInverse = inverse_of(kMultiplier);

/// Its own inverse.
constexpr std::uint64_t folded(std::uint64_t word) { return word ^ word >> 47; }
constexpr std::uint64_t mixed(std::uint64_t word) {
  return folded(word * kMultiplier) * kMultiplier;
}
constexpr std::uint64_t unmixed(std::uint64_t word) { return folded(word * kInverse) * kInverse; }

/// The number-th text of 8 characters that begins with a letter.
std::uint64_t first_word(std::uint64_t number) {
  std::array<char, 8> text{};
  text[0] = kCharacters[number % kLetters];
  number /= kLetters;
  for (std::size_t i = 1; i < text.size(); ++i, number /= kCharacters.size())
    text[i] = kCharacters[number % kCharacters.size()];
  std::uint64_t word = 0;
  std::memcpy(&word, text.data(), text.size());
  return word;
}

class NameSearch {
 public:
  NameSearch() {
    for (const char c : kCharacters) is_wanted_[static_cast<unsigned char>(c)] = true;
  }

  std::string next() {
    while (true) {
      const std::uint64_t first = first_word(number_++);
      const std::uint64_t second = unmixed((kStart ^ mixed(first)) * kMultiplier);
      if (is_name(second)) return text_of({first, second});
    }
  }

 private:
  static constexpr std::uint64_t kStart = kSeed ^ 2 * sizeof(std::uint64_t) * kMultiplier;

  bool is_name(std::uint64_t word) const {
    for (; word != 0; word >>= 8) {
      if (!is_wanted_[word & 0xFFU]) return false;
    }
    return true;
  }
  static std::string text_of(const std::array<std::uint64_t, 2>& words) {
    std::string text(sizeof words, '\0');
    std::memcpy(text.data(), words.data(), sizeof words);
    return text;
  }

  std::array<bool, 256> is_wanted_{};
  std::uint64_t number_ = 0;
};

std::vector<std::string> find_names() {
  NameSearch search;
  std::vector<std::string> names;
  while (names.size() < kCollidingNames) {
    names.push_back(search.next());
    if (std::hash<std::string>()(names.back()) != std::hash<std::string>()(names.front()))
      throw std::runtime_error("the hash of this standard library is another one");
  }
  return names;
}

}  // namespace

const std::string& colliding_name(std::size_t number) {
  static const std::vector<std::string> names = find_names();
  return names[number % names.size()];
}

std::uint32_t colliding_id(std::size_t number) {
  return static_cast<std::uint32_t>(number % 25869) * 20753U;
}

}  // namespace zelk::bench
