#include "encode/encode_message.hpp"

#include <fmt/format.h>

#include "base/j1939.hpp"
#include "encode/frame_encoder.hpp"
#include "input/lookup.hpp"
#include "term/text.hpp"
#include "words/attribute_words.hpp"

namespace zelk::tool {

namespace {

bool has_fd_format(const ZelkDatabase& database, const msgblk& message) {
  return effective_text(message.attrs, database.GetAttrDef(j1939::kFrameFormatAttribute))
      .ends_with("FD");
}

LogFrame empty_frame(const ZelkDatabase& database, const msgblk& message) {
  if (message.dlc > kFdDataBytes) {
    throw RequestError(fmt::format("{} has {}, and a frame at most {}", escaped(view(message.name)),
                                   counted(message.dlc, "byte"), kFdDataBytes));
  }
  LogFrame frame;
  frame.id = message.id;
  frame.length = message.dlc;
  frame.is_fd = message.dlc > kClassicDataBytes || has_fd_format(database, message);
  return frame;
}

/// A frame of the message, in which signals are to be changed. The addresses of a parameter group
/// may be others than in the database.
LogFrame parse_given_frame(const ZelkDatabase& database, const msgblk& message,
                           const std::string& text) {
  LogFrame frame;
  if (parse_frame(text, frame) != LogLine::kData) {
    throw RequestError(
        fmt::format("{} is not a frame with data, such as 123#DEADBEEF", in_quotes(text)));
  }
  const bool is_extended = frame.id & ZELK_ID_EXTENDED;
  if (frame.id != message.id &&
      !(is_extended && database.GetJ1939Message(frame.id, 0) == &message)) {
    throw RequestError(
        fmt::format("{} is not a frame of {}", in_quotes(text), escaped(view(message.name))));
  }
  return frame;
}

}  // namespace

LogFrame encode_message(EncodedDatabase of, const FrameValues& wanted) {
  const ZelkDatabase& database = of.records;
  ValueOptions options = wanted.options;
  options.encoding = of.encoding;
  const msgblk& message = *find_messages(database, wanted.message).front();
  const LogFrame start = wanted.from ? parse_given_frame(database, message, *wanted.from)
                                     : empty_frame(database, message);
  FrameEncoder encoder(message, start, wanted.from.has_value());
  for (const std::string& text : wanted.signals) {
    const std::size_t mark = text.find('=');
    if (mark == std::string::npos)
      throw RequestError(fmt::format("{} is not SIGNAL=VALUE", in_quotes(text)));
    const std::string_view whole = text;
    encoder.set(whole.substr(0, mark), whole.substr(mark + 1), options);
  }
  return encoder.finish();
}

}  // namespace zelk::tool
