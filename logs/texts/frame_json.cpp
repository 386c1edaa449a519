#include <algorithm>

#include "base/characters.hpp"
#include "base/decimal.hpp"
#include "base/frame_id.hpp"
#include "base/quoting.hpp"
#include "logs/texts/frame_format.hpp"
#include "logs/texts/prepared_message.hpp"

// {"time":T,"interface":"I","id":N,"extended":B,"message":"M","signals":{"S":V,...},
//  "texts":{"S":"DESCRIPTION",...}}, in one line; "time" and "texts" only when there are any, but a
// frame without an interface has null for it and for a time that it has not

namespace zelk::logs {

namespace {

constexpr std::string_view kNull = "null";  // no interface: the name of one stands in quotes

bool is_whole(std::string_view text) {
  return !text.empty() && std::ranges::all_of(text, is_digit);
}

/// Whether `text` is "digits" or "digits.digits", with a sign or without.
bool is_decimal(std::string_view text) {
  if (text.starts_with('-')) text.remove_prefix(1);
  const std::size_t point = text.find('.');
  if (point == std::string_view::npos) return is_whole(text);
  return is_whole(text.substr(0, point)) && is_whole(text.substr(point + 1));
}

/// A number, which in JSON has no leading zeros, when the time is one; else a string.
void append_time(LineBuffer& out, const DecodedFrame& frame) {
  std::string_view time = frame.time;
  if (time.empty()) {
    if (frame.interface_text == kNull) out.append("\"time\":null,");
    return;
  }
  out.append("\"time\":");
  if (is_decimal(time)) {
    if (time.starts_with('-')) {
      out.append('-');
      time.remove_prefix(1);
    }
    while (time.size() > 1 && time[0] == '0' && time[1] != '.') time.remove_prefix(1);
    out.append(time);
  } else {
    out.append('"');
    out.append(time);
    out.append('"');
  }
  out.append(',');
}

/// Makes an object of the members behind `start`, each of which has a comma in front.
void close_object(LineBuffer& out, std::size_t start) {
  if (out.size() == start) {
    out.append('{');
  } else {
    out.replace(start, '{');
  }
  out.append('}');
}

void append_descriptions(LineBuffer& out, const DecodedFrame& frame) {
  const std::size_t before = out.size();
  out.append(",\"texts\":");
  const std::size_t start = out.size();
  for_each_present(frame, [&](const PreparedSignal& signal, std::int64_t value) {
    out.append(signal.descriptions.find(value));
  });
  if (out.size() == start) return out.shrink_to(before);
  close_object(out, start);
}

class JsonFrames : public FrameFormat {
 public:
  std::string message_text(std::string_view name) const override { return json_string(name); }
  std::string interface_text(std::string_view name) const override {
    return name.empty() ? std::string(kNull) : json_string(name);
  }
  SignalTexts signal_texts(std::string_view name, std::string_view) const override {
    return {',' + json_string(name) + ':', ""};
  }
  std::string description_text(std::string_view name, std::string_view text) const override {
    return ',' + json_string(name) + ':' + json_string(text);
  }

  void append(LineBuffer& out, const DecodedFrame& frame, bool raw) const override {
    const std::size_t line = out.size();
    out.append('{');
    append_time(out, frame);
    out.append("\"interface\":");
    out.append(frame.interface_text);
    out.append(",\"id\":");
    out.end_at(put_integer(out.room(kNumberBytes), bare_id(frame.id), false));
    out.append(frame.id & ZELK_ID_EXTENDED ? ",\"extended\":true" : ",\"extended\":false");
    out.append(",\"message\":");
    out.append(frame.message->name);
    out.append(",\"signals\":");
    const std::size_t start = out.size();
    for_each_present(frame, [&](const PreparedSignal& signal, std::int64_t value) {
      out.append(signal.texts.lead);
      append_value(out, signal, value, raw, NonFinite::kAsNull);
    });
    if (frame.message->needs_signal && out.size() == start) return out.shrink_to(line);
    close_object(out, start);
    append_descriptions(out, frame);
    out.append("}\n");
  }
};

}  // namespace

const FrameFormat& json_frames() {
  static const JsonFrames format;
  return format;
}

}  // namespace zelk::logs
