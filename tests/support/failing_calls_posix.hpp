/// Systems that refuse a call: those by which the test program's files are opened, looked at,
/// locked, read and changed pass through here.
#ifndef ZELK_TESTS_SUPPORT_FAILING_CALLS_POSIX_HPP
#define ZELK_TESTS_SUPPORT_FAILING_CALLS_POSIX_HPP

#include <cstddef>

/// While it lives, the call behind `n` others fails with the number `error`, and does nothing. One
/// object at a time.
class FailingCall {
 public:
  FailingCall(std::size_t n, int error);
  FailingCall(const FailingCall&) = delete;
  FailingCall& operator=(const FailingCall&) = delete;
  ~FailingCall();

  static bool is_armed();
  static bool has_failed();  ///< it has come to that call

  /// Counts a call. When it is the one, sets `errno`.
  static bool is_now();
};

#endif
