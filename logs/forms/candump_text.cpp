#include <array>
#include <cstring>
#include <span>
#include <stdexcept>

#include "logs/forms/candump_line.hpp"
#include "zelk/logs/candump.hpp"
#include "zelk/logs/times.hpp"
#include "zelk/records.h"

namespace {

/// Appends so many hexadecimal digits.
void append_hex(std::string& text, std::uint32_t number, int digits) {
  for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4)
    text += "0123456789ABCDEF"[number >> shift & 15];
}

void append_id(std::string& text, std::uint32_t id, unsigned flags) {
  const std::uint32_t error = flags & kZelkFrameError ? zelk::logs::kErrorFlag : 0;
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
                       std::string& text, std::optional<std::int64_t> time) {
  const std::span<const unsigned char> data = frames.Data(index);
  if (data.size() > ZelkFrame::kMostData)
    throw std::length_error("a line of a log has no place for more than 64 bytes");
  const std::int64_t shown = time.value_or(frames.Times()[index]);
  if (shown != kZelkNoTime) {
    text += '(';
    ZelkAppendTime(shown, text);
    text += ") ";
  }
  const std::string& name = frames.ChannelNames()[frames.Channels()[index]];
  text.append(name.empty() ? channel : std::string_view(name)).append(" ");
  const unsigned flags = frames.Flags()[index];
  append_frame(text, frames.Ids()[index], flags, data);
  text += flags & kZelkFrameSent ? " T\n" : "\n";
}
