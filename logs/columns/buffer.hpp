/// \file
/// Memory for the columnar format: aligned to 64 bytes, and as many of them.

#ifndef ZELK_LOGS_COLUMNS_BUFFER_HPP
#define ZELK_LOGS_COLUMNS_BUFFER_HPP

#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <utility>

namespace zelk::logs {

class Buffer {
 public:
  static constexpr std::size_t kAlignment = 64;

  Buffer() = default;
  explicit Buffer(std::size_t size) { resize(size, 0); }
  Buffer(Buffer&& other) noexcept
      : bytes_(std::move(other.bytes_)), size_(std::exchange(other.size_, 0)) {}
  Buffer& operator=(Buffer&& other) noexcept {
    bytes_ = std::move(other.bytes_);
    size_ = std::exchange(other.size_, 0);
    return *this;
  }
  ~Buffer() = default;

  unsigned char* data() const { return bytes_.get(); }
  /// In bytes, a multiple of the alignment.
  std::size_t size() const { return size_; }

  /// New memory, uninitialized behind the first `kept` bytes of the present one.
  void resize(std::size_t size, std::size_t kept) {
    const std::size_t rounded = (size + kAlignment - 1) / kAlignment * kAlignment;
    Bytes bytes(static_cast<unsigned char*>(::operator new(rounded, kAlign)));
    if (kept > 0) std::memcpy(bytes.get(), bytes_.get(), kept);
    bytes_ = std::move(bytes);
    size_ = rounded;
  }

  /// Zeros from `used` to the next multiple of the alignment.
  void pad(std::size_t used) {
    const std::size_t rest = (kAlignment - used % kAlignment) % kAlignment;
    if (rest > 0 && bytes_) std::memset(bytes_.get() + used, 0, rest);
  }

 private:
  static constexpr std::align_val_t kAlign{kAlignment};
  struct Release {
    void operator()(unsigned char* bytes) const { ::operator delete(bytes, kAlign); }
  };
  using Bytes = std::unique_ptr<unsigned char[], Release>;

  Bytes bytes_;
  std::size_t size_ = 0;
};

}  // namespace zelk::logs

#endif
