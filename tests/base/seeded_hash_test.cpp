#include "base/seeded_hash.hpp"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

TEST(SeededHash, FoldsBothHalvesOfTheProduct) {
  constexpr uint64_t kAll = 0xFFFFFFFFFFFFFFFF;
  const struct {
    uint64_t a, b, folded;
  } cases[] = {{0, kAll, 0},
               {kAll, kAll, kAll},  // high 0xFFFFFFFFFFFFFFFE, low 1
               {0x8000000000000000, 3, 0x8000000000000001},
               {0xFFFFFFFF00000000, 0x00000001FFFFFFFF, 0xFFFFFFFD},
               {0x123456789ABCDEF0, 0x0FEDCBA987654321, 0x2317228F48165BB2}};
  for (const auto& c : cases) {
    const zelk::WideProduct product = zelk::wide_product(c.a, c.b);
    EXPECT_EQ(product.high ^ product.low, c.folded) << c.a;
  }
}

// Bit 63 of one word and bits 63 and 31 of the next, flipped together in each of 8 pairs of words:
// the low halves of the products alone are the same for all 256 keys, under every seed.
TEST(SeededHash, KeepsFlippedUpperBitsApart) {
  for (const uint64_t seed : {uint64_t{1} << 40 | 1, uint64_t{0x9E3779B97F4A7C15}}) {
    std::set<std::size_t> texts, numbers;
    for (unsigned choice = 0; choice < 256; ++choice) {
      std::string key(128, 'a');
      for (std::size_t pair = 0; pair < 8; ++pair) {
        if ((choice >> pair & 1) == 0) continue;
        for (const std::size_t byte : {7, 15, 11}) key[16 * pair + byte] = '\xE1';
      }
      texts.insert(zelk::SeededHash{seed}(key));
      numbers.insert(zelk::SeededHash{seed}(uint64_t{choice} << 56));
    }
    // Where a hash has 32 bits, few keys may have the same one by chance.
    EXPECT_GT(texts.size(), 240u);
    EXPECT_GT(numbers.size(), 240u);
  }
}

}  // namespace
