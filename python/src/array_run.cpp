#include "array_run.hpp"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <exception>
#include <system_error>
#include <thread>
#include <utility>

#include "frame_run.hpp"
#include "logs/frames/filler.hpp"

namespace zelk::python {
namespace {

constexpr std::size_t kBlockFrames = 4096;
constexpr std::size_t kPartBlocks = 256;

/// Few frames are done before a thread has started.
std::size_t threads_for(const ArrayRunOptions& options, std::size_t frames) {
  constexpr std::size_t kWorthThreads = 16 * kBlockFrames;
  if (options.transport) return 1;
  const std::size_t most = std::max<std::size_t>(frames / kBlockFrames, 1);
  if (options.threads > 0) return std::min<std::size_t>(options.threads, most);
  if (frames < kWorthThreads) return 1;
  return std::clamp<std::size_t>(std::thread::hardware_concurrency(), 1, most);
}

void copy(std::vector<WholeBatches::Copying>& copying) {
  for (const WholeBatches::Copying& one : copying)
    if (one) one();
  copying.clear();
}

}  // namespace

void FrameArrays::check() const {
  const std::size_t count = ids.size();
  const auto fits = [count](const auto& array) { return array.empty() || array.size() == count; };
  const bool has_lengths = lengths.size() == count || lengths.size() == 1;
  if (!has_lengths || !fits(offsets) || !fits(times) || !fits(channels))
    throw Failure(FailureKind::kArgument, "the arrays of frames have different lengths");
  for (std::size_t i = 0; i < channels.size(); ++i)
    if (channels[i] >= names.size()) throw Failure(FailureKind::kArgument, "a channel has no name");
  for (std::size_t i = 0; i < count; ++i) {
    if (offset(i) <= data.size() && length(i) <= data.size() - offset(i)) continue;
    throw Failure(FailureKind::kArgument,
                  "frame " + std::to_string(i) + " has " + std::to_string(length(i)) +
                      " bytes from " + std::to_string(static_cast<std::int64_t>(offset(i))) +
                      " on, and the data has " + std::to_string(data.size()));
  }
}

struct ArrayRun::Part {
  std::size_t first;
  std::size_t end;
  std::atomic<std::size_t> next_block = 0;
  logs::BlockTurns turns{};
  std::mutex mutex{};  ///< guards the following
  std::exception_ptr fault{};
};

ArrayRun::ArrayRun(std::shared_ptr<Decoding> decoding, const FrameArrays& frames,
                   ArrayRunOptions options)
    : decoding_(std::move(decoding)),
      frames_(frames),
      options_(options),
      workers_(threads_for(options, frames.ids.size())) {
  if (options.transport) transport_.emplace();
  for (const auto& head : decoding_->heads()) tables_.emplace_back(head);
}

void ArrayRun::decode_part() {
  const std::size_t count = std::min(frames_.ids.size() - begin_, kPartBlocks * kBlockFrames);
  Part part{begin_, begin_ + count};
  begin_ = part.end;
  {
    std::vector<std::jthread> helpers;
    helpers.reserve(workers_.size());
    try {
      for (std::size_t i = 1; i < workers_.size(); ++i)
        helpers.emplace_back([this, &part, &worker = workers_[i]] { work(worker, part); });
    } catch (const std::system_error&) {
      // The threads that there are do the work.
    }
    work(workers_.front(), part);
  }
  if (part.fault) std::rethrow_exception(part.fault);
}

void ArrayRun::work(Worker& worker, Part& part) {
  for (;;) {
    const std::size_t number = part.next_block++;
    if (number >= (part.end - part.first + kBlockFrames - 1) / kBlockFrames) return;
    const std::size_t first = part.first + number * kBlockFrames;
    const std::size_t count = std::min(part.end - first, kBlockFrames);
    try {
      fill(worker.block, first, count);
      if (transport_) transport_->Assemble(worker.block);
      decoding_->decoder().Decode(worker.block, worker.rows);
      if (!part.turns.pass(number, [&] { put(worker); })) return;
      copy(worker.copying);
    } catch (...) {
      part.turns.end_at(number);
      const std::lock_guard lock(part.mutex);
      part.fault = std::current_exception();
      return;
    }
  }
}

void ArrayRun::fill(ZelkFrameBlock& block, std::size_t first, std::size_t count) const {
  constexpr std::size_t kWord = 8;
  block.Clear();
  std::vector<std::uint16_t> channels;
  for (const std::string& name : frames_.names) channels.push_back(block.ChannelIndex(name));
  ZelkFrameFiller filler(block);
  if (frames_.have_one_layout()) {
    const auto part = [&](auto all) { return all.empty() ? all : all.subspan(first, count); };
    filler.append_alike(part(frames_.times), part(frames_.ids), channels.front(),
                        frames_.data.data() + frames_.offset(first), frames_.stride,
                        frames_.length(first));
    return;
  }
  for (std::size_t i = first; i < first + count; ++i) {
    const std::size_t length = frames_.length(i);
    const unsigned char* const from = frames_.data.data() + frames_.offset(i);
    unsigned char* const to = filler.room(length);
    if (length == kWord) {
      std::memcpy(to, from, kWord);  // the usual frame, for which this is one instruction
    } else {
      if (length > 0) std::memcpy(to, from, length);
      std::memset(to + length, 0, ZelkFrameBlock::kSlack);
    }
    filler.put(frames_.times.empty() ? kZelkNoTime : frames_.times[i], frames_.ids[i], 0,
               channels[frames_.channels.empty() ? 0 : frames_.channels[i]], length);
  }
}

/// What depends on the blocks in front. The values are copied behind it.
void ArrayRun::put(Worker& worker) {
  counts_ += worker.rows.Counts();
  put_ = std::min(put_ + kBlockFrames, frames_.ids.size());  // only the last block has fewer
  decoding_->decoder().Put(worker.rows);
  take_batches(false, worker.copying);
}

void ArrayRun::take_batches(bool is_end, std::vector<WholeBatches::Copying>& copying) {
  decoding_->take_batches(is_end, [&](std::size_t index, ArrowArray batch) {
    WholeBatches& table = tables_[index];
    const auto rows = static_cast<std::size_t>(batch.length);
    copying.push_back(table.append(batch, options_.is_whole ? expected_rows(table, rows) : rows));
    return true;
  });
}

/// How many rows a table has from the next batch on when the share of its frames stays what it was,
/// and some more.
std::size_t ArrayRun::expected_rows(const WholeBatches& table, std::size_t next) const {
  const std::size_t left = frames_.ids.size() - put_;
  const double share = static_cast<double>(table.row_count() + next) / static_cast<double>(put_);
  const double more = share * static_cast<double>(left) * 17 / 16;
  return next + std::min(left, static_cast<std::size_t>(more));
}

nb::tuple ArrayRun::finish() {
  {
    const nb::gil_scoped_release unlocked;
    std::vector<WholeBatches::Copying> copying;
    take_batches(true, copying);
    copy(copying);
    if (transport_) transport_->End();
  }
  nb::list tables;
  for (std::size_t i = 0; i < tables_.size(); ++i)
    tables.append(nb::cast(TableRows(decoding_->heads()[i], tables_[i].finish())));
  return nb::make_tuple(
      tables, counts_to_python(counts_, frames_.ids.size(),
                               transport_ ? transport_->Counts() : ZelkTransportCounts{}));
}

}  // namespace zelk::python
