// Reads any bytes as a log, in each form and compressed or not. What comes out must not depend on
// the pieces in which the bytes arrive. The sanitizers judge, too.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "logs/forms/form.hpp"
#include "support/memory_stream.hpp"
#include "zelk/records.h"

namespace {

using namespace zelk::logs;

constexpr std::size_t kMostUnpacked = 1 << 20;  // of a small input that unpacks to very much

void expect(bool condition, const char* what) {
  if (condition) return;
  std::fprintf(stderr, "%s\n", what);
  std::abort();
}

/// A log, or its first bytes.
class Limited : public ByteStream {
 public:
  explicit Limited(std::unique_ptr<ByteStream> stream) : stream_(std::move(stream)) {}
  std::size_t read(char* buffer, std::size_t size) override {
    const std::size_t most = std::min(size, kMostUnpacked - count_);
    const std::size_t count = most ? stream_->read(buffer, most) : 0;
    count_ += count;
    return count;
  }

 private:
  std::unique_ptr<ByteStream> stream_;
  std::size_t count_ = 0;
};

void expect_sound(const ZelkLogBlock& block) {
  const ZelkFrameBlock& frames = block.frames;
  expect(block.counts.frames == frames.Size(), "frames are counted wrongly");
  expect(block.counts.frames + block.counts.malformed <= block.counts.lines, "too few lines");
  for (std::size_t i = 0; i < frames.Size(); ++i) {
    const std::uint32_t id = frames.Ids()[i];
    expect(id & ZELK_ID_EXTENDED ? id <= 0x9FFFFFFF : id <= 0x7FF, "an identifier out of range");
    expect(frames.Channels()[i] < frames.ChannelNames().size(), "a channel out of range");
    const auto data = frames.Data(i);
    for (std::size_t at = data.size(); at % 8 != 0; ++at)
      expect(data.data()[at] == 0, "data is not padded");
  }
}

struct Outcome {
  std::string frames{};
  ZelkLogCounts counts{};
  std::string error{};
};

Outcome read(const FormRow& row, const std::string& input, std::size_t most) {
  Outcome outcome;
  try {
    auto bytes = decompressed(std::make_unique<MemoryStream>(input, most), "log");
    auto text = in_utf8(std::make_unique<Limited>(std::move(bytes)));
    // Whether times are differences is told from the bytes that are there at first.
    const auto form = row.open({std::move(text), "log", {.times = ZelkLogTimes::kDifferences}});
    Chunk chunk;
    ZelkLogBlock block;
    while (form->next(chunk)) {
      block.frames.Clear();
      block.counts = {};
      form->parse(chunk, block);
      expect_sound(block);
      outcome.counts += block.counts;
      for (std::size_t i = 0; i < block.frames.Size(); ++i)
        outcome.frames += frame_text(block.frames, i) + '\n';
    }
  } catch (const ZelkLogError& error) {
    outcome.error = error.what();
  }
  return outcome;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string input(reinterpret_cast<const char*>(data), size);
  for (const FormRow& row : forms()) {
    const Outcome whole = read(row, input, kMostUnpacked);
    const Outcome pieces = read(row, input, 1 + size / (2 + size % 7));
    expect(whole.frames == pieces.frames, "pieces give other frames");
    expect(whole.error == pieces.error, "pieces give another error");
    expect(whole.counts.malformed == pieces.counts.malformed, "pieces give other malformed lines");
  }
  return 0;
}
