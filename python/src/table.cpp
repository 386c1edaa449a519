#include "table.hpp"

#include <cerrno>
#include <new>
#include <numeric>
#include <utility>

#include "logs/columns/exported.hpp"

namespace zelk::python {
namespace {

template <typename Structure>
std::shared_ptr<const Structure> shared_structure(const Structure& structure) {
  const auto release = [](Structure* owned) {
    if (owned->release) owned->release(owned);
    delete owned;
  };
  std::shared_ptr<Structure> owner(new Structure{}, release);
  *owner = structure;
  return owner;
}

/// A structure that keeps the one whose memory it shows.
template <typename Structure>
using Sharing = logs::Exported<Structure, std::shared_ptr<const Structure>>;

template <typename Structure>
std::unique_ptr<Sharing<Structure>> sharing(const std::shared_ptr<const Structure>& root) {
  auto owner = std::make_unique<Sharing<Structure>>();
  owner->content = root;
  return owner;
}

/// @param of  a structure without children in `root`
template <typename Structure>
void share_column(const std::shared_ptr<const Structure>& root, const Structure& of,
                  Structure& out) {
  auto owner = sharing(root);
  if (of.dictionary) share_column(root, *of.dictionary, owner->dictionary);
  out = of;
  Sharing<Structure>::give(std::move(owner), out);
}

template <typename Structure>
void share_columns(const std::shared_ptr<const Structure>& root,
                   const std::vector<std::size_t>& columns, Structure& out) {
  auto owner = sharing(root);
  owner->add_children(columns.size());
  for (std::size_t i = 0; i < columns.size(); ++i)
    share_column(root, *root->children[columns[i]], owner->children[i]);
  out = *root;
  Sharing<Structure>::give(std::move(owner), out);
}

struct Stream {
  TableRows rows;
  std::size_t next = 0;
};

Stream& stream_of(ArrowArrayStream* stream) { return *static_cast<Stream*>(stream->private_data); }

/// An error code for the only exception that there is.
template <typename Action>
int guarded(const Action& action) {
  try {
    action();
    return 0;
  } catch (const std::bad_alloc&) {
    return ENOMEM;
  }
}

int get_schema(ArrowArrayStream* stream, ArrowSchema* out) {
  return guarded([&] { stream_of(stream).rows.export_schema(*out); });
}

int get_next(ArrowArrayStream* stream, ArrowArray* out) {
  Stream& state = stream_of(stream);
  *out = {};
  if (state.next == state.rows.batches().size()) return 0;
  return guarded([&] {
    state.rows.export_batch(state.next, *out);
    ++state.next;
  });
}

const char* get_last_error(ArrowArrayStream*) { return nullptr; }

void release_stream(ArrowArrayStream* stream) {
  delete &stream_of(stream);
  stream->release = nullptr;
}

}  // namespace

SharedArray shared(ArrowArray array) { return shared_structure(array); }
SharedSchema shared(ArrowSchema schema) { return shared_structure(schema); }

TableRows::TableRows(std::shared_ptr<const TableHead> head, std::vector<SharedArray> batches)
    : head_(std::move(head)), batches_(std::move(batches)), columns_(head_->columns.size()) {
  std::iota(columns_.begin(), columns_.end(), std::size_t{0});
  for (const SharedArray& batch : batches_) row_count_ += static_cast<std::size_t>(batch->length);
}

TableRows TableRows::joined(const std::vector<const TableRows*>& parts) {
  TableRows result = *parts.front();
  for (std::size_t i = 1; i < parts.size(); ++i) {
    const TableRows& part = *parts[i];
    if (part.head_ != result.head_ || part.columns_ != result.columns_)
      throw Failure(FailureKind::kArgument, "rows of different tables cannot be joined");
    result.batches_.insert(result.batches_.end(), part.batches_.begin(), part.batches_.end());
    result.row_count_ += part.row_count_;
  }
  return result;
}

TableRows TableRows::with_columns(const std::vector<std::size_t>& columns) const {
  TableRows result = *this;
  result.columns_.clear();
  for (const std::size_t column : columns) result.columns_.push_back(columns_.at(column));
  return result;
}

void TableRows::export_schema(ArrowSchema& out) const {
  share_columns(head_->schema, columns_, out);
}

void TableRows::export_batch(std::size_t batch, ArrowArray& out) const {
  share_columns(batches_.at(batch), columns_, out);
}

void TableRows::export_stream(ArrowArrayStream& out) const {
  auto state = std::make_unique<Stream>(Stream{*this});
  out = {get_schema, get_next, get_last_error, release_stream, state.release()};
}

}  // namespace zelk::python
