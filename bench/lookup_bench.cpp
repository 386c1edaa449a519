// Lookups among 5,000 messages, beside a hash map of the standard library, and walks over them,
// beside following the links by hand.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

#include "synthetic.hpp"
#include "zelk/iterator.hpp"
#include "zelk/query.h"

namespace zelk::bench {
namespace {

constexpr int kMessages = 5000;

/// An open database, and its messages in random order.
struct Opened {
  Opened() {
    const TemporaryFile file("zelk_lookup_bench.dbc", synthetic_database(kMessages));
    manager.OpenDatabase(file.path().c_str(), &name, 0);
    for (const msgblk* message : manager.GetMessageIterator(nullptr)) messages.push_back(message);
    std::shuffle(messages.begin(), messages.end(), std::mt19937());
  }

  ZelkManager manager{static_cast<void*>(nullptr)};
  const char* name = nullptr;
  std::vector<const msgblk*> messages;
};

Opened& opened() {
  static Opened opened;
  return opened;
}

/// Looks up every message in turn; reports nanoseconds a lookup.
///
/// @param find  gives the message that it is given, found by its identifier or name
template <typename Find>
void look_up_all(benchmark::State& state, Find find) {
  const auto& messages = opened().messages;
  for (auto _ : state) {
    for (const msgblk* message : messages) {
      const msgblk* const found = find(*message);
      if (found != message) return state.SkipWithError("not found");
    }
  }
  using benchmark::Counter;
  const auto lookups = static_cast<double>(state.iterations() * messages.size());
  state.counters["ns/lookup"] = Counter(lookups / 1e9, Counter::kIsRate | Counter::kInvert);
}

void hash_map(benchmark::State& state) {
  std::unordered_map<std::uint32_t, const msgblk*> map;
  for (const msgblk* message : opened().messages) map.emplace(message->id, message);
  look_up_all(state, [&map](const msgblk& message) {
    const auto found = map.find(message.id);
    return found == map.end() ? nullptr : found->second;
  });
}
BENCHMARK(hash_map);

/// Argument: 1 in the one database by its name, 0 in all.
void message_by_id(benchmark::State& state) {
  ZelkManager& manager = opened().manager;
  const char* const db = state.range(0) != 0 ? opened().name : nullptr;
  look_up_all(state, [&manager, db](const msgblk& message) {
    return manager.GetMessage(static_cast<unsigned long>(message.id), db);
  });
}
BENCHMARK(message_by_id)->Arg(1)->Arg(0);

void message_by_name(benchmark::State& state) {
  const char* const db = opened().name;
  look_up_all(
      state, [db](const msgblk& message) { return opened().manager.GetMessage(message.name, db); });
}
BENCHMARK(message_by_name);

/// Argument: the flags. The messages' identifiers are the frames' own.
void j1939_message(benchmark::State& state) {
  ZelkManager& manager = opened().manager;
  const char* const db = opened().name;
  const auto flags = static_cast<unsigned long>(state.range(0));
  look_up_all(state, [&manager, db, flags](const msgblk& message) {
    return manager.GetJ1939Message(message.id, flags, db);
  });
}
BENCHMARK(j1939_message)->Arg(0)->Arg(ZELK_J1939_FRAME_FORMAT);

// --- Steps ---

/// Reports nanoseconds a step.
///
/// @param walk  calls what it is given with each message
template <typename Walk>
void step_through(benchmark::State& state, Walk walk) {
  std::size_t steps = 0;
  std::uint64_t sum = 0;
  for (auto _ : state) {
    walk([&](const msgblk& message) {
      sum += message.id;
      ++steps;
    });
  }
  benchmark::DoNotOptimize(sum);
  using benchmark::Counter;
  state.counters["ns/step"] =
      Counter(static_cast<double>(steps) / 1e9, Counter::kIsRate | Counter::kInvert);
}

void steps_by_hand(benchmark::State& state) {
  const msgblk* const head = *opened().manager.GetMessageIterator(nullptr);
  step_through(state, [head](auto use) {
    for (const msgblk* message = head; message; message = message->next) use(*message);
  });
}
BENCHMARK(steps_by_hand);

void steps_of_iterator(benchmark::State& state) {
  const ZelkManager& manager = opened().manager;
  step_through(state, [&manager](auto use) {
    for (auto message = manager.GetMessageIterator(nullptr); message; ++message) use(**message);
  });
}
BENCHMARK(steps_of_iterator);

}  // namespace
}  // namespace zelk::bench
