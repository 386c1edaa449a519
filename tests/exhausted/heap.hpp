/// The heap of a test program as one that runs out. Its allocations, and those of all libraries
/// that it loads, come through here: the dynamic linker prefers the program's functions.
#ifndef ZELK_TESTS_EXHAUSTED_HEAP_HPP
#define ZELK_TESTS_EXHAUSTED_HEAP_HPP

#include <atomic>
#include <cstddef>

/// While it lives, the allocation behind `n` others fails, of all threads. One object at a time.
class ExhaustedHeap {
 public:
  enum class Extent {
    kOnce,        ///< a large block was wanted: all others are there
    kFromThenOn,  ///< nothing is left
  };

  ExhaustedHeap(std::size_t n, Extent extent);
  ExhaustedHeap(const ExhaustedHeap&) = delete;
  ExhaustedHeap& operator=(const ExhaustedHeap&) = delete;
  ~ExhaustedHeap();

  /// Whether that allocation has been tried.
  bool has_failed() const;

  /// Counts an allocation; whether it fails.
  static bool fails();
  /// All blocks that are allocated now.
  static long blocks() { return blocks_; }

  static inline std::atomic<long> blocks_ = 0;
};

#endif
