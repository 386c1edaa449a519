/// \file
/// The texts that stand around the values of a message, ready for every frame of it.

#ifndef ZELK_TOOL_LOG_FRAME_LAYOUT_HPP
#define ZELK_TOOL_LOG_FRAME_LAYOUT_HPP

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "input/name_filter.hpp"
#include "input/text_encoding.hpp"
#include "log/decimal.hpp"
#include "zelk/frame_decoder.hpp"

namespace zelk::tool {

enum class FrameFormat { kText, kJson, kCsv };

/// What of a frame is told, and how.
struct FrameOptions {
  FrameFormat format = FrameFormat::kText;
  bool raw = false;      ///< raw values instead of physical ones
  bool numbers = false;  ///< no value descriptions
  NameFilter filter;
};

/// The value descriptions of a signal, each as the output has it.
class DescriptionTexts {
 public:
  /// Of several texts for a value the first counts.
  void add(std::uint32_t value, std::string text);
  /// The text for a raw value; empty for none.
  std::string_view find(std::int64_t raw) const;

 private:
  struct Entry {
    std::uint32_t value;
    std::string text;
  };

  std::vector<Entry> entries_;  // by value
};

/// Whether values of this `ZELK_VALUE_*` are IEEE numbers.
inline bool is_ieee(std::uint32_t value_type) {
  return value_type == ZELK_VALUE_IEEE_SINGLE || value_type == ZELK_VALUE_IEEE_DOUBLE;
}

/// One signal of a message.
struct SignalLayout {
  SignalLayout(const sigblk& signal, std::size_t position, const FrameOptions& options,
               Encoding encoding);

  std::size_t index;         ///< among the message's signals
  std::uint32_t value_type;  ///< `ZELK_VALUE_*`
  bool is_signed;
  double factor;
  double offset;
  DecimalScale scale;
  std::string lead;   ///< what stands in front of the value
  std::string trail;  ///< what stands behind it
  DescriptionTexts descriptions;
};

/// One message.
struct MessageLayout {
  /// @param encoding  of the database's texts
  MessageLayout(const ZelkFrameDecoder& of, const FrameOptions& options, Encoding encoding);

  const ZelkFrameDecoder* decoder;
  std::string name;                   ///< as the output has it
  std::vector<SignalLayout> signals;  ///< those to tell, in the order of the message
  bool is_shown;      ///< whether the filter takes the message and any of its signals
  bool needs_signal;  ///< whether a frame without any signal to tell is left out
};

/// A name as the output has it. One that is no UTF-8 comes from a log.
std::string name_text(std::string_view name, FrameFormat format);

}  // namespace zelk::tool

#endif
