/// Arrays of the Arrow C data interface, as a receiver reads them.
#ifndef ZELK_TESTS_LOGS_ARROW_READING_HPP
#define ZELK_TESTS_LOGS_ARROW_READING_HPP

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

#include "zelk/logs/arrow.h"

/// Releases an array, type or stream at its end.
template <typename Structure>
struct Received : Structure {
  Received() : Structure{} {}
  Received(const Received&) = delete;
  Received& operator=(const Received&) = delete;
  ~Received() { reset(); }
  void reset() {
    if (this->release) this->release(this);
  }
};

inline bool is_null(const ArrowArray& array, std::int64_t row) {
  const auto* const bits = static_cast<const unsigned char*>(array.buffers[0]);
  return bits && (bits[row / 8] >> row % 8 & 1) == 0;
}

template <typename Value>
std::int64_t value_at(const ArrowArray& array, std::int64_t row) {
  return static_cast<std::int64_t>(static_cast<const Value*>(array.buffers[1])[row]);
}

/// An integer, or the bits of a float or double; none for null.
inline std::optional<std::int64_t> number_at(const ArrowArray& array, std::string_view format,
                                             std::int64_t row) {
  if (is_null(array, row)) return std::nullopt;
  if (format == "c") return value_at<std::int8_t>(array, row);
  if (format == "s") return value_at<std::int16_t>(array, row);
  if (format == "i") return value_at<std::int32_t>(array, row);
  if (format == "C") return value_at<std::uint8_t>(array, row);
  if (format == "S") return value_at<std::uint16_t>(array, row);
  if (format == "I" || format == "f") return value_at<std::uint32_t>(array, row);
  EXPECT_TRUE(format == "l" || format == "L" || format == "g") << format;
  return value_at<std::int64_t>(array, row);
}

/// The text of a dictionary; none for null.
inline std::optional<std::string> text_at(const ArrowArray& array, std::int64_t row) {
  if (is_null(array, row)) return std::nullopt;
  const auto index = value_at<std::int32_t>(array, row);
  const ArrowArray& texts = *array.dictionary;
  EXPECT_TRUE(index >= 0 && index < texts.length);
  const std::int64_t begin = value_at<std::int32_t>(texts, index);
  const std::int64_t end = value_at<std::int32_t>(texts, index + 1);
  return std::string(static_cast<const char*>(texts.buffers[2]) + begin,
                     static_cast<std::size_t>(end - begin));
}

/// What every array has to keep: aligned buffers, as many nulls as it says, zeros for these and as
/// padding.
inline void check_layout(const ArrowArray& array, std::size_t width) {
  for (std::int64_t i = 0; i < array.n_buffers; ++i)
    ASSERT_EQ(reinterpret_cast<std::uintptr_t>(array.buffers[i]) % 64, 0u);
  const auto* const bytes = static_cast<const unsigned char*>(array.buffers[1]);
  std::int64_t nulls = 0;
  for (std::int64_t row = 0; row < array.length; ++row) {
    if (!is_null(array, row)) continue;
    ++nulls;
    for (std::size_t i = 0; i < width; ++i)
      ASSERT_EQ(bytes[static_cast<std::size_t>(row) * width + i], 0);
  }
  ASSERT_EQ(array.null_count, nulls);
  ASSERT_EQ(array.buffers[0] == nullptr, nulls == 0);
  for (std::size_t i = static_cast<std::size_t>(array.length) * width; i % 64 != 0; ++i)
    ASSERT_EQ(bytes[i], 0);
}

#endif
