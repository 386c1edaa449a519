#include "logs/forms/trc_line.hpp"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>

#include "base/characters.hpp"
#include "base/frame_id.hpp"
#include "logs/forms/hex.hpp"
#include "logs/forms/lines.hpp"
#include "zelk/records.h"

// Grammar of a line. Its columns are those of the head; blanks part them, and may stand around
// them.
//
// clang-format off
//   number    = digits [ ")" ]
//   time      = digits [ "." digits ]                     milliseconds
//   old type  = "Rx" | "Tx" | "Warng" | "Error"
//   type      = "DT" | "FD" | "FB" | "FE" | "BI" | "RR" | "ER" | "ST" | "EC" | "EV"
//   bus       = digit [ digit ]
//   id        = 4 hex (11 bits) | 8 hex (29 bits) | "FFFFFFFF" (a status)
//   direction = "Rx" | "Tx"
//   reserved  = any word
//   length    = digits
//   data      = { hex hex } | "RTR"
// clang-format on

namespace zelk::logs {

namespace {

constexpr std::uint32_t kStatusId = 0xFFFFFFFF;
constexpr std::size_t kMostMillisecondDigits = 12;
constexpr std::array<std::uint8_t, 16> kBytesOfCode = {0, 1,  2,  3,  4,  5,  6,  7,
                                                       8, 12, 16, 20, 24, 32, 48, 64};
// An error frame has the form of SocketCAN: the class of the error is the identifier, and its kind,
// which has the same bits here, stands in byte 2.
constexpr std::uint32_t kProtocolErrorClass = 0x8;
constexpr unsigned kErrorKindBits = 0x7;  // of a bit, of the form, of stuffing

bool is_blank(char c) { return c == ' ' || c == '\t'; }

/// Two characters as one number.
constexpr unsigned pair(char first, char second) {
  return static_cast<unsigned>(static_cast<unsigned char>(first)) << 8 |
         static_cast<unsigned char>(second);
}

class TrcLine {
 public:
  TrcLine(std::string_view line, TrcFrame& frame)
      : at_(line.data()), end_(at_ + line.size()), frame_(frame) {
    while (end_ != at_ && is_blank(end_[-1])) --end_;
  }

  LineKind parse(std::string_view columns) {
    skip_blanks();
    if (at_ == end_) return LineKind::kBlank;
    for (const char column : columns) {
      if (!take(static_cast<TrcColumn>(column))) return LineKind::kMalformed;
      if (is_other_) return LineKind::kBlank;
      if (is_complete_) return LineKind::kFrame;
      skip_blanks();
    }
    if (at_ != end_) return LineKind::kMalformed;
    if (frame_.flags & kZelkFrameError) make_error_frame(frame_.id);
    return LineKind::kFrame;
  }

 private:
  bool take(TrcColumn column) {
    switch (column) {
      case TrcColumn::kNumber:
        return take_line_number();
      case TrcColumn::kTime:
        return take_time();
      case TrcColumn::kType:
        return take_type();
      case TrcColumn::kOldType:
        return take_old_type();
      case TrcColumn::kBus:
        return take_bus();
      case TrcColumn::kId:
        return take_id();
      case TrcColumn::kDirection:
        return take_direction(take_word());
      case TrcColumn::kReserved:
        return !take_word().empty();
      case TrcColumn::kLength:
        return take_length();
      case TrcColumn::kLengthCode:
        return take_length_code();
      case TrcColumn::kData:
        return take_data();
    }
    return false;
  }

  void skip_blanks() {
    while (at_ != end_ && is_blank(*at_)) ++at_;
  }

  std::string_view take_word() {
    const char* const begin = at_;
    while (at_ != end_ && !is_blank(*at_)) ++at_;
    return {begin, static_cast<std::size_t>(at_ - begin)};
  }

  bool is_at_end_of_word() const { return at_ == end_ || is_blank(*at_); }

