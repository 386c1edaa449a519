#include <array>
#include <cstring>
#include <span>
#include <stdexcept>

#include "logs/forms/candump_line.hpp"
#include "logs/forms/times.hpp"
#include "zelk/logs/candump.hpp"
#include "zelk/records.h"

namespace {

using zelk::logs::kNanosecondsPerSecond;

constexpr std::uint32_t kErrorFlag = 0x20000000;

/// Appends so many hexadecimal digits.
void append_hex(std::string& text, std::uint32_t number, int digits) {
  for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4)
    text += "0123456789ABCDEF"[number >> shift & 15];
}

void append_id(std::string& text, std::uint32_t id, unsigned flags) {
  const std::uint32_t error = flags & kZelkFrameError ? kErrorFlag : 0;
  const bool is_long = (id & ZELK_ID_EXTENDED) || error;
  append_hex(text, (id & ~ZELK_ID_EXTENDED) | error, is_long ? 8 : 3);
}

void append_frame(std::string& text, std::uint32_t id, unsigned flags,
                  std::span<const unsigned char> data) {
  append_id(text, id, flags);
  text += '#';
  if (flags & kZelkFrameRemote) {
    text += 'R';
    if (!data.empty()) text += std::to_string(data.size());
    return;
  }
  if (flags & kZelkFrameFd) {
    const unsigned digit = (flags & kZelkFrameBrs ? 1u : 0u) | (flags & kZelkFrameEsi ? 2u : 0u) |
                           (flags & kZelkFrameMarkFdf ? 4u : 0u);
    text += '#';
    append_hex(text, digit, 1);
  }
  for (const unsigned char byte : data) append_hex(text, byte, 2);
}

/// "(1436509052.249713) "; whole seconds are rounded down, also in front of 1970.
void append_time(std::string& text, std::int64_t time) {
  std::int64_t seconds = time / kNanosecondsPerSecond;
  std::int64_t rest = time % kNanosecondsPerSecond;
  if (rest < 0) {
    --seconds;
    rest += kNanosecondsPerSecond;
  }
  std::string decimals = std::to_string(kNanosecondsPerSecond + rest).substr(1);
  if (decimals.ends_with("000")) decimals.resize(decimals.size() - 3);
  text.append("(").append(std::to_string(seconds)).append(".").append(decimals).append(") ");
}

}  // namespace

bool ZelkParseFrame(std::string_view text, ZelkFrame& frame) {
  std::array<unsigned char, ZelkFrame::kMostData + ZelkFrameBlock::kSlack> data{};
  zelk::logs::LineFrame line{.data = data.data()};
  if (!zelk::logs::parse_candump_frame(text, line)) return false;
  frame.id = line.id;
  frame.flags = static_cast<std::uint16_t>(line.flags);
  frame.length = static_cast<std::uint16_t>(line.length);
  std::memcpy(frame.data.data(), data.data(), frame.data.size());
  return true;
}

std::string ZelkFrameText(const ZelkFrame& frame) {
  std::string text;
  append_frame(text, frame.id, frame.flags, std::span(frame.data).first(frame.length));
  return text;
}

void ZelkAppendLogLine(const ZelkFrameBlock& frames, std::size_t index, std::string_view channel,
                       std::string& text) {
  const std::span<const unsigned char> data = frames.Data(index);
  if (data.size() > ZelkFrame::kMostData)
    throw std::length_error("a line of a log has no place for more than 64 bytes");
  if (frames.Times()[index] != kZelkNoTime) append_time(text, frames.Times()[index]);
  const std::string& name = frames.ChannelNames()[frames.Channels()[index]];
  text.append(name.empty() ? channel : std::string_view(name)).append(" ");
  const unsigned flags = frames.Flags()[index];
  append_frame(text, frames.Ids()[index], flags, data);
  text += flags & kZelkFrameSent ? " T\n" : "\n";
}
