// Decoding and encoding streams of frames, beside loops written by hand for the same signals.
//
// 200 messages of 8 bytes have 8 signals each, 5 Intel and 3 Motorola, 4 of them signed, with
// factors and offsets. 4096 frames of random content and message are decoded again and again.

#include <benchmark/benchmark.h>

#include <array>
#include <cstring>
#include <random>
#include <vector>

#include "base/compiler.hpp"
#include "traffic_layout.hpp"
#include "zelk/frame_decoder.hpp"
#include "zelk/manager.hpp"

namespace zelk::bench {
namespace {

constexpr std::size_t kMessages = 200;
constexpr std::size_t kFrames = 4096;
constexpr std::size_t kFrameBytes = 8;

struct Frame {
  std::uint32_t id;
  std::uint32_t message;
  unsigned char data[kFrameBytes];
};

/// Messages and frames, the same for all benchmarks.
struct Traffic {
  Traffic() {
    for (std::size_t m = 0; m < kMessages; ++m) {
      messages[m].id = static_cast<std::uint32_t>(random() & 0x1FFFFFFF) | ZELK_ID_EXTENDED;
      if (m > 0) messages[m - 1].next = &messages[m];
      for (std::size_t s = 0; s < kSignals; ++s) add_signal(m, s);
    }
    for (Frame& frame : frames) {
      frame.message = static_cast<std::uint32_t>(random() % kMessages);
      frame.id = messages[frame.message].id;
      const std::uint64_t content = random();
      std::memcpy(frame.data, &content, kFrameBytes);
    }
  }

  void add_signal(std::size_t m, std::size_t s) {
    sigblk& signal = signals[m * kSignals + s];
    lay_out(signal, s, random);
    signal.message = &messages[m];
    if (s > 0) signals[m * kSignals + s - 1].next = &signal;
    if (s == 0) messages[m].signals = &signal;
  }

