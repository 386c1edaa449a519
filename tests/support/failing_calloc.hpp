/// Exhausted heaps: the calls of `calloc` in the test program pass through a counter.
#ifndef ZELK_TESTS_SUPPORT_FAILING_CALLOC_HPP
#define ZELK_TESTS_SUPPORT_FAILING_CALLOC_HPP

#include <cstddef>

/// While it lives, one call of `calloc` gives null: the one behind `n` others. One object at a
/// time.
class FailingCalloc {
 public:
  explicit FailingCalloc(std::size_t n);
  FailingCalloc(const FailingCalloc&) = delete;
  FailingCalloc& operator=(const FailingCalloc&) = delete;
  ~FailingCalloc();

  /// Whether that call has come; a loop over all allocations of an operation ends when it has not.
  bool has_failed() const;
};

#endif
