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
    const std::lock_guard lock(result_mutex_);
    if (!fault_) fault_ = std::current_exception();
    window_turns_.end();
    transport_turns_.end();
    output_turns_.end();
  }
}

void LogPipeline::decode_blocks() {
  LogDecoder decoder(catalog_, window_, reader_.Name(), transport_ != nullptr);
  ZelkLogChunk chunk;
  ZelkLogBlock block;
  DecodedBlock decoded;
  while (take(chunk)) {
    reader_.Parse(chunk, block);
    if (!begin_window(block) || !assemble(block)) return;
    decoder.decode(block, decoded);
    if (!put(block, decoded)) return;
  }
  const std::lock_guard lock(result_mutex_);
  decoder.add_unknown_to(unknown_);
}

bool LogPipeline::take(ZelkLogChunk& chunk) {
  const std::lock_guard lock(input_mutex_);
  return read_until_stop([&] { return reader_.Take(chunk); });
}

/// Tells the window the first frame of the log, where it needs that.
///
/// @return false when another thread has met a fault
bool LogPipeline::begin_window(const ZelkLogBlock& block) {
  if (!window_.is_needed()) return true;
  return window_turns_.pass(block.number, [&] {
    if (window_.has_begun() || block.frames.Size() == 0) return;
    window_.begin(block.frames.Times()[0], reader_.Name());
  });
}

/// Likewise.
bool LogPipeline::assemble(ZelkLogBlock& block) {
  if (!transport_) return true;
  return transport_turns_.pass(block.number, [&] { transport_->Assemble(block.frames); });
}

/// Likewise.
bool LogPipeline::put(const ZelkLogBlock& block, const DecodedBlock& decoded) {
  return output_turns_.pass(block.number, [&] {
    if (!block.malformed.empty()) progress_.clear();
    report_.add(block, decoded.counts);
    out_.write_through(decoded.text.view());
    progress_.update(reader_.BytesRead());
  });
}

}  // namespace zelk::tool
