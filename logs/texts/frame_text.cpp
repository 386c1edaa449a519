#include "base/escaping.hpp"
#include "base/quoting.hpp"
#include "logs/texts/frame_format.hpp"
#include "logs/texts/prepared_message.hpp"

// (TIME) INTERFACE MESSAGE SIGNAL=VALUE UNIT "DESCRIPTION" SIGNAL=...

namespace zelk::logs {

namespace {

class TextFrames : public FrameFormat {
 public:
  std::string message_text(std::string_view name) const override { return escaped(name); }
  std::string interface_text(std::string_view name) const override {
    return name.empty() ? "" : escaped(utf8(name)) + ' ';
  }
  SignalTexts signal_texts(std::string_view name, std::string_view unit) const override {
    return {' ' + escaped(name) + '=', unit.empty() ? "" : ' ' + escaped(unit)};
  }
  std::string description_text(std::string_view, std::string_view text) const override {
    return ' ' + in_quotes(text);
  }

  void append(LineBuffer& out, const DecodedFrame& frame, bool raw) const override {
    const std::size_t line = out.size();
    if (!frame.time.empty()) {
      out.append('(');
      out.append(frame.time);
      out.append(") ");
    }
    out.append(frame.interface_text);
    out.append(frame.message->name);
    const std::size_t signals = out.size();
    for_each_present(frame, [&](const PreparedSignal& signal, std::int64_t value) {
      out.append(signal.texts.lead);
      append_value(out, signal, value, raw, NonFinite::kAsText);
      out.append(signal.texts.trail);
      out.append(signal.descriptions.find(value));
    });
    if (frame.message->needs_signal && out.size() == signals) return out.shrink_to(line);
    out.append('\n');
  }
};

}  // namespace

const FrameFormat& text_frames() {
  static const TextFrames format;
  return format;
}

const FrameFormat& frames_in(ZelkTextFormat format) {
  if (format == ZelkTextFormat::kJson) return json_frames();
  return format == ZelkTextFormat::kCsv ? csv_frames() : text_frames();
}

}  // namespace zelk::logs
