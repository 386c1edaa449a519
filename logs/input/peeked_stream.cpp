#include <algorithm>
#include <utility>

#include "logs/input/byte_stream.hpp"
#include "zelk/logs/reader.hpp"

namespace zelk::logs {

std::size_t PeekedStream::read(char* buffer, std::size_t size) {
  if (taken_ == peeked_.size()) {
    if (fault_) throw ZelkLogError(*fault_);
    return rest_->read(buffer, size);
  }
  const std::size_t count = std::min(size, peeked_.size() - taken_);
  std::copy_n(peeked_.data() + taken_, count, buffer);
  taken_ += count;
  if (taken_ == peeked_.size()) {
    peeked_ = {};
    taken_ = 0;
  }
  return count;
}

std::string_view PeekedStream::peek(std::size_t size) {
  while (peeked_.size() - taken_ < size && peek_more(size)) {
  }
  return std::string_view(peeked_).substr(taken_);
}

std::string_view PeekedStream::peek_line(std::size_t most) {
  while (peek_more(most) && peeked_.find('\n', taken_) == std::string::npos) {
  }
  return std::string_view(peeked_).substr(taken_);
}

/// Up to `most` bytes in all; false when there are no more, or so many.
bool PeekedStream::peek_more(std::size_t most) {
  const std::size_t had = peeked_.size();
  const std::size_t missing = most - std::min(most, had - taken_);
  if (missing == 0 || fault_) return false;
  peeked_.resize(had + missing);
  std::size_t count = 0;
  try {
    count = rest_->read(peeked_.data() + had, missing);
  } catch (const ZelkLogError& fault) {
    if (had == taken_) throw;
    fault_ = fault;  // comes when the bytes in front of it have been read
  }
  peeked_.resize(had + count);
  return count > 0;
}

namespace {

constexpr std::string_view kGzipMagic = "\x1F\x8B";
constexpr std::string_view kZstdMagic = "\x28\xB5\x2F\xFD";

struct Compression {
  std::string_view magic;
  const char* name;
};

constexpr Compression kOtherCompressions[] = {
    {"\xFD"
     "7zX",
     "xz"},
    {"BZh9", "bzip2"},
    {"PK\3\4", "zip"},
    {"7z\xBC\xAF", "7z"},
    {"\4\"M\x18", "lz4"},
};

void refuse_others(std::string_view magic, const std::string& name) {
  for (const Compression& each : kOtherCompressions) {
    if (magic == each.magic) {
      throw ZelkLogError(name + " is compressed with " + each.name +
                         ", which is not read here; gzip and zstd are");
    }
  }
}

}  // namespace

std::unique_ptr<ByteStream> decompressed(std::unique_ptr<ByteStream> stream,
                                         const std::string& name) {
  auto peeked = std::make_unique<PeekedStream>(std::move(stream));
  const std::string_view magic = peeked->peek(kZstdMagic.size());
  if (magic.starts_with(kGzipMagic)) return gzip_stream(std::move(peeked), name);
  if (magic.starts_with(kZstdMagic)) return zstd_stream(std::move(peeked), name);
  refuse_others(magic, name);
  return peeked;
}

}  // namespace zelk::logs
