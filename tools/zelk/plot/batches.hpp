/// \file
/// Batches of decoded rows, as their reader wants them.

#ifndef ZELK_TOOL_PLOT_BATCHES_HPP
#define ZELK_TOOL_PLOT_BATCHES_HPP

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "zelk/logs/columns.hpp"

namespace zelk::tool {

/// A column of a batch; valid as long as that.
class BatchColumn {
 public:
  explicit BatchColumn(const ArrowArray& array)
      : array_(array), valid_(static_cast<const unsigned char*>(array.buffers[0])) {}

  bool has(std::size_t row) const {
    const std::size_t bit = row + static_cast<std::size_t>(array_.offset);
    return !valid_ || (valid_[bit / 8] >> bit % 8 & 1) != 0;
  }
  template <typename Value>
  Value value(std::size_t row) const {
    return static_cast<const Value*>(
        array_.buffers[1])[array_.offset + static_cast<std::int64_t>(row)];
  }
  /// The text of a dictionary.
  std::string_view text(std::size_t index) const {
    const ArrowArray& texts = *array_.dictionary;
    const auto* const ends = static_cast<const std::int32_t*>(texts.buffers[1]) + texts.offset;
    const auto begin = static_cast<std::size_t>(ends[index]);
    return std::string_view(static_cast<const char*>(texts.buffers[2]) + begin,
                            static_cast<std::size_t>(ends[index + 1]) - begin);
  }

 private:
  const ArrowArray& array_;
  const unsigned char* valid_;  // bits; null: all have values
};

/// Rows of one table.
class Batch {
 public:
  Batch() = default;
  Batch(const Batch&) = delete;
  Batch& operator=(const Batch&) = delete;
  ~Batch() { release(); }

  /// Takes the next rows of a table out of a decoder, as `ZelkColumnDecoder::TakeBatch`.
  bool take(ZelkColumnDecoder& decoder, std::size_t table, bool is_end) {
    release();
    return decoder.TakeBatch(table, is_end, &array_);
  }

  std::size_t size() const { return static_cast<std::size_t>(array_.length); }
  BatchColumn column(std::size_t index) const { return BatchColumn(*array_.children[index]); }

 private:
  void release() {
    if (array_.release) array_.release(&array_);
  }

  ArrowArray array_{};
};

/// The columns in front of those of the signals.
enum : std::size_t { kTimeColumn = 0, kChannelColumn = 1, kFirstSignalColumn = 2 };

}  // namespace zelk::tool

#endif
