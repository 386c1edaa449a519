#include "zelk/logs/reader.hpp"

#include <mutex>
#include <utility>

#include "logs/forms/form.hpp"
#include "logs/input/byte_stream.hpp"

namespace {

using zelk::logs::FileStream;
using zelk::logs::FormRow;
using zelk::logs::PeekedStream;

const FormRow& form_of(PeekedStream& stream, const std::string& wanted, const std::string& log) {
  for (const FormRow& row : zelk::logs::forms()) {
    const bool is_it = wanted.empty() ? row.is_form_of(stream) : wanted == row.form.name;
    if (is_it) return row;
  }
  throw ZelkLogError(log + ": there is no form of logs named \"" + wanted + '"');
}

/// The part of a text. The mark of its encoding stands in front of its first line alone.
std::unique_ptr<PeekedStream> stream_of(std::unique_ptr<FileStream> file,
                                        const ZelkLogRange& range) {
  auto lines = zelk::logs::lines_in(std::move(file), range);
  return range.begin == 0 ? zelk::logs::in_utf8(std::move(lines))
                          : std::make_unique<PeekedStream>(std::move(lines));
}

}  // namespace

ZelkLogError::~ZelkLogError() = default;

struct ZelkLogChunk::Content : zelk::logs::Chunk {};

ZelkLogChunk::ZelkLogChunk() : content_(std::make_unique<Content>()) {}
ZelkLogChunk::ZelkLogChunk(ZelkLogChunk&&) noexcept = default;
ZelkLogChunk& ZelkLogChunk::operator=(ZelkLogChunk&&) noexcept = default;
ZelkLogChunk::~ZelkLogChunk() = default;

struct ZelkLogReader::State {
  /// Begins anew with the part alone, when the form and the times have been told.
  void restrict(const std::string& path, ZelkLogOptions options) {
    if (!is_divisible) {
      throw ZelkLogError(path +
                         ": no part of it can be read alone: it is compressed, in UTF-16 or no "
                         "regular file, or its lines need those in front of them");
    }
    auto part = std::make_unique<FileStream>(path, options.stop);
    file = part.get();
    options.times = ZelkLogTimes::kPoints;
    form = row->open({stream_of(std::move(part), *options.range), path, std::move(options)});
  }

  const FormRow* row = nullptr;
  const FileStream* file = nullptr;  ///< the form has it
  std::unique_ptr<zelk::logs::Form> form;
  std::mutex mutex;  // guards the form's reading, chunks and fault
  std::uint64_t chunks = 0;
  std::optional<ZelkLogError> fault;  // behind which nothing can be read
  bool is_divisible = false;
  ZelkLogChunk chunk;  ///< of `Next`
};

ZelkLogReader::ZelkLogReader(const std::optional<std::string>& path, ZelkLogOptions options)
    : state_(std::make_unique<State>()) {
  auto file = std::make_unique<FileStream>(path, options.stop);
  state_->file = file.get();
  const std::string name = file->name();
  auto stream = zelk::logs::in_utf8(zelk::logs::decompressed(std::move(file), name));
  state_->row = &form_of(*stream, options.form, name);
  const bool is_file = path && stream->is_file();
  state_->form = state_->row->open({std::move(stream), name, options});
  state_->is_divisible = is_file && state_->form->has_independent_lines();
  if (options.range) state_->restrict(name, std::move(options));
}

ZelkLogReader::~ZelkLogReader() = default;

std::vector<ZelkLogForm> ZelkLogReader::Forms() {
  std::vector<ZelkLogForm> forms;
  for (const FormRow& row : zelk::logs::forms()) forms.push_back(row.form);
  return forms;
}

bool ZelkLogReader::Next(ZelkLogBlock& block) {
  if (!Take(state_->chunk)) return false;
  Parse(state_->chunk, block);
  return true;
}

bool ZelkLogReader::Take(ZelkLogChunk& chunk) {
  const std::lock_guard lock(state_->mutex);
  if (state_->fault) throw ZelkLogError(*state_->fault);
  try {
    if (!state_->form->next(*chunk.content_)) return false;
  } catch (const ZelkLogError& fault) {
    state_->fault = fault;
    throw;
  }
  chunk.content_->number = state_->chunks++;
  return true;
}

void ZelkLogReader::Parse(ZelkLogChunk& chunk, ZelkLogBlock& block) const {
  block.frames.Clear();
  block.malformed.clear();
  block.counts = {};
  block.number = chunk.content_->number;
  state_->form->parse(*chunk.content_, block);
}

const std::string& ZelkLogReader::Name() const { return state_->file->name(); }

ZelkLogForm ZelkLogReader::Form() const { return state_->row->form; }

bool ZelkLogReader::IsDivisible() const { return state_->is_divisible; }

std::optional<std::uint64_t> ZelkLogReader::SizeBytes() const { return state_->file->size(); }

std::uint64_t ZelkLogReader::BytesRead() const { return state_->file->bytes_read(); }
