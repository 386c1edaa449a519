#include <algorithm>
#include <array>
#include <utility>

#include "base/encoding.hpp"
#include "logs/input/byte_stream.hpp"

namespace zelk::logs {

namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kLittleMark = "\xFF\xFE";
constexpr std::string_view kBigMark = "\xFE\xFF";

/// A text in UTF-16. Surrogates become U+FFFD: nothing that a log has needs them.
class Utf16Stream : public ByteStream {
 public:
  Utf16Stream(std::unique_ptr<ByteStream> stream, bool is_big)
      : stream_(std::move(stream)), is_big_(is_big) {}

  std::size_t read(char* buffer, std::size_t size) override {
    while (given_ == text_.size())
      if (!fill()) return 0;
    const std::size_t count = text_.copy(buffer, size, given_);
    given_ += count;
    return count;
  }

 private:
  /// False at the end; half a character there is dropped.
  bool fill() {
    const std::size_t count = stream_->read(bytes_.data() + kept_, bytes_.size() - kept_);
    const std::size_t end = kept_ + count;
    text_.clear();
    given_ = 0;
    for (std::size_t at = 0; at + 1 < end; at += 2) append(at);
    kept_ = end % 2;
    if (kept_) bytes_[0] = bytes_[end - 1];
    return count > 0;
  }

  void append(std::size_t at) {
    const auto first = static_cast<unsigned char>(bytes_[at]);
    const auto second = static_cast<unsigned char>(bytes_[at + 1]);
    const std::uint32_t unit = is_big_ ? first * 256u + second : second * 256u + first;
    const bool is_surrogate = unit >= 0xD800 && unit <= 0xDFFF;
    append_utf8(text_, is_surrogate ? 0xFFFD : unit);
  }

  std::unique_ptr<ByteStream> stream_;
  bool is_big_;
  std::array<char, 1 << 16> bytes_;
  std::size_t kept_ = 0;  // the first half of a character
  std::string text_;
  std::size_t given_ = 0;
};

void skip(ByteStream& stream, std::size_t size) {
  std::array<char, 4> skipped;
  while (size > 0) size -= stream.read(skipped.data(), size);
}

}  // namespace

std::unique_ptr<PeekedStream> in_utf8(std::unique_ptr<ByteStream> stream) {
  auto peeked = std::make_unique<PeekedStream>(std::move(stream));
  const std::string_view mark = peeked->peek(kUtf8Mark.size()).substr(0, kUtf8Mark.size());
  const bool has_utf8_mark = mark == kUtf8Mark;
  const bool is_big = mark.starts_with(kBigMark);
  const bool is_utf16 = is_big || mark.starts_with(kLittleMark);
  if (has_utf8_mark) skip(*peeked, kUtf8Mark.size());
  if (!is_utf16) return peeked;
  skip(*peeked, kBigMark.size());
  return std::make_unique<PeekedStream>(std::make_unique<Utf16Stream>(std::move(peeked), is_big));
}

}  // namespace zelk::logs
