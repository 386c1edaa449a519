#include "logs/columns/arrow_array.hpp"

#include <array>
#include <cstdint>
#include <utility>

#include "logs/columns/exported.hpp"

namespace zelk::logs {

namespace {

struct ArrayMemory {
  Buffer rows;
  std::shared_ptr<const TextArray> texts;
  std::array<const void*, 3> buffers{};  ///< the bitmap first; null where there are no nulls
};
using ExportedArray = Exported<ArrowArray, ArrayMemory>;

void export_values(std::unique_ptr<ExportedArray> owner, std::size_t length, std::size_t nulls,
                   std::int64_t buffer_count, ArrowArray& out) {
  out = {};
  out.length = static_cast<std::int64_t>(length);
  out.null_count = static_cast<std::int64_t>(nulls);
  out.n_buffers = buffer_count;
  out.buffers = owner->content.buffers.data();
  ExportedArray::give(std::move(owner), out);
}

void export_texts(const std::shared_ptr<const TextArray>& texts, ArrowArray& out) {
  auto owner = std::make_unique<ExportedArray>();
  owner->content.texts = texts;
  owner->content.buffers = {nullptr, texts->offsets.data(), texts->bytes.data()};
  export_values(std::move(owner), texts->count, 0, 3, out);
}

void export_column(ColumnRows& rows, const std::shared_ptr<const TextArray>& texts,
                   ArrowArray& out) {
  auto owner = std::make_unique<ExportedArray>();
  if (texts) export_texts(texts, owner->dictionary);
  ArrayMemory& memory = owner->content;
  const unsigned char* bitmap = nullptr;
  memory.rows = rows.give_memory(bitmap);
  memory.buffers = {bitmap, memory.rows.data(), nullptr};
  export_values(std::move(owner), rows.size(), rows.null_count(), 2, out);
}

}  // namespace

void export_array(const TablePlan& plan, TableRows& rows,
                  const std::shared_ptr<const TextArray>& channels, ArrowArray& out) {
  auto owner = std::make_unique<ExportedArray>();
  owner->add_children(rows.columns().size());
  for (std::size_t i = 0; i < rows.columns().size(); ++i) {
    const DescriptionTexts* const texts = plan.texts_of(i);
    export_column(rows.column(i),
                  i == kChannelColumn ? channels
                  : texts             ? texts->array()
                                      : nullptr,
                  owner->children[i]);
  }
  export_values(std::move(owner), rows.size(), 0, 1, out);
}

}  // namespace zelk::logs
