#include "log/candump_log.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "base/characters.hpp"
#include "words/record_words.hpp"

// Grammar of a line. Blanks and tabs part the words, and may stand around them.
//
// clang-format off
//   line      = [ "(" time ")" ] ( interface ( log | terminal ) | log )
//   log       = frame [ "R" | "T" ]
//   frame     = id "#" ( data [ "_" hex ] | "R" [ hex ] [ "_" hex ] ) | id "##" flags data
//   terminal  = [ ( "RX" | "TX" ) flag flag ] id "[" length "]" ( bytes [ remark ] | "remote request" )
//   id        = 3 hex (11 bits) | 8 hex (29 bits; with bit 29 an error frame)
//   data      = { hex hex [ "." ] }
//   remark    = "'" the data as characters "'" | "ERRORFRAME"
// clang-format on

namespace zelk::tool {

namespace {

constexpr std::size_t kStandardIdDigits = 3;
constexpr std::size_t kExtendedIdDigits = 8;
constexpr std::uint32_t kLargestStandardId = 0x7FF;
constexpr std::uint32_t kLargestExtendedId = 0x1FFFFFFF;
constexpr std::uint32_t kErrorFlag = 0x20000000;
constexpr std::size_t kLongestTime = 40;

constexpr int kNoDigit = -1;

/// Value of a hexadecimal digit; `kNoDigit` for another character.
int digit_value(char c) {
  if (is_digit(c)) return c - '0';
  const char upper = to_upper(c);
  return upper >= 'A' && upper <= 'F' ? upper - 'A' + 10 : kNoDigit;
}

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
bool take_time(std::string_view& line, LogFrame& frame) {
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

/// Reads an identifier with its format; an error frame's keeps the flag of errors.
bool parse_frame_id(std::string_view digits, std::uint32_t& id) {
  if (digits.size() != kStandardIdDigits && digits.size() != kExtendedIdDigits) return false;
  std::uint32_t number = 0;
  for (const char c : digits) {
    const int digit = digit_value(c);
    if (digit == kNoDigit) return false;
    number = number << 4 | static_cast<std::uint32_t>(digit);
  }
  if (digits.size() == kStandardIdDigits) {
    id = number;
    return number <= kLargestStandardId;
  }
  id = number | ZELK_ID_EXTENDED;
  return number <= (kErrorFlag | kLargestExtendedId);
}

LogLine kind_of(const LogFrame& frame) {
  const bool is_error = (frame.id & ZELK_ID_EXTENDED) && (frame.id & kErrorFlag);
  return is_error ? LogLine::kError : LogLine::kData;
}

/// Takes the two digits of a byte into the frame.
bool take_byte(std::string_view& text, LogFrame& frame) {
  if (text.size() < 2) return false;
  const int high = digit_value(text[0]);
  const int low = digit_value(text[1]);
  if ((high | low) < 0) return false;
  frame.data[frame.length++] = static_cast<unsigned char>(high << 4 | low);
  text.remove_prefix(2);
  return true;
}

/// Takes bytes, which may have dots between them, up to the end or a "_".
bool take_data(std::string_view& text, LogFrame& frame) {
  const std::size_t most = frame.is_fd ? kFdDataBytes : kClassicDataBytes;
  frame.length = 0;
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

LogLine parse_remote(std::string_view text, LogFrame& frame) {
  frame.length = 0;
  if (!text.empty() && digit_value(text.front()) >= 0) text.remove_prefix(1);
  return is_length_code(text) ? LogLine::kRemote : LogLine::kMalformed;
}

bool take_fd_flags(std::string_view& text, LogFrame& frame) {
  if (text.empty() || digit_value(text.front()) == kNoDigit) return false;
  frame.fd_flags = static_cast<std::uint8_t>(digit_value(text.front()));
  text.remove_prefix(1);
  return true;
}

/// "[8]"; two digits mean CAN FD.
bool parse_length(std::string_view word, LogFrame& frame, std::size_t& length) {
  if (word.size() < 3 || word.size() > 4 || !word.starts_with('[') || !word.ends_with(']'))
    return false;
  length = 0;
  for (const char c : word.substr(1, word.size() - 2)) {
    if (!is_digit(c)) return false;
    length = length * 10 + static_cast<std::size_t>(c - '0');
  }
  frame.is_fd = word.size() == 4;
  frame.fd_flags = 0;
  return length <= (frame.is_fd ? kFdDataBytes : kClassicDataBytes);
}

/// The bytes of the terminal form, and what may stand behind them.
bool parse_bytes(std::string_view text, std::size_t length, LogFrame& frame) {
  frame.length = 0;
  while (frame.length < length) {
    if (!take_byte(text, frame)) return false;
    if (!text.empty() && !is_blank(text.front())) return false;
    skip_blanks(text);
  }
  return text.empty() || text.front() == '\'' || text == "ERRORFRAME";
}

LogLine parse_terminal(std::string_view word, std::string_view rest, LogFrame& frame) {
  if (word == "RX" || word == "TX") {
    if (take_word(rest).size() != 1 || take_word(rest).size() != 1) return LogLine::kMalformed;
    word = take_word(rest);
  }
  std::size_t length = 0;
  if (!parse_frame_id(word, frame.id)) return LogLine::kMalformed;
  if (!parse_length(take_word(rest), frame, length)) return LogLine::kMalformed;
  if (rest == "remote request") return LogLine::kRemote;
  return parse_bytes(rest, length, frame) ? kind_of(frame) : LogLine::kMalformed;
}

}  // namespace

LogLine parse_frame(std::string_view text, LogFrame& frame) {
  const std::size_t mark = text.find('#');
  if (mark == std::string_view::npos) return LogLine::kMalformed;
  if (!parse_frame_id(text.substr(0, mark), frame.id)) return LogLine::kMalformed;
  text.remove_prefix(mark + 1);
  frame.fd_flags = 0;
  frame.is_fd = text.starts_with('#');
  if (frame.is_fd) {
    text.remove_prefix(1);
    if (!take_fd_flags(text, frame)) return LogLine::kMalformed;
  } else if (text.starts_with('R')) {
    return parse_remote(text.substr(1), frame);
  }
  if (!take_data(text, frame)) return LogLine::kMalformed;
  const bool is_whole =
      frame.is_fd || frame.length < kClassicDataBytes ? text.empty() : is_length_code(text);
  return is_whole ? kind_of(frame) : LogLine::kMalformed;
}

LogLine parse_log_line(std::string_view line, LogFrame& frame) {
  drop_line_end(line);
  skip_blanks(line);
  if (line.empty()) return LogLine::kBlank;
  if (!take_time(line, frame)) return LogLine::kMalformed;
  frame.interface_name = take_word(line);
  std::string_view word = take_word(line);
  if (line.empty() && is_direction(word)) word = std::exchange(frame.interface_name, {});
  if (frame.interface_name.size() > kLongestInterface) return LogLine::kMalformed;
  if (word.find('#') == std::string_view::npos) return parse_terminal(word, line, frame);
  if (!is_direction(line)) return LogLine::kMalformed;
  return parse_frame(word, frame);
}

std::string frame_text(const LogFrame& frame) {
  std::string text = fmt::format("{:0{}X}#", bare_id(frame.id), id_digits(frame.id));
  if (frame.is_fd) text += fmt::format("#{:X}", frame.fd_flags);
  for (std::size_t i = 0; i < frame.length; ++i)
    fmt::format_to(std::back_inserter(text), "{:02X}", frame.data[i]);
  return text;
}

}  // namespace zelk::tool
