#include <zstd.h>

#include <algorithm>
#include <array>
#include <memory>
#include <new>
#include <utility>

#include "logs/input/byte_stream.hpp"
#include "zelk/logs/reader.hpp"

namespace zelk::logs {

namespace {

/// Of the bytes that the decoder asks for: the last of a block and the header of the next one.
constexpr std::size_t kBytesAlone = 4;

struct StateDeleter {
  void operator()(ZSTD_DStream* state) const noexcept { ZSTD_freeDStream(state); }
};

/// One or more frames, as `zstd` and `cat` make them.
class ZstdStream : public ByteStream {
 public:
  ZstdStream(std::unique_ptr<ByteStream> stream, std::string name)
      : compressed_(std::move(stream)), name_(std::move(name)), state_(ZSTD_createDStream()) {
    if (!state_) throw std::bad_alloc();
  }

  std::size_t read(char* buffer, std::size_t size) override {
    ZSTD_outBuffer out{buffer, size, 0};
    while (out.pos == 0) {
      if (in_.pos == in_.size && !may_have_more_ && !fill()) break;
      const std::size_t result = step(out);
      if (ZSTD_isError(result)) {
        throw ZelkLogError(
            name_ + ": the data compressed with zstd is damaged: " + ZSTD_getErrorName(result));
      }
      may_have_more_ = out.pos == out.size;
    }
    return out.pos;
  }

 private:
  /// Decompresses no more than one block, and none while bytes of the one before are left: when it
  /// was damaged, they would be lost. The last byte of a block is given alone: the error with which
  /// a frame ends takes what was given with it, which must not depend on the size of the input.
  std::size_t step(ZSTD_outBuffer& out) {
    const std::size_t begin = in_.pos;
    const std::size_t size = may_have_more_ ? 0 : std::min(in_.size - begin, wanted_);
    ZSTD_inBuffer piece{in_.src, begin + size, begin};
    const std::size_t result = ZSTD_decompressStream(state_.get(), &out, &piece);
    in_.pos = piece.pos;
    wanted_ = result > kBytesAlone ? result - kBytesAlone : 1;
    // Between two frames, too, bytes are asked for.
    is_within_ = result != 0 && (is_within_ || in_.pos != begin);
    return result;
  }

  /// False at the end of the compressed bytes.
  bool fill() {
    in_ = {input_.data(), compressed_->read(input_.data(), input_.size()), 0};
    if (in_.size == 0 && is_within_)
      throw ZelkLogError(name_ + ": the data compressed with zstd ends in its midst");
    return in_.size > 0;
  }

  std::unique_ptr<ByteStream> compressed_;
  std::string name_;
  std::unique_ptr<ZSTD_DStream, StateDeleter> state_;
  std::array<char, kInputBytes> input_;
  ZSTD_inBuffer in_{input_.data(), 0, 0};
  std::size_t wanted_ = 1;
  bool is_within_ = false;      // a frame
  bool may_have_more_ = false;  // bytes that the last read had no room for
};

}  // namespace

std::unique_ptr<ByteStream> zstd_stream(std::unique_ptr<ByteStream> stream, std::string name) {
  return std::make_unique<ZstdStream>(std::move(stream), std::move(name));
}

}  // namespace zelk::logs
