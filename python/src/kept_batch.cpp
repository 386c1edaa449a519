// Batches that are kept, in as few pages of memory as there can be.

#include <array>
#include <cstring>
#include <utility>

#include "large_memory.hpp"
#include "logs/columns/exported.hpp"
#include "table.hpp"

namespace zelk::python {
namespace {

constexpr std::size_t kAlignment = 64;

struct ColumnMemory {
  std::shared_ptr<unsigned char> memory;  ///< of the whole batch
  std::array<const void*, 2> buffers{};
};
using KeptArray = logs::Exported<ArrowArray, ColumnMemory>;

std::size_t padded(std::size_t size) { return (size + kAlignment - 1) / kAlignment * kAlignment; }

struct ColumnSizes {
  std::size_t bitmap;
  std::size_t values;
};

ColumnSizes sizes_of(const ArrowArray& column, ZelkColumnType type) {
  const auto rows = static_cast<std::size_t>(column.length);
  return {column.null_count != 0 && column.buffers[0] ? (rows + 7) / 8 : 0, rows * width_of(type)};
}

/// Copies bytes behind those that were copied before, and zeros up to the next alignment.
const void* append(unsigned char*& end, const void* from, std::size_t size) {
  if (size == 0) return nullptr;
  unsigned char* const begin = end;
  std::memcpy(begin, from, size);
  std::memset(begin + size, 0, padded(size) - size);
  end += padded(size);
  return begin;
}

void give(std::unique_ptr<KeptArray> owner, const ArrowArray& like, ArrowArray& out) {
  out = like;
  out.buffers = owner->content.buffers.data();
  KeptArray::give(std::move(owner), out);
}

}  // namespace

ArrowArray kept(ArrowArray batch, const TableHead& head) {
  std::size_t size = 0;
  for (std::size_t i = 0; i < head.columns.size(); ++i) {
    const ColumnSizes sizes = sizes_of(*batch.children[i], head.columns[i].type);
    size += padded(sizes.bitmap) + padded(sizes.values);
  }
  if (size < kLargePage) return batch;
  const SharedArray original = shared(batch);
  const std::shared_ptr<unsigned char> memory = large_memory(size);
  unsigned char* end = memory.get();
  auto owner = std::make_unique<KeptArray>();
  owner->add_children(head.columns.size());
  for (std::size_t i = 0; i < head.columns.size(); ++i) {
    const ArrowArray& column = *original->children[i];
    const ColumnSizes sizes = sizes_of(column, head.columns[i].type);
    auto child = std::make_unique<KeptArray>();
    child->content.memory = memory;
    child->content.buffers = {append(end, column.buffers[0], sizes.bitmap),
                              append(end, column.buffers[1], sizes.values)};
    if (column.dictionary) child->dictionary = std::exchange(*column.dictionary, ArrowArray{});
    give(std::move(child), column, owner->children[i]);
  }
  ArrowArray result{};
  give(std::move(owner), *original, result);
  return result;
}

}  // namespace zelk::python
