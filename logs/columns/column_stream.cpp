#include "zelk/logs/column_stream.hpp"

#include <cerrno>
#include <exception>
#include <new>
#include <optional>
#include <string>
#include <utility>

#include "logs/columns/arrow_schema.hpp"
#include "logs/columns/state.hpp"

struct ZelkColumnStream::State {
  State(std::shared_ptr<const zelk::logs::ColumnPlan> plan, std::size_t at, ReadBlock reading)
      : rows(std::move(plan)), table(at), read(std::move(reading)) {}

  /// Reads and decodes a block. What reading throws is kept until the rows are given.
  void read_block() {
    try {
      is_end = !read(block);
    } catch (...) {
      is_end = true;
      fault = std::current_exception();
    }
    if (!is_end) rows.decode(block, table);
  }

  zelk::logs::ColumnStore rows;
  std::size_t table;
  ReadBlock read;
  ZelkFrameBlock block;
  bool is_end = false;
  std::exception_ptr fault;
};

ZelkColumnStream::ZelkColumnStream(ZelkColumnDecoder& decoder, std::size_t table, ReadBlock read) {
  static_cast<void>(decoder.Tables().at(table));
  state_ = std::make_unique<State>(decoder.state_->prepared().plan(), table, std::move(read));
}
ZelkColumnStream::ZelkColumnStream(ZelkColumnStream&&) noexcept = default;
ZelkColumnStream& ZelkColumnStream::operator=(ZelkColumnStream&&) noexcept = default;
ZelkColumnStream::~ZelkColumnStream() = default;

void ZelkColumnStream::GetSchema(ArrowSchema* out) const {
  zelk::logs::export_schema(state_->rows.plan()->tables()[state_->table].columns, *out);
}

bool ZelkColumnStream::Next(ArrowArray* out) {
  while (!state_->rows.take_batch(state_->table, state_->is_end, *out)) {
    if (state_->fault) std::rethrow_exception(std::exchange(state_->fault, nullptr));
    if (state_->is_end) return false;
    state_->block.Clear();
    state_->read_block();
  }
  return true;
}

namespace {

/// What a stream of the C interface owns.
struct ExportedStream {
  /// Calls `action`, and turns an exception into an error code.
  template <typename Action>
  int guarded(const Action& action) {
    error.reset();
    try {
      action();
      return 0;
    } catch (const std::bad_alloc&) {
      error = "no memory";  // short enough to need none
      return ENOMEM;
    } catch (const std::exception& e) {
      return keep(e.what());
    } catch (...) {
      return keep("unknown error");
    }
  }

  int keep(const char* text) {
    try {
      error = text;
    } catch (const std::bad_alloc&) {
      error = "no memory";
    }
    return EIO;
  }

  ZelkColumnStream stream;
  std::optional<std::string> error;  ///< of the last call
};

ExportedStream& exported(ArrowArrayStream* stream) {
  return *static_cast<ExportedStream*>(stream->private_data);
}

int get_schema(ArrowArrayStream* stream, ArrowSchema* out) {
  return exported(stream).guarded([&] { exported(stream).stream.GetSchema(out); });
}

int get_next(ArrowArrayStream* stream, ArrowArray* out) {
  return exported(stream).guarded([&] {
    if (!exported(stream).stream.Next(out)) *out = {};
  });
}

const char* get_last_error(ArrowArrayStream* stream) {
  const std::optional<std::string>& error = exported(stream).error;
  return error ? error->c_str() : nullptr;
}

void release(ArrowArrayStream* stream) {
  delete &exported(stream);
  stream->release = nullptr;
}

}  // namespace

void ZelkColumnStream::Export(ArrowArrayStream* out) && {
  auto owner = std::make_unique<ExportedStream>(ExportedStream{std::move(*this), std::nullopt});
  *out = {get_schema, get_next, get_last_error, release, owner.release()};
}
