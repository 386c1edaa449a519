/// Full disks: the calls of `fwrite` in the test program pass through a counter.
#ifndef ZELK_TESTS_SUPPORT_FAILING_WRITE_HPP
#define ZELK_TESTS_SUPPORT_FAILING_WRITE_HPP

#include <cstddef>

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
