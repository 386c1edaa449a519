/// Exhausted heaps for the library's own containers: the test program replaces operator new.
#ifndef ZELK_TESTS_SUPPORT_FAILING_NEW_HPP
#define ZELK_TESTS_SUPPORT_FAILING_NEW_HPP

#include <cstddef>

/// While it lives, one operator new raises std::bad_alloc: the one behind `n` others. One object at
/// a time.
class FailingNew {
 public:
  explicit FailingNew(std::size_t n);
  FailingNew(const FailingNew&) = delete;
  FailingNew& operator=(const FailingNew&) = delete;
  ~FailingNew();

  /// Whether that call has come; a loop over all allocations of an operation ends when it has not.
  bool has_failed() const;
};

#endif
