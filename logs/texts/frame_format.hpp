/// \file
/// The formats in which decoded frames are printed; each stands in a source of its own.

#ifndef ZELK_LOGS_TEXTS_FRAME_FORMAT_HPP
#define ZELK_LOGS_TEXTS_FRAME_FORMAT_HPP

#include <string>
#include <string_view>

#include "base/line_buffer.hpp"
#include "zelk/logs/texts.hpp"

namespace zelk::logs {

struct DecodedFrame;

/// The texts around the value of a signal.
struct SignalTexts {
  std::string lead;   ///< in front of it
  std::string trail;  ///< behind it
};

/// Makes the texts of a database once, and then the lines of frames from them. Texts of databases
/// are in UTF-8.
class FrameFormat {
 public:
  virtual ~FrameFormat() = default;
  FrameFormat(const FrameFormat&) = delete;
  FrameFormat& operator=(const FrameFormat&) = delete;

  /// The line in front of all frames; empty for none.
  virtual std::string_view heading() const { return {}; }
  /// The name of a message.
  virtual std::string message_text(std::string_view name) const = 0;
  /// The name of an interface, empty for none; one that is no UTF-8 comes from a log.
  virtual std::string interface_text(std::string_view name) const = 0;
  /// @param unit  empty for none
  virtual SignalTexts signal_texts(std::string_view name, std::string_view unit) const = 0;
  /// A value description of the signal `name`.
  virtual std::string description_text(std::string_view name, std::string_view text) const = 0;

  /// Appends the line of a frame, or its lines; none when the filter wants a signal that
  /// the frame does not hold.
  ///
  /// @param raw  raw values instead of physical ones
  virtual void append(LineBuffer& out, const DecodedFrame& frame, bool raw) const = 0;

 protected:
  constexpr FrameFormat() = default;
};

const FrameFormat& text_frames();
const FrameFormat& json_frames();
const FrameFormat& csv_frames();
const FrameFormat& frames_in(ZelkTextFormat format);

}  // namespace zelk::logs

#endif
