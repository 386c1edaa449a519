#include "log/log_pipeline.hpp"

#include <thread>

#include "term/system.hpp"

namespace zelk::tool {

void LogPipeline::run(unsigned threads) {
  {
    std::vector<std::jthread> helpers;
    for (unsigned i = 1; i < threads; ++i) helpers.emplace_back([this] { work(); });
    work();
  }
  progress_.clear();
  if (fault_) std::rethrow_exception(fault_);
}

/// Keeps the first exception of any thread for the caller, and ends all.
void LogPipeline::work() {
  try {
    decode_blocks();
  } catch (...) {
    const std::lock_guard lock(output_mutex_);
    if (!fault_) fault_ = std::current_exception();
    turn_.notify_all();
  }
}

void LogPipeline::decode_blocks() {
  LogDecoder decoder(catalog_);
  ZelkLogChunk chunk;
  ZelkLogBlock block;
  DecodedBlock decoded;
  while (take(chunk)) {
    reader_.Parse(chunk, block);
    decoder.decode(block, decoded);
    if (!put(block, decoded)) return;
  }
  const std::lock_guard lock(output_mutex_);
  decoder.add_unknown_to(unknown_);
}

bool LogPipeline::take(ZelkLogChunk& chunk) {
  const std::lock_guard lock(input_mutex_);
  const WaitingReader waiting;
  return reader_.Take(chunk);
}

/// False when another thread has met a fault.
bool LogPipeline::put(const ZelkLogBlock& block, const DecodedBlock& decoded) {
  std::unique_lock lock(output_mutex_);
  turn_.wait(lock, [&] { return fault_ || blocks_put_ == block.number; });
  if (fault_) return false;
  if (!block.malformed.empty()) progress_.clear();
  out_.write_through(decoded.text.view());
  report_.add(block, decoded.counts);
  progress_.update(reader_.BytesRead());
  ++blocks_put_;
  turn_.notify_all();
  return true;
}

}  // namespace zelk::tool
