/// Exhausted heaps and full disks: the test program's allocations and writes pass through counters.
#ifndef ZELK_TESTS_SUPPORT_FAILING_HPP
#define ZELK_TESTS_SUPPORT_FAILING_HPP

#include <cstddef>

/// While it lives, one allocation by a function fails: the one behind `n` others. One object of a
/// kind at a time.
template <typename Function>
class FailingAllocation {
 public:
  explicit FailingAllocation(std::size_t n) { armed_ = true, calls_before_ = n; }
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;
  ~FailingAllocation() { armed_ = false; }

  /// Whether that allocation has been made.
  bool has_failed() const { return !armed_; }

  /// Counts an allocation; whether it is the one.
  static bool count() {
    const bool fails = armed_ && calls_before_-- == 0;
    if (fails) armed_ = false;
    return fails;
  }

 private:
  static inline bool armed_ = false;
  static inline std::size_t calls_before_ = 0;
};

using FailingCalloc = FailingAllocation<struct Calloc>;  ///< `calloc` gives null
using FailingNew = FailingAllocation<struct New>;        ///< operator new raises std::bad_alloc

/// Whether the allocation behind `n` others has failed while `operation` ran: a loop over all
/// allocations of an operation ends when it has not.
template <typename Failing, typename Operation>
bool fails_at(std::size_t n, Operation operation) {
  const Failing failing(n);
  operation();
  return failing.has_failed();
}

/// While it lives, streams take `size_bytes` bytes in all, and nothing behind them. One object at a
/// time.
class FailingWrite {
 public:
  explicit FailingWrite(std::size_t size_bytes);
  FailingWrite(const FailingWrite&) = delete;
  FailingWrite& operator=(const FailingWrite&) = delete;
  ~FailingWrite();

  /// Whether a stream has refused something.
  bool has_failed() const;
};

#endif
