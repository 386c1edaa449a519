// Decodes and encodes random frames by messages of random signals: any start, length, byte order
// and multiplexing. Bits are counted one by one; decoder, encoder, columns and the manager must
// agree.

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "choices.hpp"
#include "codec/frames.hpp"
#include "expect.hpp"
#include "zelk/database.hpp"
#include "zelk/frame_decoder.hpp"
#include "zelk/logs/columns.hpp"
#include "zelk/manager.hpp"

namespace {

constexpr unsigned kMostSignals = 8;
constexpr std::size_t kPadding = 160;  // what the manager may touch of a frame that holds a signal

// --- What is tried ---

/// Small numbers, or any.
double number_from(Choices& choices) {
  const double some[] = {1, 0.1, -0.5, 2, 1000, 1e-9, 1e300, 3};
  const unsigned choice = choices.below(16);
  return choice < 8 ? some[choice] : choice < 14 ? choice - 11.0 : choices.take<double>();
}

sigblk signal_from(Choices& choices) {
  const unsigned start =
      choices.below(8) != 0 ? choices.take<std::uint8_t>() : choices.take<std::uint16_t>();
  sigblk signal = make_signal(start, 1 + choices.below(71), choices.below(8));
  signal.value_type = choices.below(16) < 4 ? choices.below(4) : 0;
  signal.factor = choices.flag() ? number_from(choices) : 1;
  signal.offset = choices.flag() ? number_from(choices) : 0;
  signal.maximum = choices.below(2);
  return signal;
}

void multiplex(Message& message, Choices& choices) {
  for (sigblk& signal : message.signals) {
    if (choices.below(3) != 0) continue;
    sigblk& multiplexor =
        message.signals[choices.below(static_cast<unsigned>(message.signals.size()))];
    if (choices.below(8) != 0) signal.mux_signal = &multiplexor;
    for (unsigned i = choices.below(3); i > 0; --i) {
      const std::uint32_t low = choices.below(4) != 0 ? choices.below(4) : choices.take<uint32_t>();
      message.add_range(signal, low, low + choices.below(3));
    }
  }
}

/// A message with the identifier 1, and the database that has it alone.
struct Subject : ZelkDatabase {
  explicit Subject(Choices& choices) {
    static std::array<std::string, kMostSignals + 1> names = {"A", "B", "C", "D", "E",
                                                              "F", "G", "H", "M"};
    const unsigned count = choices.below(kMostSignals + 1);
    for (unsigned i = 0; i < count; ++i) {
      message.add(signal_from(choices)).name = names[i].data();
    }
    if (choices.flag()) multiplex(message, choices);
    message.record.id = 1;
    message.record.dlc = 8;
    message.record.name = names.back().data();
    messages = &message.record;
  }
  ~Subject() override { messages = nullptr; }

  Message message;
};

Frame frame_from(Choices& choices) {
  Frame frame(choices.below(4) != 0 ? 8 : choices.below(72));
  for (unsigned char& byte : frame) byte = choices.take<unsigned char>();
  return frame;
}

// --- What is expected ---

bool is_ieee(const sigblk& signal) {
  return signal.value_type == ZELK_VALUE_IEEE_SINGLE || signal.value_type == ZELK_VALUE_IEEE_DOUBLE;
}

unsigned length_of(const sigblk& signal) {
  return is_ieee(signal) ? signal.value_type * 32 : signal.length;
}

std::vector<std::size_t> places_of(const sigblk& signal) {
  return bits_of(signal, length_of(signal));
}

bool fits_alone(const sigblk& signal, std::size_t bytes) {
  return length_of(signal) <= 64 && bytes_for(places_of(signal)) <= bytes;
}

/// Whether a frame has the bits of a signal and of all multiplexors above it; not for circles.
bool fits(const sigblk& signal, std::size_t bytes) {
  if (!fits_alone(signal, bytes)) return false;
  unsigned level = 0;
  for (const sigblk* above = signal.mux_signal; above; above = above->mux_signal) {
    const bool is_there = fits_alone(*above, bytes) && bytes_for(bits_of(*above)) <= bytes;
    if (!is_there || ++level > kMostSignals) return false;
  }
  return true;
}

std::uint64_t raw_in(const Frame& frame, const sigblk& signal) {
  const std::uint64_t number = number_in(frame, places_of(signal));
  const bool is_negative = !is_ieee(signal) && (signal.flags & kSigned) != 0;
  return is_negative ? sign_extended(number, signal.length) : number;
}

/// The raw value of what the manager calculates with: a number.
double as_number(std::uint64_t raw, const sigblk& signal) {
  if (signal.value_type == ZELK_VALUE_IEEE_SINGLE)
    return std::bit_cast<float>(static_cast<std::uint32_t>(raw));
  if (signal.value_type == ZELK_VALUE_IEEE_DOUBLE) return std::bit_cast<double>(raw);
  const auto number = static_cast<std::int64_t>(raw);
  return (signal.flags & kSigned) != 0 ? static_cast<double>(number) : static_cast<double>(raw);
}

bool are_equal(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) ||
         (std::isnan(a) && std::isnan(b));
}

