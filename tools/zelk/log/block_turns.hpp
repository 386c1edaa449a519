/// \file
/// The order of blocks among threads.

#ifndef ZELK_TOOL_LOG_BLOCK_TURNS_HPP
#define ZELK_TOOL_LOG_BLOCK_TURNS_HPP

#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace zelk::tool {

/// Lets threads act one after the other, in the order of the blocks that they hold.
class BlockTurns {
 public:
  /// Waits until the blocks before `number` have passed, then acts for this one. After an exception
  /// no further block passes, and `end` is to be called.
  ///
  /// @return false when the turns have been ended before
  template <typename Act>
  bool pass(std::uint64_t number, const Act& act) {
    std::unique_lock lock(mutex_);
    turn_.wait(lock, [&] { return is_ended_ || next_ == number; });
    if (is_ended_) return false;
    act();
    ++next_;
    turn_.notify_all();
    return true;
  }

  /// No block passes any more.
  void end() {
    const std::lock_guard lock(mutex_);
    is_ended_ = true;
    turn_.notify_all();
  }

 private:
  std::mutex mutex_;
  std::condition_variable turn_;
  std::uint64_t next_ = 0;
  bool is_ended_ = false;
};

}  // namespace zelk::tool

#endif
