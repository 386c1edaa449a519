/// \file
/// The lines that "candump -l" writes, quickly: all but a few of a log.
///
///     (1436509052.249713) vcan0 123#DEADBEEF
///     head........micros. name  id  data
///
/// What a line has in common with the one before, such as its seconds, is compared and not parsed
/// again. Each character is looked at; where one is another than in this form, or the end is near,
/// the line is left to `parse_candump_line`, which finds the same in lines of this form.

#ifndef ZELK_LOGS_FORMS_CANDUMP_PLAIN_HPP
#define ZELK_LOGS_FORMS_CANDUMP_PLAIN_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "base/byte_order.hpp"
#include "base/compiler.hpp"
#include "base/frame_id.hpp"
#include "logs/forms/candump_line.hpp"
#include "logs/forms/hex.hpp"
#include "logs/forms/times.hpp"
#include "logs/frames/filler.hpp"
#include "zelk/records.h"

namespace zelk::logs {

/// Parses plain lines of one block.
class PlainLines {
 public:
  explicit PlainLines(ZelkFrameBlock& block) : block_(block), filler_(block) {}

  /// Parses a line, and puts its frame into the block.
  ///
  /// @param end  of the text that the line stands in
  /// @return the next line; null when this one is not plain, or too close to the end
  ZELK_ALWAYS_INLINE const char* parse(const char* at, const char* end) {
    if (end - at < kLongestLine) return nullptr;
    const std::string_view time_text(at + 1, kTimeBytes - 3);
    const std::int64_t time = time_at(at);
    if (time < 0) return nullptr;
    const ShortName* const channel = channel_at(at + kTimeBytes);
    if (!channel) return nullptr;
    std::uint32_t id = 0;
    at = identifier_at(at + kTimeBytes + channel->size, id);
    if (!at) return nullptr;
    unsigned flags = 0;
    std::size_t length = 0;
    at = *at == '#' ? fd_data_at(at + 1, flags, length) : data_at(at, length);
    if (!at) return nullptr;
    at = line_end_at(at, flags);
    if (at) filler_.put(time, id, flags, channel->index, length, time_text);
    return at;
  }

 private:
  /// A channel whose name has at most 7 bytes, with the blank behind it, as a number.
  struct ShortName {
    std::uint64_t name = 1;  // equal to nothing under the mask
    std::uint64_t mask = 0;
    std::size_t size = 0;
    std::uint16_t index = 0;
  };

  static constexpr std::ptrdiff_t kTimeBytes = 20;  // with its brackets and the blank
  /// No more bytes are looked at: the time, a short name, an identifier with "##" and flags, and
  /// the data of CAN FD, in pieces of 16.
  static constexpr std::ptrdiff_t kLongestLine = kTimeBytes + 8 + 11 + 128 + 16;
  static constexpr std::int64_t kMostSeconds = 9'000'000'000;

  /// "(1436509052.249713) ", in nanoseconds; negative for anything else.
  std::int64_t time_at(const char* at) {
    // "(1436509052.", which changes once a second.
    const std::uint64_t head = load_characters(at);
    std::uint32_t rest = 0;
    std::memcpy(&rest, at + 8, sizeof rest);
    if ((head != head_ || rest != head_rest_) && !take_head(at)) return -1;
    constexpr std::uint64_t kBehind = 0x2029ull << 48;  // ") "
    const std::uint64_t digits =
        load_characters(at + 12) ^ (kBehind | (repeated('0') & ~(0xFFFFull << 48)));
    // Sums have bit 7 set where a digit is beyond 9, or anything else stands behind them.
    constexpr std::uint64_t kBeyond = (repeated(0x76) & ~(0xFFFFull << 48)) | 0x7F7Full << 48;
    if (((digits | (digits + kBeyond)) & repeated(0x80)) != 0) return -1;
    return seconds_ + static_cast<std::int64_t>(joined_digits(digits << 16)) * 1000;
  }

  bool take_head(const char* at) {
    const std::uint64_t upper = number_of(load_characters(at + 1));  // eight of ten digits
    const std::uint64_t lower = number_of(load_characters(at + 3));
    if (at[0] != '(' || at[11] != '.' || (upper | lower) == UINT64_MAX) return false;
    const auto seconds = static_cast<std::int64_t>(upper / 1'000'000 * 100'000'000 + lower);
    if (seconds > kMostSeconds) return false;
    head_ = load_characters(at);
    std::memcpy(&head_rest_, at + 8, sizeof head_rest_);
    seconds_ = seconds * kNanosecondsPerSecond;
    return true;
  }

