#include "log/log_pipeline.hpp"

#include <thread>

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
  std::string block;
  std::uint64_t number = 0;
  DecodedBlock result;
  while (take_block(block, number)) {
    decoder.decode(block, result);
    if (!put_block(result, number)) return;
  }
  const std::lock_guard lock(output_mutex_);
  decoder.add_unknown_to(unknown_);
}

bool LogPipeline::take_block(std::string& block, std::uint64_t& number) {
  const std::lock_guard lock(input_mutex_);
  number = blocks_taken_++;
  return input_.next(block);
}

/// False when another thread has met a fault.
bool LogPipeline::put_block(const DecodedBlock& block, std::uint64_t number) {
  std::unique_lock lock(output_mutex_);
  turn_.wait(lock, [&] { return fault_ || blocks_put_ == number; });
  if (fault_) return false;
  if (!block.malformed.empty()) progress_.clear();
  out_.write_through(block.text.view());
  report_.add(block);
  progress_.update(input_.bytes_read());
  ++blocks_put_;
  turn_.notify_all();
  return true;
}

}  // namespace zelk::tool