/// What is written for a value, and whether it is that value.
struct Limited {
  std::uint64_t raw;
  bool holds;
};

Limited limited_single(double number) {
  constexpr double kMost = std::numeric_limits<float>::max();
  const auto single = static_cast<float>(number);
  const bool holds = std::isinf(single) == std::isinf(number);
  const auto stored = holds ? single : static_cast<float>(std::copysign(kMost, number));
  return {std::bit_cast<std::uint32_t>(stored), holds};
}

Limited limited(double physical, const sigblk& signal) {
  const double quotient = (physical - signal.offset) / signal.factor;
  if (signal.value_type == ZELK_VALUE_IEEE_DOUBLE)
    return {std::bit_cast<std::uint64_t>(quotient), true};
  if (signal.value_type == ZELK_VALUE_IEEE_SINGLE) return limited_single(quotient);
  if (std::isnan(quotient)) return {0, false};
  const double whole = std::trunc(quotient + std::copysign(0.5, quotient));
  const bool is_negative = (signal.flags & kSigned) != 0;
  const unsigned bits = is_negative ? signal.length - 1U : signal.length;
  const std::uint64_t most = low_bits(~std::uint64_t{0}, bits);
  if (whole >= std::ldexp(1.0, static_cast<int>(bits))) return {most, false};
  const double least = is_negative ? -std::ldexp(1.0, static_cast<int>(bits)) : 0.0;
  const double stored = std::max(whole, least);
  const std::uint64_t raw = stored < 0 ? std::uint64_t{0} - static_cast<std::uint64_t>(-stored)
                                       : static_cast<std::uint64_t>(stored);
  return {low_bits(raw, signal.length), whole >= least};
}

// --- Trying ---

/// What the decoder makes of a frame.
struct Decoded {
  Decoded(const ZelkFrameDecoder& decoder, const Frame& frame) {
    std::uint64_t again = 0;
    decoder.Decode(frame.data(), frame.size(), values.data(), &present);
    decoder.DecodeRaw(frame.data(), frame.size(), raws.data(), &again);
    expect(present == again, "signals are present or not");
  }
  bool has(std::size_t index) const { return (present >> index & 1) != 0; }

  std::array<double, kMostSignals> values{};
  std::array<std::int64_t, kMostSignals> raws{};
  std::uint64_t present = 0;
};

const ZelkManager& manager() {
  static const ZelkManager instance{static_cast<void*>(nullptr)};
  return instance;
}

void check_decoded(const Message& message, const Decoded& decoded, const Frame& frame) {
  Frame padded = frame;
  padded.resize(frame.size() + kPadding);
  for (std::size_t i = 0; i < message.signals.size(); ++i) {
    const sigblk& signal = message.signals[i];
    const bool is_there = fits(signal, frame.size()) &&
                          manager().CheckSignalModeValue(padded[0], signal, message.record);
    expect(decoded.has(i) == is_there, "a signal is present or not");
    if (!is_there) {
      expect(decoded.raws[i] == 0 && decoded.values[i] == 0, "an absent signal has a value");
      continue;
    }
    const std::uint64_t raw = raw_in(frame, signal);
    expect(static_cast<std::uint64_t>(decoded.raws[i]) == raw, "another raw value");
    const double number = as_number(raw, signal);
    expect(are_equal(decoded.values[i], number * signal.factor + signal.offset), "another value");
    const auto places = places_of(signal);
    if (places.empty() || (!is_ieee(signal) && places.front() % 8 + places.size() > 64)) continue;
    double physical = 0;
    manager().GetSignalPhysicalValue(padded[0], signal, message.record, physical);
    expect(are_equal(decoded.values[i], physical), "the manager reads another value");
  }
}

