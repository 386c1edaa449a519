#include "logs/columns/column_rows.hpp"

#include <gtest/gtest.h>

#include <array>
#include <deque>
#include <optional>
#include <random>

namespace zelk::logs {
namespace {

TEST(ColumnBits, ArePackedFromBytesWhateverStandsBehindThem) {
  std::array<std::uint8_t, 192> bytes{};
  for (std::size_t count = 1; count <= 130; ++count) {
    bytes.fill(0xFF);
    for (std::size_t i = 0; i < count; ++i) bytes[i] = i % 3 == 1 ? 1 : 0;
    std::array<std::uint64_t, 3> words{};
    pack_bits(bytes.data(), count, words.data());
    for (std::size_t i = 0; i < words_for(count) * 64; ++i)
      ASSERT_EQ(is_set(words.data(), i), i < count && i % 3 == 1) << count << ": " << i;
  }
}

/// Rows are added in all ways and taken out again, beside a queue of what they are.
TEST(ColumnRows, GiveInOrderWhatWasAdded) {
  std::mt19937 random;
  const auto up_to = [&random](std::size_t most) { return random() % (most + 1); };
  for (int round = 0; round < 200; ++round) {
    const bool has_nulls = round % 3 != 0;
    std::deque<std::optional<std::uint16_t>> expected;
    ColumnRows rows(2), others(2);
    for (int step = 0; step < 60; ++step) {
      ColumnRows& to = step % 3 == 0 ? others : rows;
      const std::size_t count = 1 + up_to(round % 2 == 0 ? 200 : 20);
      to.reserve(count, up_to(300));
      std::array<std::uint64_t, 5> valid{};
      std::deque<std::optional<std::uint16_t>> added(count);
      for (std::size_t i = 0; i < count; ++i) {
        if (has_nulls && up_to(9) == 0) continue;
        added[i] = static_cast<std::uint16_t>(random());
        reinterpret_cast<std::uint16_t*>(to.end())[i] = *added[i];
        valid[i / 64] |= little_endian(std::uint64_t{1} << i % 64);
      }
      const std::size_t nulls = clear_bits(count, bits_from(valid.data(), 0));
      nulls == 0       ? to.add(count)
      : nulls == count ? to.add_nulls(count)
                       : to.add(count, valid.data(), nulls);
      if (&to == &others) {
        rows.reserve(others.size(), 300);
        rows.append(others);
        others.clear();
      }
      expected.insert(expected.end(), added.begin(), added.end());
      ASSERT_EQ(rows.size(), expected.size());
      if (up_to(2) > 0) continue;
      const std::size_t taken = up_to(3) == 0 ? rows.size() : up_to(rows.size());
      ColumnRows batch = rows.take(taken, rows.copied_to_take(taken));
      const std::size_t batch_nulls = batch.null_count();
      const unsigned char* bitmap = nullptr;
      const Buffer values = batch.give_memory(bitmap);
      ASSERT_EQ(bitmap == nullptr, batch_nulls == 0);
      for (std::size_t i = 0; i < taken; ++i) {
        const bool is_valid = batch_nulls == 0 || (bitmap[i / 8] >> i % 8 & 1) != 0;
        ASSERT_EQ(is_valid, expected.front().has_value()) << i;
        if (is_valid) {
          ASSERT_EQ(reinterpret_cast<const std::uint16_t*>(values.data())[i], *expected.front());
        }
        expected.pop_front();
      }
    }
  }
}

}  // namespace
}  // namespace zelk::logs
