/// \file
/// Bytes in memory as a stream, and what a form of logs makes of them.

#ifndef ZELK_TESTS_SUPPORT_MEMORY_STREAM_HPP
#define ZELK_TESTS_SUPPORT_MEMORY_STREAM_HPP

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "logs/forms/form.hpp"

namespace zelk::logs {

/// Gives out a text in pieces.
class MemoryStream : public ByteStream {
 public:
  /// @param most  bytes of a piece
  explicit MemoryStream(std::string text, std::size_t most = 1 << 20)
      : text_(std::move(text)), most_(most) {}
  std::size_t read(char* buffer, std::size_t size) override {
    const std::size_t count = text_.copy(buffer, std::min(size, most_), at_);
    at_ += count;
    return count;
  }

 private:
  std::string text_;
  std::size_t most_;
  std::size_t at_ = 0;
};

inline LogInput memory_input(std::string text, std::size_t most = 1 << 20,
                             ZelkLogTimes times = ZelkLogTimes::kDetect) {
  auto stream = std::make_unique<MemoryStream>(std::move(text), most);
  return {std::make_unique<PeekedStream>(std::move(stream)), "log", {.times = times}};
}

/// "time id flags data channel time-text", without blanks at its end.
inline std::string frame_text(const ZelkFrameBlock& frames, std::size_t index) {
  const std::int64_t time = frames.Times()[index];
  char part[16];
  std::snprintf(part, sizeof part, " %X ", frames.Ids()[index]);
  std::string line = (time == kZelkNoTime ? "-" : std::to_string(time)) + part +
                     std::to_string(frames.Flags()[index]) + ' ';
  for (const unsigned char byte : frames.Data(index)) {
    std::snprintf(part, sizeof part, "%02X", byte);
    line += part;
  }
  line += ' ' + frames.ChannelNames()[frames.Channels()[index]] + ' ';
  line += frames.TimeText(index);
  return line.substr(0, line.find_last_not_of(' ') + 1);
}

/// The frames of a log, and behind those of each block its malformed lines with their numbers; at
/// the end the error that has ended it.
inline std::vector<std::string> parsed(Form& form) {
  std::vector<std::string> result;
  Chunk chunk;
  try {
    while (form.next(chunk)) {
      ZelkLogBlock block;
      form.parse(chunk, block);
      for (std::size_t i = 0; i < block.frames.Size(); ++i)
        result.push_back(frame_text(block.frames, i));
      for (const ZelkMalformedLine& line : block.malformed)
        result.push_back(std::to_string(line.number) + ": " + line.text);
    }
  } catch (const ZelkLogError& error) {
    result.emplace_back(error.what());
  }
  return result;
}

}  // namespace zelk::logs

#endif