void check_columns(ZelkColumnDecoder& decoder, const std::vector<Frame>& frames, bool by_rows,
                   const std::vector<Decoded>& decoded, bool are_raw) {
  static ZelkFrameBlock block;  // both: their memory is kept
  static ZelkColumnRows rows;
  block.Clear();
  const std::uint16_t channel = block.ChannelIndex("can0");
  for (const Frame& frame : frames) block.Append(0, 1, 0, channel, frame);
  const std::size_t signal_count = decoder.Tables().at(0).columns.size() - 2;
  if (by_rows) decoder.Decode(block, rows);
  by_rows ? decoder.Put(rows) : decoder.Decode(block);
  ArrowArray batch;
  expect(decoder.TakeBatch(0, true, &batch), "no rows");
  for (std::size_t s = 0; s < signal_count; ++s) {
    const ArrowArray& column = *batch.children[s + 2];
    const ZelkColumnType type = decoder.Tables()[0].columns[s + 2].type;
    for (std::size_t row = 0; row < frames.size(); ++row) {
      const auto* const bits = static_cast<const unsigned char*>(column.buffers[0]);
      const bool is_there = !bits || (bits[row / 8] >> row % 8 & 1) != 0;
      expect(is_there == decoded[row].has(s), "a column is null or not");
      if (!is_there) continue;
      const auto widths = std::array{1U, 2U, 4U, 8U, 1U, 2U, 4U, 8U, 4U, 8U, 4U};
      const std::size_t width = widths[static_cast<std::size_t>(type)];
      const std::uint64_t expected = are_raw ? static_cast<std::uint64_t>(decoded[row].raws[s])
                                             : std::bit_cast<std::uint64_t>(decoded[row].values[s]);
      std::uint64_t number = 0;
      std::memcpy(&number, static_cast<const char*>(column.buffers[1]) + row * width, width);
      // Which of two operands gives its bits to a NaN is the compiler's choice.
      const bool are_nan = !are_raw && std::isnan(decoded[row].values[s]) &&
                           std::isnan(std::bit_cast<double>(number));
      expect(are_nan || number == low_bits(expected, static_cast<unsigned>(width) * 8),
             "another cell");
    }
  }
  batch.release(&batch);
}

/// One signal at a time, for they may overlap.
void check_encoded(const Message& message, const Decoded& decoded, const Frame& before,
                   Choices& choices) {
  const ZelkFrameEncoder encoder(message.record);
  for (std::size_t i = 0; i < message.signals.size(); ++i) {
    const sigblk& signal = message.signals[i];
    std::array<double, kMostSignals> values = decoded.values;
    if (choices.flag()) values[i] = number_from(choices);
    const std::uint64_t selected = std::uint64_t{1} << i;
    Frame frame = before;
    Frame expected = before;
    const bool holds = encoder.Encode(values.data(), &selected, frame.data(), frame.size());
    const bool is_there = fits_alone(signal, before.size());
    const Limited stored = is_there ? limited(values[i], signal) : Limited{0, false};
    if (is_there) put_number(expected, places_of(signal), stored.raw);
    expect(holds == stored.holds, "a value is held or not");
    const bool is_nan = is_ieee(signal) && std::isnan(as_number(stored.raw, signal));
    expect(is_nan || frame == expected, "another frame");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Choices choices(data, size);
  const Subject subject(choices);
  const unsigned how = choices.below(4);
  const bool by_rows = (how & 1) != 0;
  const bool are_raw = (how & 2) != 0;
  std::vector<Frame> frames;
  do {
    frames.push_back(frame_from(choices));
  } while (frames.size() < 3 && choices.flag());
  const ZelkFrameDecoder decoder(subject.message.record);
  std::vector<Decoded> decoded;
  for (const Frame& frame : frames) {
    decoded.emplace_back(decoder, frame);
    check_decoded(subject.message, decoded.back(), frame);
  }
  check_encoded(subject.message, decoded.back(), frames.back(), choices);
  ZelkColumnDecoder columns(
      {.values = are_raw ? ZelkColumnValues::kRaw : ZelkColumnValues::kPhysical});
  columns.AddDatabase(subject, "subject");
  if (!columns.Tables().empty()) check_columns(columns, frames, by_rows, decoded, are_raw);
  return 0;
}
