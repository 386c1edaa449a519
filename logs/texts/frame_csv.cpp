#include "base/decimal.hpp"
#include "base/escaping.hpp"
#include "base/frame_id.hpp"
#include "base/quoting.hpp"
#include "logs/texts/frame_format.hpp"
#include "logs/texts/prepared_message.hpp"

// TIME,INTERFACE,0xID,MESSAGE,SIGNAL,RAW,VALUE,UNIT,DESCRIPTION, a line for each signal

namespace zelk::logs {

namespace {

/// Appends the columns in front of the signal's name.
void append_lead(LineBuffer& out, const DecodedFrame& frame) {
  out.append(frame.time);
  out.append(',');
  out.append(frame.interface_text);
  out.append(",0x");
  out.end_at(put_hex(out.room(kNumberBytes), bare_id(frame.id), id_digits(frame.id)));
  out.append(',');
  out.append(frame.message->name);
}

class CsvFrames : public FrameFormat {
 public:
  std::string_view heading() const override {
    return "time,interface,id,message,signal,raw,value,unit,text\r\n";
  }
  std::string message_text(std::string_view name) const override { return csv_field(name); }
  std::string interface_text(std::string_view name) const override {
    return csv_quoted(escaped(utf8(name)));
  }
  SignalTexts signal_texts(std::string_view name, std::string_view unit) const override {
    return {',' + csv_field(name) + ',', ',' + csv_field(unit) + ','};
  }
  std::string description_text(std::string_view, std::string_view text) const override {
    return csv_field(text);
  }

  void append(LineBuffer& out, const DecodedFrame& frame, bool raw) const override {
    const std::size_t lead = out.size();
    append_lead(out, frame);
    const std::size_t length = out.size() - lead;
    bool is_first = true;
    for_each_present(frame, [&](const PreparedSignal& signal, std::int64_t value) {
      if (!is_first) out.repeat(lead, length);
      is_first = false;
      out.append(signal.texts.lead);
      append_value(out, signal, value, true, NonFinite::kAsText);
      out.append(',');
      if (!raw) append_value(out, signal, value, false, NonFinite::kAsText);
      out.append(signal.texts.trail);
      out.append(signal.descriptions.find(value));
      out.append("\r\n");
    });
    if (is_first) out.shrink_to(lead);
  }
};

}  // namespace

const FrameFormat& csv_frames() {
  static const CsvFrames format;
  return format;
}

}  // namespace zelk::logs
