#include "zelk/frame_decoder.hpp"

#include <algorithm>
#include <optional>

#include "base/compiler.hpp"
#include "codec/conversion.hpp"
#include "codec/frame_plan.hpp"
#include "codec/frame_words.hpp"
#include "codec/raw_value.hpp"

namespace zelk {
namespace {

std::int64_t raw_value(const QuickSignal& signal, const FrameWords& frame) {
  const std::uint64_t bits = frame.words[signal.word] >> signal.shift & signal.mask;
  return static_cast<std::int64_t>((bits ^ signal.sign) - signal.sign);
}

std::int64_t raw_value(const SlowSignal& slow, const unsigned char* data) {
  const std::uint64_t bits = codec::extract_whole(data, slow.at, slow.length_bits);
  return is_ieee(slow.signal) ? static_cast<std::int64_t>(bits)
                              : codec::sign_handled64(bits, slow.signal);
}

double physical_value(const SlowSignal& slow, const unsigned char* data) {
  const std::int64_t raw = raw_value(slow, data);
  const sigblk& signal = slow.signal;
  double physical = 0;
  if (is_ieee(signal)) {
    codec::to_physical(codec::ieee_value(static_cast<std::uint64_t>(raw), signal), signal,
                       physical);
  } else {
    codec::to_physical(raw, signal, physical);
  }
  return physical;
}

void set_value(const QuickSignal& signal, const FrameWords& frame, double& value) {
  value = static_cast<double>(raw_value(signal, frame)) * signal.factor + signal.offset;
}

void set_value(const QuickSignal& signal, const FrameWords& frame, std::int64_t& value) {
  value = raw_value(signal, frame);
}

void set_value(const SlowSignal& signal, const unsigned char* data, double& value) {
  value = physical_value(signal, data);
}

void set_value(const SlowSignal& signal, const unsigned char* data, std::int64_t& value) {
  value = raw_value(signal, data);
}

/// Whether the multiplexor's value, read as `ZelkManager::CheckSignalModeValue` reads it, is one of
/// those that select the signal.
bool is_selected(const FramePlan& plan, const DependentSignal& signal,
                 const Multiplexor& multiplexor, const unsigned char* data, std::size_t length) {
  // A multiplexor is read in its own length even if it is an IEEE signal, and may need more bytes.
  if (multiplexor.mask.min_data_length > length) return false;
  std::optional<std::uint32_t> value;
  if (codec::read_masked(data, multiplexor.mask, multiplexor.signal, value) != ZelkSigvalueOk) {
    return false;
  }
  const auto* const first = plan.ranges.data() + signal.first_range;
  return std::any_of(first, first + signal.range_count, [value = *value](const ValueRange& range) {
    return range.low <= value && value <= range.high;
  });
}

void find_present(const FramePlan& plan, const unsigned char* data, std::size_t length,
                  std::uint64_t* present) {
  std::fill_n(present, plan.presence_words, 0);
  for (const std::uint32_t index : plan.unconditional) {
    if (plan.bytes_needed[index] <= length) set(present, index);
  }
  for (const DependentSignal& signal : plan.dependent) {
    const Multiplexor& multiplexor = plan.multiplexors[signal.multiplexor];
    if (plan.bytes_needed[signal.index] <= length && is_set(present, multiplexor.index) &&
        is_selected(plan, signal, multiplexor, data, length)) {
      set(present, signal.index);
    }
  }
}

/// Decodes the signals that the frame holds, when that may not be all.
template <typename Value>
ZELK_NEVER_INLINE void decode_present(const FramePlan& plan, const unsigned char* data,
                                      std::size_t length, Value* values, std::uint64_t* present) {
  find_present(plan, data, length, present);
  std::fill_n(values, plan.records.size(), Value{});
  const FrameWords frame(data, length);
  for (const QuickSignal& signal : plan.quick()) {
    if (is_set(present, signal.index)) set_value(signal, frame, values[signal.index]);
  }
  for (const SlowSignal& signal : plan.slow) {
    if (is_set(present, signal.index)) set_value(signal, data, values[signal.index]);
  }
}

template <typename Value>
ZELK_NEVER_INLINE void decode_any(const FramePlan& plan, const unsigned char* data,
                                  std::size_t length, Value* values, std::uint64_t* present) {
  if (length < plan.bytes_for_all) return decode_present(plan, data, length, values, present);
  if (plan.presence_words == 0) return;
  std::fill_n(present, plan.presence_words - 1, ~std::uint64_t{0});
  present[plan.presence_words - 1] = plan.last_word;
  const FrameWords frame(data, length);
  for (const QuickSignal& signal : plan.quick()) set_value(signal, frame, values[signal.index]);
  for (const SlowSignal& signal : plan.slow) set_value(signal, data, values[signal.index]);
}

/// The most frequent case has a path of its own: a few more instructions here cost a tenth of the
/// time.
template <typename Value>
void decode(const FramePlan& plan, const unsigned char* data, std::size_t length, Value* values,
            std::uint64_t* present) {
  if (length < plan.plain_bytes) return decode_any(plan, data, length, values, present);
  *present = plan.last_word;
  const FrameWords frame(FrameWords::first_eight(data));
  for (const QuickSignal& signal : plan.quick()) set_value(signal, frame, *values++);
}

}  // namespace
}  // namespace zelk

ZelkFrameDecoder::ZelkFrameDecoder(const msgblk& message) : plan_(zelk::FramePlan::of(message)) {}
ZelkFrameDecoder::ZelkFrameDecoder(ZelkFrameDecoder&&) noexcept = default;
ZelkFrameDecoder& ZelkFrameDecoder::operator=(ZelkFrameDecoder&&) noexcept = default;
ZelkFrameDecoder::~ZelkFrameDecoder() = default;

const msgblk& ZelkFrameDecoder::Message() const { return plan_->message; }
std::size_t ZelkFrameDecoder::SignalCount() const { return plan_->records.size(); }
const sigblk& ZelkFrameDecoder::Signal(std::size_t index) const { return *plan_->records[index]; }

void ZelkFrameDecoder::Decode(const unsigned char* data, std::size_t length, double* values,
                              std::uint64_t* present) const {
  zelk::decode(*plan_, data, length, values, present);
}

void ZelkFrameDecoder::DecodeRaw(const unsigned char* data, std::size_t length,
                                 std::int64_t* values, std::uint64_t* present) const {
  zelk::decode(*plan_, data, length, values, present);
}
