#include "logs/forms/candump_line.hpp"

#include <algorithm>
#include <cstring>
#include <utility>

#include "base/characters.hpp"
#include "base/frame_id.hpp"
#include "logs/forms/hex.hpp"
#include "logs/forms/lines.hpp"
#include "zelk/logs/candump.hpp"
#include "zelk/logs/times.hpp"
#include "zelk/records.h"

// Grammar of a line. Blanks and tabs part the words, and may stand around them.
//
// clang-format off
//   line      = [ "(" time ")" ] ( channel ( log | terminal ) | log )
//   log       = frame [ "R" | "T" ]
//   frame     = id "#" ( data [ "_" hex ] | "R" [ hex ] [ "_" hex ] ) | id "##" flags data
//   terminal  = [ ( "RX" | "TX" ) flag flag ] id "[" length "]" ( bytes [ remark ] | "remote request" )
//   flag      = "-" | "B" | "E" | ...
//   id        = 3 hex (11 bits) | 8 hex (29 bits; with bit 29 an error frame)
//   data      = { hex hex [ "." ] }
//   remark    = "'" the data as characters "'" | "ERRORFRAME"
// clang-format on

namespace zelk::logs {

namespace {

constexpr std::size_t kStandardIdDigits = 3;
constexpr std::size_t kExtendedIdDigits = 8;
constexpr std::size_t kLongestTime = 40;

bool is_blank(char c) { return c == ' ' || c == '\t'; }

void skip_blanks(std::string_view& text) {
  std::size_t count = 0;
  while (count < text.size() && is_blank(text[count])) ++count;
  text.remove_prefix(count);
}

void drop_line_end(std::string_view& text) {
  if (text.ends_with('\r')) text.remove_suffix(1);
  while (!text.empty() && is_blank(text.back())) text.remove_suffix(1);
}

/// Takes the characters up to the next blank, and the blanks behind them.
std::string_view take_word(std::string_view& text) {
  std::size_t length = 0;
  while (length < text.size() && !is_blank(text[length])) ++length;
  const std::string_view word = text.substr(0, length);
  text.remove_prefix(length);
  skip_blanks(text);
  return word;
}

/// What may stand behind a frame of the log form: nothing, or whether it was received or sent.
bool is_direction(std::string_view text) { return text.empty() || text == "R" || text == "T"; }

/// A number of seconds or a date: nothing that an output would have to escape.
bool is_time(std::string_view text) {
  if (text.empty() || text.size() > kLongestTime) return false;
  return std::ranges::all_of(text, [](char c) {
    return is_digit(c) || std::string_view(".-: +TZ").find(c) != std::string_view::npos;
  });
}

/// Takes "(time)", if there is one; false when it is malformed.
bool take_time(std::string_view& line, LineFrame& frame) {
  frame.time = {};
  if (!line.starts_with('(')) return true;
  const std::size_t end = line.find(')');
  if (end == std::string_view::npos) return false;
  frame.time = line.substr(1, end - 1);
  while (frame.time.starts_with(' ')) frame.time.remove_prefix(1);
  line.remove_prefix(end + 1);
  skip_blanks(line);
  return is_time(frame.time);
}

/// Reads an identifier with its format; that of an error frame has the classes of its error.
bool parse_id(std::string_view digits, LineFrame& frame) {
  if (digits.size() != kStandardIdDigits && digits.size() != kExtendedIdDigits) return false;
  std::uint32_t number = 0;
  for (const char c : digits) {
    const int digit = digit_value(c);
    if (digit == kNoDigit) return false;
    number = number << 4 | static_cast<std::uint32_t>(digit);
  }
  if (digits.size() == kStandardIdDigits) {
    frame.id = number;
    return number <= kLargestStandardId;
  }
  if (number & kErrorFlag) frame.flags |= kZelkFrameError;
  frame.id = (number & ~kErrorFlag) | ZELK_ID_EXTENDED;
  return (number & ~kErrorFlag) <= kLargestExtendedId;
}

bool is_fd(const LineFrame& frame) { return frame.flags & kZelkFrameFd; }

/// Takes the two digits of a byte into the frame.
bool take_byte(std::string_view& text, LineFrame& frame) {
  if (text.size() < 2) return false;
  const int high = digit_value(text[0]);
  const int low = digit_value(text[1]);
  if ((high | low) < 0) return false;
  frame.data[frame.length++] = static_cast<unsigned char>(high << 4 | low);
  text.remove_prefix(2);
  return true;
}

/// Takes bytes, which may have dots between them, up to the end or a "_".
bool take_data(std::string_view& text, LineFrame& frame) {
  const std::size_t most = is_fd(frame) ? ZelkFrame::kMostData : kClassicBytes;
  while (!text.empty() && text.front() != '_') {
    if (frame.length == most) return false;
    if (frame.length > 0 && text.front() == '.') text.remove_prefix(1);
    if (!take_byte(text, frame)) return false;
  }
  return true;
}

/// What may be left of a classic frame: nothing, or "_" and the length code of 9 to 15 that came
/// with 8 bytes.
bool is_length_code(std::string_view text) {
  return text.empty() || (text.size() == 2 && text[0] == '_' && digit_value(text[1]) > 8);
}

bool parse_request(std::string_view text, LineFrame& frame) {
  frame.flags |= kZelkFrameRemote;
  const int length = text.empty() ? kNoDigit : digit_value(text.front());
  if (length != kNoDigit) {
    text.remove_prefix(1);
    frame.length = std::min(static_cast<std::size_t>(length), kClassicBytes);
    std::memset(frame.data, 0, frame.length);
  }
  return is_length_code(text);
}

/// The digit behind "##".
bool take_fd_flags(std::string_view& text, LineFrame& frame) {
  const int digit = text.empty() ? kNoDigit : digit_value(text.front());
  if (digit == kNoDigit) return false;
  frame.flags |= fd_flags(digit);
  text.remove_prefix(1);
  return true;
}

/// "123#DEADBEEF"
bool parse_log_form(std::string_view text, LineFrame& frame) {
  const std::size_t mark = text.find('#');
  if (!parse_id(text.substr(0, mark), frame)) return false;
  text.remove_prefix(mark + 1);
  if (text.starts_with('#')) {
    text.remove_prefix(1);
    if (!take_fd_flags(text, frame)) return false;
  } else if (text.starts_with('R')) {
    return parse_request(text.substr(1), frame);
  }
  if (!take_data(text, frame)) return false;
  const bool may_have_code = !is_fd(frame) && frame.length == kClassicBytes;
  return may_have_code ? is_length_code(text) : text.empty();
}

/// "[8]"; two digits mean CAN FD.
bool parse_length(std::string_view word, LineFrame& frame, std::size_t& length) {
  if (word.size() < 3 || word.size() > 4 || !word.starts_with('[') || !word.ends_with(']'))
    return false;
  length = 0;
  for (const char c : word.substr(1, word.size() - 2)) {
    if (!is_digit(c)) return false;
    length = length * 10 + static_cast<std::size_t>(c - '0');
  }
  if (word.size() == 4) frame.flags |= kZelkFrameFd;
  return length <= (is_fd(frame) ? ZelkFrame::kMostData : kClassicBytes);
}

/// The bytes of the terminal form, and what may stand behind them.
bool parse_bytes(std::string_view text, std::size_t length, LineFrame& frame) {
  while (frame.length < length) {
    if (!take_byte(text, frame)) return false;
    if (!text.empty() && !is_blank(text.front())) return false;
    skip_blanks(text);
  }
  return text.empty() || text.front() == '\'' || text == "ERRORFRAME";
}

/// Takes what "candump -x" puts in front: the direction, and whether the second bit rate was used
/// and the sender was error passive.
bool take_extra(std::string_view& word, std::string_view& rest, LineFrame& frame) {
  if (word == "TX") frame.flags |= kZelkFrameSent;
  const std::string_view rate = take_word(rest);
  const std::string_view state = take_word(rest);
  if (rate == "B") frame.flags |= kZelkFrameBrs;
  if (state == "E") frame.flags |= kZelkFrameEsi;
  word = take_word(rest);
  return rate.size() == 1 && state.size() == 1;
}

/// "123   [4]  DE AD BE EF"
bool parse_terminal_form(std::string_view word, std::string_view rest, LineFrame& frame) {
  const bool has_extra = word == "RX" || word == "TX";
  if (has_extra && !take_extra(word, rest, frame)) return false;
  std::size_t length = 0;
  if (!parse_id(word, frame) || !parse_length(take_word(rest), frame, length)) return false;
  if (rest == "remote request") {
    frame.flags |= kZelkFrameRemote;
    return true;
  }
  return parse_bytes(rest, length, frame);
}

bool parse_frame(std::string_view word, std::string_view rest, LineFrame& frame) {
  if (word.find('#') == std::string_view::npos) return parse_terminal_form(word, rest, frame);
  if (!is_direction(rest)) return false;
  if (rest == "T") frame.flags |= kZelkFrameSent;
  return parse_log_form(word, frame);
}

}  // namespace

LineKind parse_candump_line(std::string_view line, LineFrame& frame) {
  if (line.size() > kLongestLine) return LineKind::kMalformed;
  drop_line_end(line);
  skip_blanks(line);
  if (line.empty()) return LineKind::kBlank;
  frame.flags = 0;
  frame.length = 0;
  if (!take_time(line, frame)) return LineKind::kMalformed;
  frame.channel = take_word(line);
  std::string_view word = take_word(line);
  if (line.empty() && is_direction(word)) {
    line = word;
    word = std::exchange(frame.channel, {});
  }
  if (frame.channel.size() > kZelkLongestChannel) return LineKind::kMalformed;
  if (!parse_frame(word, line, frame)) return LineKind::kMalformed;
  std::memset(frame.data + frame.length, 0, ZelkFrameBlock::kSlack);
  return LineKind::kFrame;
}

bool parse_candump_frame(std::string_view text, LineFrame& frame) {
  frame.flags = 0;
  frame.length = 0;
  return text.find('#') != std::string_view::npos && parse_log_form(text, frame);
}

unsigned fd_flags(int digit) {
  unsigned flags = kZelkFrameFd;
  if (digit & 1) flags |= kZelkFrameBrs;
  if (digit & 2) flags |= kZelkFrameEsi;
  if (digit & 4) flags |= kZelkFrameMarkFdf;
  return flags;
}

std::int64_t time_of(const LineFrame& frame) {
  if (frame.time.empty()) return kZelkNoTime;
  return ZelkParseTime(frame.time).value_or(kZelkNoTime);
}

}  // namespace zelk::logs