  std::mt19937_64 random;
  std::vector<msgblk> messages{kMessages};
  std::vector<sigblk> signals{kMessages * kSignals};
  std::vector<Frame> frames{kFrames};
};

Traffic& traffic() {
  static Traffic traffic;
  return traffic;
}

/// Reports frames a second, nanoseconds a frame, and that times `values_per_frame`.
void count_frames(benchmark::State& state, std::size_t values_per_frame) {
  using benchmark::Counter;
  const auto frames = static_cast<double>(state.iterations()) * kFrames;
  state.SetItemsProcessed(static_cast<std::int64_t>(frames));
  state.counters["ns/frame"] = Counter(frames / 1e9, Counter::kIsRate | Counter::kInvert);
  state.counters["ns/value"] = Counter(frames * static_cast<double>(values_per_frame) / 1e9,
                                       Counter::kIsRate | Counter::kInvert);
}

// --- By hand ---

std::vector<std::array<HandSignal, kSignals>> hand_table() {
  std::vector<std::array<HandSignal, kSignals>> table(kMessages);
  for (std::size_t m = 0; m < kMessages; ++m) {
    for (std::size_t s = 0; s < kSignals; ++s) {
      const sigblk& signal = traffic().signals[m * kSignals + s];
      table[m][s] = HandSignal(signal);
    }
  }
  return table;
}

void decode_by_hand(benchmark::State& state) {
  const auto table = hand_table();
  double values[kSignals];
  for (auto _ : state) {
    for (const Frame& frame : traffic().frames) {
      std::uint64_t words[2];
      std::memcpy(&words[0], frame.data, kFrameBytes);
      words[1] = zelk::reversed_bytes(words[0]);
      const auto& signals = table[frame.message];
      for (std::size_t s = 0; s < kSignals; ++s) {
        const HandSignal& signal = signals[s];
        const std::uint64_t bits = words[signal.is_motorola] >> signal.shift & signal.mask;
        const auto raw = static_cast<std::int64_t>((bits ^ signal.sign) - signal.sign);
        values[s] = static_cast<double>(raw) * signal.factor + signal.offset;
      }
      benchmark::DoNotOptimize(values);
    }
  }
  count_frames(state, kSignals);
}
BENCHMARK(decode_by_hand);

/// What every frame's signals are, as the decoder says.
std::vector<std::array<double, kSignals>> decoded_frames() {
  const ZelkFrameDecoderTable table(traffic().messages.data());
  std::vector<std::array<double, kSignals>> decoded(kFrames);
  for (std::size_t i = 0; i < kFrames; ++i) {
    const Frame& frame = traffic().frames[i];
    std::uint64_t present = 0;
    table.Find(frame.id)->Decode(frame.data, kFrameBytes, decoded[i].data(), &present);
  }
  return decoded;
}

void encode_by_hand(benchmark::State& state) {
  const auto table = hand_table();
  const auto values = decoded_frames();
  const auto& frames = traffic().frames;
  for (auto _ : state) {
    for (std::size_t i = 0; i < kFrames; ++i) {
      std::uint64_t words[2] = {};
      const auto& signals = table[frames[i].message];
      for (std::size_t s = 0; s < kSignals; ++s) {
        const HandSignal& signal = signals[s];
        const double quotient = (values[i][s] - signal.offset) / signal.factor;
        const double low = -static_cast<double>(signal.sign);
        const auto high = static_cast<double>(signal.mask - signal.sign);
        const double limited = quotient < low ? low : quotient > high ? high : quotient;
        const auto raw = static_cast<std::int64_t>(limited + (limited < 0 ? -0.5 : 0.5));
        words[signal.is_motorola] |= (static_cast<std::uint64_t>(raw) & signal.mask)
                                     << signal.shift;
      }
      std::uint64_t content = words[0] | zelk::reversed_bytes(words[1]);
      benchmark::DoNotOptimize(content);
    }
  }
  count_frames(state, kSignals);
}
BENCHMARK(encode_by_hand);

// --- By the library ---

void decode_frames(benchmark::State& state) {
  const ZelkFrameDecoderTable table(traffic().messages.data());
  double values[kSignals];
  std::uint64_t present = 0;
  for (auto _ : state) {
    for (const Frame& frame : traffic().frames) {
      table.Find(frame.id)->Decode(frame.data, kFrameBytes, values, &present);
      benchmark::DoNotOptimize(values);
    }
  }
  count_frames(state, kSignals);
}
BENCHMARK(decode_frames);

/// One signal of each frame.
void read_physical_value(benchmark::State& state) {
  const ZelkManager manager(static_cast<void*>(nullptr));
  std::vector<const sigblk*> signals;
  for (const Frame& frame : traffic().frames) {
    signals.push_back(&traffic().signals[frame.message * kSignals + signals.size() % kSignals]);
  }
  const msgblk& message = traffic().messages.front();
  for (auto _ : state) {
    const sigblk* const* signal = signals.data();
    for (const Frame& frame : traffic().frames) {
      double physical = 0.0;
      manager.GetSignalPhysicalValue(frame.data[0], **signal++, message, physical);
      benchmark::DoNotOptimize(physical);
    }
  }
  count_frames(state, 1);
}
BENCHMARK(read_physical_value);

void encode_frames(benchmark::State& state) {
  std::vector<ZelkFrameEncoder> encoders;
  for (const msgblk& message : traffic().messages) encoders.emplace_back(message);
  const auto values = decoded_frames();
  const auto& frames = traffic().frames;
  for (auto _ : state) {
    for (std::size_t i = 0; i < kFrames; ++i) {
      unsigned char data[kFrameBytes] = {};
      encoders[frames[i].message].Encode(values[i].data(), nullptr, data, kFrameBytes);
      benchmark::DoNotOptimize(data);
    }
  }
  count_frames(state, kSignals);
}
BENCHMARK(encode_frames);

}  // namespace
}  // namespace zelk::bench