  const ShortName* channel_at(const char* at) {
    const std::uint64_t characters = load_characters(at);
    for (const ShortName& each : names_)
      if ((characters & each.mask) == each.name) return &each;
    return enter_channel(at);
  }

  const ShortName* enter_channel(const char* at) {
    const auto* const blank = static_cast<const char*>(std::memchr(at, ' ', 8));
    if (!blank || blank == at) return nullptr;
    const auto size = static_cast<std::size_t>(blank - at);
    const std::string_view name(at, size);
    if (name.find_first_of("\t\r\n#") != std::string_view::npos) return nullptr;
    ShortName& entry = names_[next_name_++ % names_.size()];
    entry.mask = size == 7 ? ~std::uint64_t{0} : (std::uint64_t{1} << (8 * (size + 1))) - 1;
    entry.name = load_characters(at) & entry.mask;
    entry.size = size + 1;
    entry.index = block_.ChannelIndex(name);
    return &entry;
  }

  /// An identifier and its "#".
  ///
  /// @return behind it; null when there is none, or it is that of an error frame
  static const char* identifier_at(const char* at, std::uint32_t& id) {
    if (at[3] == '#') {
      const int number = digit_value(at[0]) << 8 | digit_value(at[1]) << 4 | digit_value(at[2]);
      id = static_cast<std::uint32_t>(number);
      return number >= 0 && number <= static_cast<int>(kLargestStandardId) ? at + 4 : nullptr;
    }
    std::uint32_t bytes = 0;
    if (at[8] != '#' || !decode_digits(load_characters(at), bytes)) return nullptr;
    const std::uint32_t number =
        (bytes << 24) | (bytes << 8 & 0xFF0000) | (bytes >> 8 & 0xFF00) | bytes >> 24;
    id = number | ZELK_ID_EXTENDED;
    return number <= kLargestExtendedId ? at + 9 : nullptr;
  }

  /// Up to 8 bytes, into the room of the next frame.
  ///
  /// @return behind them; null for half a byte
  const char* data_at(const char* at, std::size_t& length) {
    const HexBytes found = hex_bytes(at);
    store_little_endian(filler_.room(), found.bytes);
    length = found.digits / 2;
    return found.digits % 2 == 0 ? at + found.digits : nullptr;
  }

  /// The flags of CAN FD, and up to 64 bytes, likewise.
  const char* fd_data_at(const char* at, unsigned& flags, std::size_t& length) {
    const int digit = digit_value(*at++);
    if (digit == kNoDigit) return nullptr;
    flags = fd_flags(digit);
    unsigned char* const room = filler_.room();
    for (length = 0; length < ZelkFrame::kMostData; length += 8) {
      const HexBytes found = hex_bytes(at + 2 * length);
      store_little_endian(room + length, found.bytes);
      if (found.digits == 16) continue;
      length += found.digits / 2;
      return found.digits % 2 == 0 ? at + 2 * length : nullptr;
    }
    return at + 2 * length;
  }

  /// The end of a line, with the direction that "candump -x" puts there.
  ///
  /// @return behind it; null when something else stands there
  static const char* line_end_at(const char* at, unsigned& flags) {
    if (*at == '\n') return at + 1;
    if (*at == ' ' && (at[1] == 'R' || at[1] == 'T')) {
      if (at[1] == 'T') flags |= kZelkFrameSent;
      at += 2;
    }
    if (*at == '\r') ++at;
    return *at == '\n' ? at + 1 : nullptr;
  }

  ZelkFrameBlock& block_;
  ZelkFrameFiller filler_;
  std::uint64_t head_ = 0;  // of the last time
  std::uint32_t head_rest_ = 0;
  std::int64_t seconds_ = -kNanosecondsPerSecond;  // that it stands for, in nanoseconds; at first
                                                   // it stands for no time
  std::array<ShortName, 8> names_{};
  std::size_t next_name_ = 0;
};

}  // namespace zelk::logs

#endif
