/// \file
/// Memory for the columnar format: aligned to 64 bytes, and as many of them.

#ifndef ZELK_LOGS_COLUMNS_BUFFER_HPP
#define ZELK_LOGS_COLUMNS_BUFFER_HPP

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <utility>

namespace zelk::logs {

class Buffer {
 public:
  static constexpr std::size_t kAlignment = 64;

  Buffer() = default;
  /// Uninitialized.
  explicit Buffer(std::size_t size)
      : memory_(std::make_unique_for_overwrite<unsigned char[]>(rounded(size) + kAlignment)),
        // Heaps are quicker with memory of any alignment: an aligned part begins in it.
        bytes_(memory_.get() + kAlignment -
               reinterpret_cast<std::uintptr_t>(memory_.get()) % kAlignment),
        size_(rounded(size)) {}
  Buffer(Buffer&& other) noexcept
      : memory_(std::move(other.memory_)),
        bytes_(std::exchange(other.bytes_, nullptr)),
        size_(std::exchange(other.size_, 0)) {}
  Buffer& operator=(Buffer&& other) noexcept {
    memory_ = std::move(other.memory_);
    bytes_ = std::exchange(other.bytes_, nullptr);
    size_ = std::exchange(other.size_, 0);
    return *this;
  }
  ~Buffer() = default;

  unsigned char* data() const { return bytes_; }
  /// In bytes, a multiple of the alignment.
  std::size_t size() const { return size_; }

  /// The next multiple of the alignment.
  static constexpr std::size_t rounded(std::size_t size) {
    return (size + kAlignment - 1) / kAlignment * kAlignment;
  }

  /// Zeros from `used` to the next multiple of the alignment.
  void pad(std::size_t used) {
    const std::size_t rest = rounded(used) - used;
    if (rest > 0 && bytes_) std::memset(bytes_ + used, 0, rest);
  }

 private:
  std::unique_ptr<unsigned char[]> memory_;
  unsigned char* bytes_ = nullptr;  ///< the first aligned one
  std::size_t size_ = 0;
};

}  // namespace zelk::logs

#endif
