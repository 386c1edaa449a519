#include "encode/encode_message.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <string_view>
#include <utility>

#include "base/j1939.hpp"
#include "base/multiplexing.hpp"
#include "base/signal_bits.hpp"
#include "input/lookup.hpp"
#include "term/text.hpp"
#include "words/attribute_words.hpp"
#include "words/record_words.hpp"
#include "zelk/frame_decoder.hpp"
#include "zelk/logs/candump.hpp"
#include "zelk/manager.hpp"

namespace zelk::tool {

namespace {

constexpr std::size_t kClassicBytes = 8;  // of data, in a frame that is not of CAN FD

/// Number of multiplexors above a signal; below a circle of them the number of signals.
std::size_t depth_of(const sigblk& signal, std::size_t signal_count) {
  if (CircleSearch().circle_above(signal)) return signal_count;
  MultiplexorsAbove multiplexors(signal);
  std::size_t depth = 0;
  while (multiplexors.next()) ++depth;
  return depth;
}

std::string name_of(const sigblk& signal) { return escaped(view(signal.name)); }

/// Sets signals of one message in a frame.
class FrameEncoder {
 public:
  /// @param message   must outlive the object
  /// @param frame     the frame to put the signals into; its length does not change
  /// @param is_given  whether the multiplexors in `frame` mean something; else they are but zeros
  FrameEncoder(const msgblk& message, const ZelkFrame& frame, bool is_given);

  /// Takes the value of a signal by its name.
  /// @throws RequestError as `parse_signal_value`, and when there is no such signal, or it has been
  /// given or does not fit into the frame
  void set(std::string_view name, std::string_view value, const ValueOptions& options);

  /// Sets all that was given, and the multiplexors that select it. A multiplexor that was not given
  /// keeps its value when that selects the signals, and else gets the only one that does.
  ///
  /// @throws RequestError when no value of a multiplexor selects all of its signals that were
  /// given, or several do; and when the frame would not hold what was given
  ZelkFrame finish();

 private:
  /// Multiplexor values, both ends included.
  struct Range {
    std::uint32_t low;
    std::uint32_t high;
  };
  using Ranges = std::vector<Range>;

  const sigblk* deepest_unsettled_multiplexor() const;
  void settle(const sigblk& multiplexor);
  Ranges selecting_values(const sigblk& multiplexor, std::string& names) const;
  bool keeps_selecting(const sigblk& multiplexor, const Ranges& ranges);
  void check_fits(const sigblk& signal) const;
  void put(ZelkFrame& frame, const sigblk& signal, std::int64_t raw) const;
  void check(const ZelkFrame& frame) const;
  /// Index of a signal among those of the message.
  std::size_t index_of(const sigblk& signal) const;