  /// A number of at most so many digits; further ones are left.
  ///
  /// @return how many there are
  std::size_t take_digits(std::size_t most, std::uint64_t& number) {
    std::size_t count = 0;
    number = 0;
    for (; count < most && at_ != end_ && is_digit(*at_); ++count, ++at_)
      number = number * 10 + static_cast<unsigned>(*at_ - '0');
    return count;
  }

  bool take_line_number() {
    const char* const begin = at_;
    while (at_ != end_ && is_digit(*at_)) ++at_;
    const bool has_digits = at_ != begin;
    if (at_ != end_ && *at_ == ')') ++at_;
    return has_digits && is_at_end_of_word();
  }

  bool take_time() {
    constexpr std::size_t kFractionDigits = 6;  // of a millisecond, until nanoseconds
    constexpr std::array<std::int64_t, kFractionDigits + 1> kUnits = {
        1'000'000, 100'000, 10'000, 1'000, 100, 10, 1};
    std::uint64_t milliseconds = 0;
    std::uint64_t fraction = 0;
    std::size_t fraction_digits = 0;
    if (take_digits(kMostMillisecondDigits, milliseconds) == 0) return false;
    if (at_ != end_ && *at_ == '.') {
      ++at_;
      fraction_digits = take_digits(kFractionDigits, fraction);
      while (at_ != end_ && is_digit(*at_)) ++at_;
      if (fraction_digits == 0) return false;
    }
    frame_.time = static_cast<std::int64_t>(milliseconds) * kUnits[0] +
                  static_cast<std::int64_t>(fraction) * kUnits[fraction_digits];
    frame_.has_time = true;
    return is_at_end_of_word();
  }

  bool take_type() {
    const std::string_view word = take_word();
    if (word.size() != 2) return false;
    switch (pair(word[0], word[1])) {
      case pair('D', 'T'):
        return true;
      case pair('F', 'D'):
        return set(kZelkFrameFd);
      case pair('F', 'B'):
        return set(kZelkFrameFd | kZelkFrameBrs);
      case pair('F', 'E'):
        return set(kZelkFrameFd | kZelkFrameEsi);
      case pair('B', 'I'):
        return set(kZelkFrameFd | kZelkFrameBrs | kZelkFrameEsi);
      case pair('R', 'R'):
        return set(kZelkFrameRemote);
      case pair('E', 'R'):
        return take_error();
      case pair('S', 'T'):
      case pair('E', 'C'):
      case pair('E', 'V'):
        return is_other_ = true;
      default:
        return false;
    }
  }

  bool take_old_type() {
    const std::string_view word = take_word();
    if (word == "Warng") return is_other_ = true;
    if (word == "Error") return set(kZelkFrameError);
    return take_direction(word);
  }

  bool set(unsigned flags) {
    frame_.flags |= flags;
    return true;
  }

  bool take_direction(std::string_view word) {
    if (word == "Tx") return set(kZelkFrameSent);
    return word == "Rx";
  }

  bool take_bus() {
    std::uint64_t bus = 0;
    if (take_digits(2, bus) == 0 || bus == 0) return false;
    frame_.bus = static_cast<unsigned>(bus);
    return is_at_end_of_word();
  }

  bool take_id() {
    const std::string_view word = take_word();
    if (word.size() != 4 && word.size() != 8) return false;
    std::uint32_t number = 0;
    int others = 0;
    for (const char c : word) {
      const int digit = digit_value(c);
      others |= digit;
      number = number << 4 | (static_cast<std::uint32_t>(digit) & 0xF);
    }
    if (others < 0) return false;
    is_other_ = number == kStatusId;
    frame_.id = word.size() == 4 ? number : number | ZELK_ID_EXTENDED;
    return is_other_ || number <= (word.size() == 4 ? kLargestStandardId : kLargestExtendedId);
  }

  bool take_length() {
    std::uint64_t length = 0;
    if (take_digits(4, length) == 0 || !is_at_end_of_word()) return false;
    frame_.length = static_cast<std::size_t>(length);
    return length <= (frame_.flags & kZelkFrameFd ? ZelkFrame::kMostData : kLongestTrcData);
  }

  bool take_length_code() {
    std::uint64_t code = 0;
    if (take_digits(2, code) == 0 || !is_at_end_of_word() || code >= kBytesOfCode.size())
      return false;
    frame_.length = kBytesOfCode[static_cast<std::size_t>(code)];
    if (!(frame_.flags & kZelkFrameFd)) frame_.length = std::min(frame_.length, kClassicBytes);
    return true;
  }

  bool take_data() {
    const bool is_request = at_ != end_ && *at_ == 'R';
    if (is_request && take_word() != "RTR") return false;
    if (is_request || frame_.flags & kZelkFrameRemote) {
      frame_.flags |= kZelkFrameRemote;
      frame_.length = std::min(frame_.length, kClassicBytes);
      std::memset(frame_.data, 0, frame_.length);
    } else if (!take_bytes()) {
      return false;
    }
    std::memset(frame_.data + frame_.length, 0, ZelkFrameBlock::kSlack);
    return true;
  }

  bool take_bytes() {
    if (take_plain_bytes()) return true;
    for (std::size_t i = 0; i < frame_.length; ++i) {
      if (end_ - at_ < 2) return false;
      const int byte = byte_at(at_);
      if (byte < 0) return false;
      frame_.data[i] = static_cast<unsigned char>(byte);
      at_ += 2;
      if (!is_at_end_of_word()) return false;
      skip_blanks();
    }
    return true;
  }

  /// Takes bytes that are parted by one blank each, and are the last ones of the line, as recorders
  /// write them.
  bool take_plain_bytes() {
    const std::size_t count = frame_.length;
    if (static_cast<std::size_t>(end_ - at_) + 1 != 3 * count || count == 0) return false;
    int faults = 0;
    for (std::size_t i = 0; i < count; ++i) {
      const char* const at = at_ + 3 * i;
      const int byte = byte_at(at);
      faults |= byte;
      if (i > 0 && at[-1] != ' ') return false;
      frame_.data[i] = static_cast<unsigned char>(byte);
    }
    if (faults < 0) return false;
    at_ = end_;
    return true;
  }

  /// Two digits; negative for anything else.
  static int byte_at(const char* at) { return digit_value(at[0]) * 16 | digit_value(at[1]); }

  /// What stands behind "ER" differs between recorders; at its end there are five bytes, the first
  /// one with the kind of the error.
  bool take_error() {
    constexpr std::string_view kBytes = "00 00 00 00 00";
    unsigned kind = 0;
    if (static_cast<std::size_t>(end_ - at_) > kBytes.size()) {
      const char* const bytes = end_ - kBytes.size();
      const int value = byte_at(bytes);
      if (value >= 0 && is_blank(bytes[-1]) && is_blank(bytes[2]))
        kind = static_cast<unsigned>(value);
    }
    set(kZelkFrameError);
    make_error_frame(kind);
    is_complete_ = true;
    return true;
  }

  void make_error_frame(unsigned kind) {
    frame_.id = kProtocolErrorClass | ZELK_ID_EXTENDED;
    frame_.length = kClassicBytes;
    std::memset(frame_.data, 0, kClassicBytes + ZelkFrameBlock::kSlack);
    frame_.data[2] = static_cast<unsigned char>(kind & kErrorKindBits);
  }

  const char* at_;
  const char* end_;
  TrcFrame& frame_;
  bool is_other_ = false;     // than a frame
  bool is_complete_ = false;  // the columns that follow do not matter
};

}  // namespace

LineKind parse_trc_line(std::string_view line, const TrcHeader& header, TrcFrame& frame) {
  if (line.size() > kLongestLine) return LineKind::kMalformed;
  return TrcLine(line, frame).parse(header.columns);
}

}  // namespace zelk::logs
