// Decoding blocks of frames into columns, beside a loop written by hand that stores the same ones.
//
// 200 messages of 8 bytes have 8 signals each, 5 Intel and 3 Motorola, 4 of them signed. Blocks
// have 16384 frames of random content and message. Rows are dropped when all tables together have a
// million, and their memory is used again by both.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <random>
#include <unordered_map>
#include <vector>

#include "base/compiler.hpp"
#include "traffic_layout.hpp"
#include "zelk/logs/columns.hpp"
#include "zelk/model.h"

namespace zelk::bench {
namespace {

constexpr std::size_t kMessages = 200;
constexpr std::size_t kFrames = 16384;
constexpr std::size_t kBlocksKept = 64;

struct Traffic : ZelkDatabase {
  Traffic() {
    std::mt19937_64 random;
    for (std::size_t m = 0; m < kMessages; ++m) {
      msgblk& message = own_messages[m];
      message.id = static_cast<std::uint32_t>(random() & 0x1FFFFFFF) | ZELK_ID_EXTENDED;
      message.next = m + 1 < kMessages ? &own_messages[m + 1] : nullptr;
      message.signals = &own_signals[m * kSignals];
      for (std::size_t s = 0; s < kSignals; ++s) set_signal(m * kSignals + s, random);
    }
    messages = own_messages.data();
    for (int i = 0; i < 3; ++i) block.ChannelIndex("can" + std::to_string(i));
    for (std::size_t i = 0; i < kFrames; ++i) {
      std::array<unsigned char, 8> data;
      const std::uint64_t content = random();
      std::memcpy(data.data(), &content, data.size());
      block.Append(static_cast<std::int64_t>(i) * 1000, own_messages[random() % kMessages].id, 0,
                   static_cast<std::uint16_t>(random() % 3), data);
    }
  }
  ~Traffic() override { messages = nullptr; }

  void set_signal(std::size_t at, std::mt19937_64& random) {
    sigblk& signal = own_signals[at];
    lay_out(signal, at % kSignals, random);
    signal.message = &own_messages[at / kSignals];
    signal.next = at % kSignals + 1 < kSignals ? &own_signals[at + 1] : nullptr;
  }

  std::vector<msgblk> own_messages{kMessages};
  std::vector<sigblk> own_signals{kMessages * kSignals};
  ZelkFrameBlock block;
};

const Traffic& traffic() {
  static const Traffic traffic;
  return traffic;
}

void count_frames(benchmark::State& state) {
  using benchmark::Counter;
  const auto frames = static_cast<double>(state.iterations()) * kFrames;
  state.SetItemsProcessed(static_cast<std::int64_t>(frames));
  state.counters["ns/frame"] = Counter(frames / 1e9, Counter::kIsRate | Counter::kInvert);
}

struct HandTable {
  std::array<HandSignal, kSignals> signals;
  std::size_t rows = 0;
  std::vector<std::int64_t> times;
  std::vector<std::int32_t> channels;
  std::array<std::vector<double>, kSignals> values;

  void grow() {
    const std::size_t room = std::max<std::size_t>(2 * rows, 64);
    times.resize(room);
    channels.resize(room);
    for (auto& column : values) column.resize(room);
  }
};

std::unordered_map<std::uint32_t, HandTable> hand_tables() {
  std::unordered_map<std::uint32_t, HandTable> tables;
  for (std::size_t m = 0; m < kMessages; ++m) {
    HandTable& table = tables[traffic().own_messages[m].id];
    for (std::size_t s = 0; s < kSignals; ++s) {
      const sigblk& signal = traffic().own_signals[m * kSignals + s];
      table.signals[s] = HandSignal(signal);
    }
  }
  return tables;
}

void columns_by_hand(benchmark::State& state) {
  auto tables = hand_tables();
  const ZelkFrameBlock& block = traffic().block;
  std::size_t blocks = 0;
  for (auto _ : state) {
    for (std::size_t i = 0; i < block.Size(); ++i) {
      HandTable& table = tables.find(block.Ids()[i])->second;
      std::uint64_t words[2];
      std::memcpy(&words[0], block.Data(i).data(), sizeof words[0]);
      words[1] = zelk::reversed_bytes(words[0]);
      if (table.rows == table.times.size()) table.grow();
      const std::size_t row = table.rows++;
      table.times[row] = block.Times()[i];
      table.channels[row] = block.Channels()[i];
      for (std::size_t s = 0; s < kSignals; ++s) {
        const HandSignal& signal = table.signals[s];
        const std::uint64_t bits = words[signal.is_motorola] >> signal.shift & signal.mask;
        const auto raw = static_cast<std::int64_t>((bits ^ signal.sign) - signal.sign);
        table.values[s][row] = static_cast<double>(raw) * signal.factor + signal.offset;
      }
    }
    if (++blocks % kBlocksKept != 0) continue;
    for (auto& entry : tables) entry.second.rows = 0;
  }
  count_frames(state);
}
BENCHMARK(columns_by_hand);

/// Rows that are dropped with those of the next block, as threads use them.
void columns_of_block(benchmark::State& state) {
  ZelkColumnDecoder decoder;
  decoder.AddDatabase(traffic(), "traffic");
  decoder.Tables();
  ZelkColumnRows rows;
  for (auto _ : state) decoder.Decode(traffic().block, rows);
  count_frames(state);
}
BENCHMARK(columns_of_block);

void take_all(ZelkColumnDecoder& decoder) {
  for (std::size_t table = 0; table < kMessages; ++table) {
    ArrowArray batch;
    while (decoder.TakeBatch(table, true, &batch)) batch.release(&batch);
  }
}

void columns_into_batches(benchmark::State& state) {
  ZelkColumnDecoder decoder;
  decoder.AddDatabase(traffic(), "traffic");
  std::size_t blocks = 0;
  for (auto _ : state) {
    decoder.Decode(traffic().block);
    if (++blocks % kBlocksKept == 0) take_all(decoder);
  }
  count_frames(state);
}
BENCHMARK(columns_into_batches);

/// By rows that are put in their order.
void columns_put_into_batches(benchmark::State& state) {
  ZelkColumnDecoder decoder;
  decoder.AddDatabase(traffic(), "traffic");
  decoder.Tables();
  ZelkColumnRows rows;
  std::size_t blocks = 0;
  for (auto _ : state) {
    decoder.Decode(traffic().block, rows);
    decoder.Put(rows);
    if (++blocks % kBlocksKept == 0) take_all(decoder);
  }
  count_frames(state);
}
BENCHMARK(columns_put_into_batches);

}  // namespace
}  // namespace zelk::bench
