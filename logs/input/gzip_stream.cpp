#include <zlib.h>

#include <algorithm>
#include <array>
#include <new>
#include <utility>

#include "logs/input/byte_stream.hpp"
#include "zelk/logs/reader.hpp"

namespace zelk::logs {

namespace {

constexpr int kGzipWindow = 15 + 16;  // the largest window, and a header of gzip
constexpr Bytef kFirstByte = 0x1F;    // of a member

/// One or more members, as `gzip` and `cat` make them. Zeros may follow the last one.
class GzipStream : public ByteStream {
 public:
  GzipStream(std::unique_ptr<ByteStream> stream, std::string name)
      : compressed_(std::move(stream)), name_(std::move(name)) {
    if (inflateInit2(&state_, kGzipWindow) != Z_OK) throw std::bad_alloc();
  }
  ~GzipStream() override { inflateEnd(&state_); }

  std::size_t read(char* buffer, std::size_t size) override {
    const auto room = static_cast<uInt>(std::min<std::size_t>(size, 1 << 30));
    state_.next_out = reinterpret_cast<Bytef*>(buffer);
    state_.avail_out = room;
    while (state_.avail_out == room && !is_done_) {
      if (state_.avail_in == 0 && !has_ended_) fill();
      step();
    }
    return room - state_.avail_out;
  }

 private:
  void fill() {
    state_.avail_in = static_cast<uInt>(compressed_->read(input_.data(), input_.size()));
    state_.next_in = reinterpret_cast<Bytef*>(input_.data());
    has_ended_ = state_.avail_in == 0;
  }

  void step() {
    if (is_between_) return begin_member();
    const uInt room = state_.avail_out;
    const int result = inflate(&state_, Z_NO_FLUSH);
    if (result == Z_STREAM_END) {
      is_between_ = true;
    } else if (result == Z_MEM_ERROR) {
      throw std::bad_alloc();
    } else if (state_.avail_out != room) {
      // A fault comes again when the bytes in front of it have been given out.
      return;
    } else if (result == Z_BUF_ERROR && has_ended_) {
      throw ZelkLogError(name_ + ": the data compressed with gzip ends in its midst");
    } else if (result != Z_OK && result != Z_BUF_ERROR) {
      throw ZelkLogError(name_ + ": the data compressed with gzip is damaged");
    }
  }

  void begin_member() {
    while (state_.avail_in > 0 && *state_.next_in == 0) {
      ++state_.next_in;
      --state_.avail_in;
    }
    if (state_.avail_in > 0) {
      if (*state_.next_in != kFirstByte)
        throw ZelkLogError(name_ + ": behind the data compressed with gzip stands something else");
      is_between_ = false;
      inflateReset(&state_);
    } else if (has_ended_) {
      is_done_ = true;
    }
  }

  std::unique_ptr<ByteStream> compressed_;
  std::string name_;
  z_stream state_{};
  std::array<char, kInputBytes> input_;
  bool has_ended_ = false;   // the compressed bytes
  bool is_between_ = false;  // two members, or behind the last one
  bool is_done_ = false;
};

}  // namespace

std::unique_ptr<ByteStream> gzip_stream(std::unique_ptr<ByteStream> stream, std::string name) {
  return std::make_unique<GzipStream>(std::move(stream), std::move(name));
}

}  // namespace zelk::logs