  const msgblk& message_;
  ZelkFrame frame_;
  bool is_frame_given_;
  ZelkFrameDecoder decoder_;
  std::vector<std::int64_t> before_;  // raw values in the frame as it came
  std::vector<std::uint64_t> before_present_;
  std::map<std::size_t, std::int64_t> given_;  // raw values by index, multiplexors found included
  std::vector<const sigblk*> settled_;
};

FrameEncoder::FrameEncoder(const msgblk& message, const ZelkFrame& frame, bool is_given)
    : message_(message),
      frame_(frame),
      is_frame_given_(is_given),
      decoder_(message),
      before_(decoder_.SignalCount()),
      before_present_(decoder_.PresenceWords()) {
  decoder_.DecodeRaw(frame_.data.data(), frame_.length, before_.data(), before_present_.data());
}

std::size_t FrameEncoder::index_of(const sigblk& signal) const {
  std::size_t index = 0;
  while (&decoder_.Signal(index) != &signal) ++index;
  return index;
}

void FrameEncoder::set(std::string_view name, std::string_view value, const ValueOptions& options) {
  NameSuggestion names(name);
  for (std::size_t i = 0; i < decoder_.SignalCount(); ++i) {
    const sigblk& signal = decoder_.Signal(i);
    names.add(view(signal.name));
    if (view(signal.name) != name) continue;
    const std::int64_t raw = parse_signal_value(signal, value, options);
    if (!given_.try_emplace(i, raw).second)
      throw RequestError(fmt::format("{} is given twice", name_of(signal)));
    return;
  }
  throw RequestError(fmt::format("{} has no signal {}{}", escaped(view(message_.name)),
                                 in_quotes(name), names.text()));
}

ZelkFrame FrameEncoder::finish() {
  while (const sigblk* const multiplexor = deepest_unsettled_multiplexor()) settle(*multiplexor);
  // Writing a signal reads its multiplexors: all must fit before any is written.
  for (const auto& [index, raw] : given_) check_fits(decoder_.Signal(index));
  ZelkFrame frame = frame_;
  for (const auto& [index, raw] : given_) put(frame, decoder_.Signal(index), raw);
  check(frame);
  return frame;
}

// A multiplexor's own value must be known before the one above it is looked at.
const sigblk* FrameEncoder::deepest_unsettled_multiplexor() const {
  const sigblk* deepest = nullptr;
  std::size_t depth = 0;
  for (const auto& [index, raw] : given_) {
    const sigblk* const multiplexor = decoder_.Signal(index).mux_signal;
    if (!multiplexor || std::ranges::find(settled_, multiplexor) != settled_.end()) continue;
    const std::size_t its_depth = depth_of(*multiplexor, decoder_.SignalCount());
    if (deepest && its_depth <= depth) continue;
    deepest = multiplexor;
    depth = its_depth;
  }
  return deepest;
}

void FrameEncoder::settle(const sigblk& multiplexor) {
  settled_.push_back(&multiplexor);
  std::string names;
  const Ranges ranges = selecting_values(multiplexor, names);
  if (ranges.empty()) {
    throw RequestError(
        fmt::format("no value of {} selects all of {}", name_of(multiplexor), names));
  }
  if (keeps_selecting(multiplexor, ranges)) return;
  if (given_.contains(index_of(multiplexor))) {
    throw RequestError(
        fmt::format("{} is given a value that does not select {}", name_of(multiplexor), names));
  }
  if (ranges.size() > 1 || ranges.front().low != ranges.front().high) {
    throw RequestError(fmt::format("{} must be given: several of its values select {}",
                                   name_of(multiplexor), names));
  }
  given_[index_of(multiplexor)] = std::int64_t{ranges.front().low};
}

/// The values that select all signals that were given; `names` receives these.
FrameEncoder::Ranges FrameEncoder::selecting_values(const sigblk& multiplexor,
                                                    std::string& names) const {
  Ranges common = {{0, UINT32_MAX}};
  for (const auto& [index, raw] : given_) {
    const sigblk& signal = decoder_.Signal(index);
    if (signal.mux_signal != &multiplexor) continue;
    names += fmt::format("{}{} ({})", names.empty() ? "" : ", ", name_of(signal),
                         presence_values(signal));
    Ranges both;
    for (const Range& range : common) {
      for (const muxor_val_range& own : each(signal.mux_ranges)) {
        const Range shared = {std::max(range.low, own.low), std::min(range.high, own.high)};
        if (shared.low <= shared.high) both.push_back(shared);
      }
    }
    common = std::move(both);
  }
  return common;
}

/// Whether the multiplexor's value, as given or as it was in the frame, is in `ranges`. One that
/// keeps its value counts as given, because it may have a multiplexor itself.
bool FrameEncoder::keeps_selecting(const sigblk& multiplexor, const Ranges& ranges) {
  const std::size_t index = index_of(multiplexor);
  const auto found = given_.find(index);
  const bool was_there = before_present_[index / 64] >> (index % 64) & 1;
  if (found == given_.end() && !(is_frame_given_ && was_there)) return false;
  const auto value =
      static_cast<std::uint32_t>(found == given_.end() ? before_[index] : found->second);
  const bool selects = std::ranges::any_of(
      ranges, [&](const Range& range) { return range.low <= value && value <= range.high; });
  if (selects) given_.try_emplace(index, before_[index]);
  return selects;
}

void FrameEncoder::check_fits(const sigblk& signal) const {
  zelk_sig_mask_t mask = {};
  ZelkManager(static_cast<void*>(nullptr)).GetSignalAccessMask(signal, mask);
  if (mask.min_data_length <= frame_.length) return;
  throw RequestError(fmt::format("{} does not fit into a frame of {}", name_of(signal),
                                 counted(frame_.length, "byte")));
}

void FrameEncoder::put(ZelkFrame& frame, const sigblk& signal, std::int64_t raw) const {
  const std::uint64_t bits = static_cast<std::uint64_t>(raw) & low_bits(signal.length);
  ZelkManager(static_cast<void*>(nullptr))
      .SetSignalRawValueInt64(frame.data.front(), signal, message_, static_cast<long long>(bits));
}

/// Whether the frame says what was given.
void FrameEncoder::check(const ZelkFrame& frame) const {
  std::vector<std::int64_t> raw(decoder_.SignalCount());
  std::vector<std::uint64_t> present(decoder_.PresenceWords());
  decoder_.DecodeRaw(frame.data.data(), frame.length, raw.data(), present.data());
  for (const auto& [index, wanted] : given_) {
    const sigblk& signal = decoder_.Signal(index);
    if (!(present[index / 64] >> (index % 64) & 1)) {
      throw RequestError(fmt::format(
          "{} would not be in the frame: its multiplexors do not select it", name_of(signal)));
    }
    if (raw[index] != wanted) {
      throw RequestError(
          fmt::format("{} shares bits with another signal that is given", name_of(signal)));
    }
  }
}

bool has_fd_format(const ZelkDatabase& database, const msgblk& message) {
  return effective_text(message.attrs, database.GetAttrDef(j1939::kFrameFormatAttribute))
      .ends_with("FD");
}

ZelkFrame empty_frame(const ZelkDatabase& database, const msgblk& message) {
  if (message.dlc > ZelkFrame::kMostData) {
    throw RequestError(fmt::format("{} has {}, and a frame at most {}", escaped(view(message.name)),
                                   counted(message.dlc, "byte"), ZelkFrame::kMostData));
  }
  ZelkFrame frame;
  frame.id = message.id;
  frame.length = message.dlc;
  if (message.dlc > kClassicBytes || has_fd_format(database, message)) frame.flags = kZelkFrameFd;
  return frame;
}

/// A frame of the message, in which signals are to be changed. The addresses of a parameter group
/// may be others than in the database.
ZelkFrame parse_given_frame(const ZelkDatabase& database, const msgblk& message,
                            const std::string& text) {
  ZelkFrame frame;
  const bool is_frame = ZelkParseFrame(text, frame);
  if (!is_frame || (frame.flags & (kZelkFrameRemote | kZelkFrameError))) {
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

ZelkFrame encode_message(EncodedDatabase of, const FrameValues& wanted) {
  const ZelkDatabase& database = of.records;
  ValueOptions options = wanted.options;
  options.encoding = of.encoding;
  const msgblk& message = *find_messages(database, wanted.message).front();
  const ZelkFrame start = wanted.from ? parse_given_frame(database, message, *wanted.from)
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
