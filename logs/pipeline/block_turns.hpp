/// \file
/// The order of blocks among threads.

#ifndef ZELK_LOGS_PIPELINE_BLOCK_TURNS_HPP
#define ZELK_LOGS_PIPELINE_BLOCK_TURNS_HPP

#include <algorithm>
#include <condition_variable>
#include <cstdint>
#include <limits>
#include <mutex>

namespace zelk::logs {

/// Lets threads act one after the other, in the order of the blocks that they hold.
class BlockTurns {
 public:
  /// Waits until the blocks before `number` have passed, then acts for this one.
  ///
  /// @return false when the turns end before this block
  template <typename Act>
  bool pass(std::uint64_t number, const Act& act) {
    std::unique_lock lock(mutex_);
    turn_.wait(lock, [&] { return next_ == number || number >= end_; });
    if (number >= end_) return false;
    act();
    ++next_;
    turn_.notify_all();
    return true;
  }

  /// Neither block `number` nor one behind it passes any more.
  void end_at(std::uint64_t number) {
    const std::lock_guard lock(mutex_);
    end_ = std::min(end_, number);
    turn_.notify_all();
  }

 private:
  std::mutex mutex_;
  std::condition_variable turn_;
  std::uint64_t next_ = 0;
  std::uint64_t end_ = std::numeric_limits<std::uint64_t>::max();
};

}  // namespace zelk::logs

#endif
