/// Disks that do not take what they are given: the test program's fsync and rename pass through
/// here.
#ifndef ZELK_TESTS_SUPPORT_FAILING_SYNC_POSIX_HPP
#define ZELK_TESTS_SUPPORT_FAILING_SYNC_POSIX_HPP

#include <cstddef>
#include <string>

/// While it lives, the fsync behind `n` others fails with the number `error`. One object at a time.
class FailingSync {
 public:
  FailingSync(std::size_t n, int error);
  FailingSync(const FailingSync&) = delete;
  FailingSync& operator=(const FailingSync&) = delete;
  ~FailingSync();

  /// What was done so far, also what failed: "file rename folder ".
  static const std::string& order();
};

#endif
