#include "zelk/logs/pipeline.hpp"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <exception>
#include <limits>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "base/j1939.hpp"
#include "logs/pipeline/block_turns.hpp"

ZelkLogWorker::~ZelkLogWorker() = default;

namespace {

constexpr std::uint64_t kNoBlock = std::numeric_limits<std::uint64_t>::max();

/// A pipe is handed on as it comes; a small file is done before a thread has started.
unsigned threads_for(const ZelkLogReader& log, unsigned wanted) {
  constexpr std::uint64_t kWorthThreads = 4'000'000;  // bytes
  if (wanted > 0) return std::min(wanted, ZelkPipelineOptions::kMostThreads);
  if (log.SizeBytes().value_or(0) < kWorthThreads) return 1;
  return std::clamp(std::thread::hardware_concurrency(), 1u, ZelkPipelineOptions::kMostThreads);
}

/// Packets of the transport protocol have done their part when they were put together.
void set_packets_apart(ZelkFrameCounts& counts) {
  for (auto id = counts.unknown_ids.begin(); id != counts.unknown_ids.end();) {
    if (!zelk::j1939::is_transport_packet(id->first)) {
      ++id;
      continue;
    }
    counts.unknown -= id->second;
    counts.packets += id->second;
    id = counts.unknown_ids.erase(id);
  }
}

}  // namespace

struct ZelkLogPipeline::State {
  State(ZelkLogReader& of, ZelkPipelineOptions chosen)
      : log(of), options(std::move(chosen)), window(options.times) {}

  /// What one thread has of a block.
  struct Work {
    std::unique_ptr<ZelkLogWorker> worker;
    ZelkLogChunk chunk{};
    ZelkLogBlock block{};
    ZelkFrameCounts counts{};
  };

  void work_all(std::vector<Work>& works);
  void work_on_log(Work& work);
  bool take(ZelkLogChunk& chunk);
  bool work_on_block(Work& work);
  void prepare(ZelkLogBlock& block);
  void put(Work& work);
  void keep_fault(std::uint64_t number);

  ZelkLogReader& log;
  const ZelkPipelineOptions options;
  ZelkTimeWindow window;  // constant once it has begun
  ZelkTransport transport;
  ZelkLogSummary summary;
  std::mutex input_mutex;  // held by the thread that reads
  std::atomic<bool> is_ended = false;
  zelk::logs::BlockTurns preparing;
  zelk::logs::BlockTurns output;
  std::mutex fault_mutex;  // guards the following
  std::uint64_t fault_block = kNoBlock;
  std::exception_ptr fault;
};

void ZelkLogPipeline::State::work_all(std::vector<Work>& works) {
  std::vector<std::jthread> helpers;
  helpers.reserve(works.size());
  try {
    for (std::size_t i = 1; i < works.size(); ++i)
      helpers.emplace_back([this, &work = works[i]] { work_on_log(work); });
  } catch (const std::system_error&) {
    // The threads that there are do the work.
  }
  work_on_log(works.front());
}

void ZelkLogPipeline::State::work_on_log(Work& work) {
  std::uint64_t number = kNoBlock;  // of the block that is worked on
  try {
    while (take(work.chunk)) {
      log.Parse(work.chunk, work.block);
      number = work.block.number;
      if (!work_on_block(work)) return;
      number = kNoBlock;
    }
  } catch (...) {
    keep_fault(number);
  }
}

/// Behind what cannot be read, nothing is.
bool ZelkLogPipeline::State::take(ZelkLogChunk& chunk) {
  const std::lock_guard lock(input_mutex);
  if (is_ended) return false;
  try {
    const auto read = [&] { return log.Take(chunk); };
    return options.read ? options.read(read) : read();
  } catch (...) {
    is_ended = true;
    throw;
  }
}

/// @return false when a fault stands in front of the block
bool ZelkLogPipeline::State::work_on_block(Work& work) {
  ZelkLogBlock& block = work.block;
  const bool is_prepared = window.IsNeeded() || options.transport;
  if (is_prepared && !preparing.pass(block.number, [&] { prepare(block); })) return false;
  work.counts.Clear();
  work.counts.outside = window.Cut(block.frames, log.Name());
  work.worker->Decode(block, work.counts);
  if (options.transport) set_packets_apart(work.counts);
  return output.pass(block.number, [&] { put(work); });
}

/// What depends on the blocks in front.
void ZelkLogPipeline::State::prepare(ZelkLogBlock& block) {
  if (block.frames.Size() > 0 && window.IsNeeded() && !window.HasBegun())
    window.Begin(block.frames.Times()[0], log.Name());
  if (options.transport) transport.Assemble(block.frames);
}

void ZelkLogPipeline::State::put(Work& work) {
  summary.log += work.block.counts;
  summary.frames += work.counts;
  if (options.report) options.report(work.block);
  work.worker->Put(work.block);
}

/// Keeps the exception of the first block for the caller, and ends all behind it. Blocks in front
/// of it still pass.
///
/// @param number  of the block; `kNoBlock` when none could be read
void ZelkLogPipeline::State::keep_fault(std::uint64_t number) {
  is_ended = true;
  preparing.end_at(number);
  output.end_at(number);
  const std::lock_guard lock(fault_mutex);
  if (fault && number >= fault_block) return;
  fault = std::current_exception();
  fault_block = number;
}

ZelkLogPipeline::ZelkLogPipeline(ZelkLogReader& log, ZelkPipelineOptions options)
    : state_(std::make_unique<State>(log, std::move(options))) {}
ZelkLogPipeline::~ZelkLogPipeline() = default;

void ZelkLogPipeline::Run(const std::function<std::unique_ptr<ZelkLogWorker>()>& make_worker) {
  std::vector<State::Work> works(threads_for(state_->log, state_->options.threads));
  for (State::Work& work : works) work.worker = make_worker();
  state_->work_all(works);
  state_->transport.End();
  state_->summary.transport = state_->transport.Counts();
  if (state_->fault) std::rethrow_exception(state_->fault);
}

const ZelkLogSummary& ZelkLogPipeline::Summary() const { return state_->summary; }
