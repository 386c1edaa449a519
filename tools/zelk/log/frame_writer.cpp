#include "log/frame_writer.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <cmath>

#include "term/text.hpp"

// A frame is written as
//
//   text  (TIME) INTERFACE MESSAGE SIGNAL=VALUE UNIT "DESCRIPTION" SIGNAL=...
//   json  {"time":T,"interface":"I","id":N,"extended":B,"message":"M","signals":{"S":V,...},
//         "texts":{"S":"DESCRIPTION",...}}, in one line; "time" and "texts" only when there are
//         any, but a frame without an interface has null for it and for a time that it has not
//   csv   TIME,INTERFACE,0xID,MESSAGE,SIGNAL,RAW,VALUE,UNIT,DESCRIPTION, a line for each signal

namespace zelk::tool {

namespace {

constexpr std::string_view kJsonNull = "null";  // no interface: the name of one stands in quotes

float single_value(std::int64_t raw) {
  return std::bit_cast<float>(static_cast<std::uint32_t>(raw));
}

/// The number in an IEEE signal.
double ieee_value(const SignalLayout& signal, std::int64_t raw) {
  if (signal.value_type == ZELK_VALUE_IEEE_DOUBLE) return std::bit_cast<double>(raw);
  return static_cast<double>(single_value(raw));
}

/// Not-a-number and the infinities are no JSON.
void append_double(LineBuffer& out, double value, FrameFormat format) {
  if (format == FrameFormat::kJson && !std::isfinite(value)) return out.append("null");
  out.end_at(put_double(out.room(kNumberBytes), value));
}

/// The number in an IEEE signal, with no more digits than its bits are worth.
void append_ieee(LineBuffer& out, const SignalLayout& signal, std::int64_t raw,
                 FrameFormat format) {
  const double value = ieee_value(signal, raw);
  if (signal.value_type == ZELK_VALUE_IEEE_DOUBLE || !std::isfinite(value))
    return append_double(out, value, format);
  out.end_at(put_float(out.room(kNumberBytes), single_value(raw)));
}

void append_raw(LineBuffer& out, const SignalLayout& signal, std::int64_t raw, FrameFormat format) {
  if (is_ieee(signal.value_type)) return append_ieee(out, signal, raw, format);
  out.end_at(put_integer(out.room(kNumberBytes), raw, signal.is_signed));
}

void append_physical(LineBuffer& out, const SignalLayout& signal, std::int64_t raw,
                     FrameFormat format) {
  if (!is_ieee(signal.value_type)) {
    out.end_at(signal.scale.put(out.room(kNumberBytes), raw, signal.is_signed));
  } else if (signal.factor == 1 && signal.offset == 0) {
    append_ieee(out, signal, raw, format);
  } else {
    append_double(out, ieee_value(signal, raw) * signal.factor + signal.offset, format);
  }
}

void append_value(LineBuffer& out, const SignalLayout& signal, std::int64_t raw,
                  const FrameOptions& options) {
  if (options.raw) return append_raw(out, signal, raw, options.format);
  append_physical(out, signal, raw, options.format);
}

/// Calls `tell(signal, raw)` for each signal that is to be told and that the frame holds.
template <typename Tell>
void for_each_present(const DecodedFrame& frame, const Tell& tell) {
  for (const SignalLayout& signal : frame.message->signals) {
    if (frame.present[signal.index / 64] >> (signal.index % 64) & 1)
      tell(signal, frame.raw[signal.index]);
  }
}

void append_text(LineBuffer& out, const DecodedFrame& frame, const FrameOptions& options) {
  const std::size_t line = out.size();
  if (!frame.time.empty()) {
    out.append('(');
    out.append(frame.time);
    out.append(") ");
  }
  out.append(frame.interface_text);
  out.append(frame.message->name);
  const std::size_t signals = out.size();
  for_each_present(frame, [&](const SignalLayout& signal, std::int64_t raw) {
    out.append(signal.lead);
    append_value(out, signal, raw, options);
    out.append(signal.trail);
    out.append(signal.descriptions.find(raw));
  });
  if (frame.message->needs_signal && out.size() == signals) return out.shrink_to(line);
  out.append('\n');
}

/// Whether `text` is "digits" or "digits.digits".
bool is_decimal(std::string_view text) {
  const std::size_t point = text.find('.');
  const auto is_whole = [](std::string_view part) {
    return !part.empty() && part.find_first_not_of("0123456789") == std::string_view::npos;
  };
  if (point == std::string_view::npos) return is_whole(text);
  return is_whole(text.substr(0, point)) && is_whole(text.substr(point + 1));
}

/// A number, which in JSON has no leading zeros, when the time is one; else a string.
void append_json_time(LineBuffer& out, const DecodedFrame& frame) {
  std::string_view time = frame.time;
  if (time.empty()) {
    if (frame.interface_text == kJsonNull) out.append("\"time\":null,");
    return;
  }
  out.append("\"time\":");
  if (is_decimal(time)) {
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

void append_json_texts(LineBuffer& out, const DecodedFrame& frame) {
  const std::size_t before = out.size();
  out.append(",\"texts\":");
  const std::size_t start = out.size();
  for_each_present(frame, [&](const SignalLayout& signal, std::int64_t raw) {
    out.append(signal.descriptions.find(raw));
  });
  if (out.size() == start) return out.shrink_to(before);
  close_object(out, start);
}

void append_json(LineBuffer& out, const DecodedFrame& frame, const FrameOptions& options) {
  const std::size_t line = out.size();
  out.append('{');
  append_json_time(out, frame);
  out.append("\"interface\":");
  out.append(frame.interface_text);
  out.append(",\"id\":");
  out.end_at(put_integer(out.room(kNumberBytes), frame.id & ~ZELK_ID_EXTENDED, false));
  out.append(frame.id & ZELK_ID_EXTENDED ? ",\"extended\":true" : ",\"extended\":false");
  out.append(",\"message\":");
  out.append(frame.message->name);
  out.append(",\"signals\":");
  const std::size_t start = out.size();
  for_each_present(frame, [&](const SignalLayout& signal, std::int64_t raw) {
    out.append(signal.lead);
    append_value(out, signal, raw, options);
  });
  if (frame.message->needs_signal && out.size() == start) return out.shrink_to(line);
  close_object(out, start);
  append_json_texts(out, frame);
  out.append("}\n");
}

/// What stands in front of the signal's name.
void append_csv_lead(LineBuffer& out, const DecodedFrame& frame) {
  out.append(frame.time);
  out.append(',');
  out.append(frame.interface_text);
  const int digits = frame.id & ZELK_ID_EXTENDED ? 8 : 3;
  out.end_at(
      fmt::format_to(out.room(kNumberBytes), ",0x{:0{}X},", frame.id & ~ZELK_ID_EXTENDED, digits));
  out.append(frame.message->name);
}

void append_csv(LineBuffer& out, const DecodedFrame& frame, const FrameOptions& options) {
  const std::size_t lead = out.size();
  append_csv_lead(out, frame);
  const std::size_t length = out.size() - lead;
  bool is_first = true;
  for_each_present(frame, [&](const SignalLayout& signal, std::int64_t raw) {
    if (!is_first) out.repeat(lead, length);
    is_first = false;
    out.append(signal.lead);
    append_raw(out, signal, raw, options.format);
    out.append(',');
    if (!options.raw) append_physical(out, signal, raw, options.format);
    out.append(signal.trail);
    out.append(signal.descriptions.find(raw));
    out.append("\r\n");
  });
  if (is_first) out.shrink_to(lead);
}

}  // namespace

std::string interface_text(std::string_view name, FrameFormat format) {
  switch (format) {
    case FrameFormat::kJson:
      return name.empty() ? std::string(kJsonNull) : name_text(name, format);
    case FrameFormat::kCsv:
      return name_text(escaped(name), format);
    default:
      return name.empty() ? "" : name_text(name, format) + ' ';
  }
}

std::string_view heading(FrameFormat format) {
  return format == FrameFormat::kCsv ? "time,interface,id,message,signal,raw,value,unit,text\r\n"
                                     : std::string_view();
}

void append_frame(LineBuffer& out, const DecodedFrame& frame, const FrameOptions& options) {
  switch (options.format) {
    case FrameFormat::kJson:
      return append_json(out, frame, options);
    case FrameFormat::kCsv:
      return append_csv(out, frame, options);
    default:
      return append_text(out, frame, options);
  }
}

}  // namespace zelk::tool
