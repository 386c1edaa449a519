#include "whole_batches.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <new>
#include <utility>

#include "large_memory.hpp"
#include "logs/columns/bits.hpp"
#include "logs/columns/exported.hpp"

namespace zelk::python {
namespace {

struct ColumnMemory {
  std::shared_ptr<unsigned char> memory;  ///< of the whole batch
  std::array<const void*, 2> buffers{};
};
using WholeArray = logs::Exported<ArrowArray, ColumnMemory>;

constexpr std::size_t kAlignment = 64;

std::size_t padded(std::size_t size) { return (size + kAlignment - 1) / kAlignment * kAlignment; }

/// `append_bits` writes a word behind the last bit.
std::size_t bitmap_size(std::size_t rows) {
  return padded((logs::words_for(rows) + 1) * sizeof(std::uint64_t));
}

struct Place {
  unsigned char* to;
  std::size_t size;  ///< of the values, in bytes
};

void pad(unsigned char* bytes, std::size_t size) {
  std::memset(bytes + size, 0, padded(size) - size);
}

}  // namespace

SharedArray kept(ArrowArray batch, const std::shared_ptr<const TableHead>& head) {
  WholeBatches batches(head);
  const auto copying = batches.append(batch, static_cast<std::size_t>(batch.length));
  if (copying) copying();
  return batches.finish().front();
}

WholeBatches::Copying WholeBatches::append(ArrowArray batch, std::size_t expected) {
  SharedArray rows = shared(batch);
  const auto count = static_cast<std::size_t>(rows->length);
  row_count_ += count;
  if (count > room_ - size_) {
    close();
    if (count >= expected && size_for(count) < kLargePage) {
      done_.push_back(std::move(rows));
      return {};
    }
    open(count, expected);
  }
  std::vector<Place> places;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    Column& column = columns_[i];
    append_nulls(column, *rows->children[i]);
    places.push_back({column.values + size_ * column.width, count * column.width});
  }
  size_ += count;
  last_ = rows;
  return [rows = std::move(rows), memory = memory_, places = std::move(places)] {
    for (std::size_t i = 0; i < places.size(); ++i)
      std::memcpy(places[i].to, rows->children[i]->buffers[1], places[i].size);
  };
}

std::vector<SharedArray> WholeBatches::finish() {
  close();
  return std::move(done_);
}

std::size_t WholeBatches::size_for(std::size_t rows) const {
  std::size_t size = 0;
  for (const ColumnHead& column : head_->columns)
    size += padded(rows * width_of(column.type)) + bitmap_size(rows);
  return size;
}

/// @param least  rows, when there is no memory for more
void WholeBatches::open(std::size_t least, std::size_t wanted) {
  std::size_t rows = std::max(least, wanted);
  try {
    memory_ = large_memory(size_for(rows));
  } catch (const std::bad_alloc&) {
    rows = least;  // fewer may come than were expected
    memory_ = large_memory(size_for(rows));
  }
  room_ = rows;
  unsigned char* next = memory_.get();
  for (const ColumnHead& head : head_->columns) {
    const std::size_t width = width_of(head.type);
    unsigned char* const bitmap = next + padded(rows * width);
    columns_.push_back({next, reinterpret_cast<std::uint64_t*>(bitmap), width});
    next = bitmap + bitmap_size(rows);
  }
}

void WholeBatches::append_nulls(Column& column, const ArrowArray& from) const {
  const auto count = static_cast<std::size_t>(from.length);
  const auto nulls = static_cast<std::size_t>(from.null_count);
  const auto all_set = [](std::size_t) { return ~std::uint64_t{0}; };
  if (nulls > 0 && column.null_count == 0) logs::append_bits(column.bitmap, 0, size_, all_set);
  column.null_count += nulls;
  if (column.null_count == 0) return;
  if (nulls == 0) return logs::append_bits(column.bitmap, size_, count, all_set);
  const auto* const valid = static_cast<const std::uint64_t*>(from.buffers[0]);
  logs::append_bits(column.bitmap, size_, count, logs::bits_from(valid, 0));
}

/// Ends the batch that grows.
void WholeBatches::close() {
  if (size_ > 0) {
    auto owner = std::make_unique<WholeArray>();
    owner->add_children(columns_.size());
    for (std::size_t i = 0; i < columns_.size(); ++i)
      give_column(columns_[i], *last_->children[i], owner->children[i]);
    ArrowArray result = *last_;
    result.length = static_cast<std::int64_t>(size_);
    result.buffers = owner->content.buffers.data();
    WholeArray::give(std::move(owner), result);
    done_.push_back(shared(result));
  }
  columns_.clear();
  memory_.reset();
  last_.reset();
  room_ = size_ = 0;
}

/// @param last  has all texts of the column so far, which are moved out
void WholeBatches::give_column(const Column& column, const ArrowArray& last,
                               ArrowArray& out) const {
  auto owner = std::make_unique<WholeArray>();
  owner->content.memory = memory_;
  owner->content.buffers[1] = column.values;
  pad(column.values, size_ * column.width);
  if (column.null_count > 0) {
    owner->content.buffers[0] = column.bitmap;
    pad(reinterpret_cast<unsigned char*>(column.bitmap), (size_ + 7) / 8);
  }
  if (last.dictionary) owner->dictionary = std::exchange(*last.dictionary, ArrowArray{});
  out = last;
  out.length = static_cast<std::int64_t>(size_);
  out.null_count = static_cast<std::int64_t>(column.null_count);
  out.buffers = owner->content.buffers.data();
  WholeArray::give(std::move(owner), out);
}

}  // namespace zelk::python
