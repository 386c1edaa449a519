#include "drive.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <random>
#include <vector>

#include "traffic_layout.hpp"
#include "zelk/logs/candump.hpp"

namespace zelk::bench {
namespace {

constexpr std::array<std::int64_t, 4> kPeriods = {10, 20, 50, 100};
constexpr std::int64_t kMillisecond = 1'000'000;

std::uint32_t id_of(int message) {
  const auto number = static_cast<std::uint32_t>(message);
  return message % 2 == 0 ? 0x100 + number : ZELK_ID_EXTENDED | 0x18F00031 | number << 8;
}

void put_signal(std::string& text, std::size_t index, const sigblk& signal) {
  std::array<char, 128> line{};
  const auto bits = static_cast<unsigned>(signal.start_bit);
  const int size = std::snprintf(
      line.data(), line.size(), " SG_ Signal%zu : %u|%u@%c%c (%.2f,%.2f) [0|0] \"\" Recorder\n",
      index, bits, static_cast<unsigned>(signal.length), signal.flags & kMotorola ? '0' : '1',
      signal.flags & kSigned ? '-' : '+', signal.factor, signal.offset);
  text.append(line.data(), static_cast<std::size_t>(size));
}

/// A frame that is due.
struct Due {
  std::int64_t time;
  int message;
};

/// The frames of ten milliseconds, in the order of their times.
std::vector<Due> due_from(std::int64_t millisecond, int messages, std::mt19937_64& random) {
  std::vector<Due> frames;
  for (int message = 0; message < messages; ++message) {
    const std::int64_t period = kPeriods[static_cast<std::size_t>(message) % kPeriods.size()];
    if ((millisecond + std::int64_t{10} * message) % period != 0) continue;
    const auto late = static_cast<std::int64_t>(random() % 200) * 1000;
    const std::int64_t phase = 10 * kMillisecond / messages * message;
    frames.push_back({millisecond * kMillisecond + phase + late, message});
  }
  std::ranges::sort(frames, {}, &Due::time);
  return frames;
}

}  // namespace

std::string drive_database(int messages) {
  std::mt19937_64 random;
  std::string text = "VERSION \"\"\n\nNS_ :\n\nBS_:\n\nBU_: Recorder\n\n";
  for (int message = 0; message < messages; ++message) {
    text += "BO_ " + std::to_string(id_of(message)) + " Message" + std::to_string(message) +
            ": 8 Recorder\n";
    for (std::size_t index = 0; index < kSignals; ++index) {
      sigblk signal{};
      lay_out(signal, index, random);
      put_signal(text, index, signal);
    }
    text += '\n';
  }
  return text;
}

std::string drive_log(int messages, std::size_t lines) {
  std::mt19937_64 random(7);
  ZelkFrameBlock frame;
  std::string text;
  std::size_t count = 0;
  for (std::int64_t millisecond = 0; count < lines; millisecond += 10) {
    for (const Due& due : due_from(millisecond, messages, random)) {
      if (count++ == lines) return text;
      const std::uint64_t content = random();
      frame.Clear();
      frame.Append(1'700'000'000'000'000'000 + due.time, id_of(due.message), 0,
                   frame.ChannelIndex(due.message % 2 == 0 ? "can0" : "can1"),
                   {reinterpret_cast<const unsigned char*>(&content), sizeof content});
      ZelkAppendLogLine(frame, 0, {}, text);
    }
  }
  return text;
}

}  // namespace zelk::bench
