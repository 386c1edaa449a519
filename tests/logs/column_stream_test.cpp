#include "zelk/logs/column_stream.hpp"

#include <gtest/gtest.h>

#include <cerrno>
#include <stdexcept>
#include <vector>

#include "logs/arrow_reading.hpp"

namespace {

struct OneMessage : ZelkDatabase {
  OneMessage() {
    message.id = 1;
    messages = &message;
  }
  ~OneMessage() override { messages = nullptr; }
  msgblk message = {};
};

/// Lengths of the batches of a stream over blocks of so many rows, then "end", or what it fails
/// with.
std::string batches(const std::vector<std::size_t>& blocks, const char* fault) {
  const OneMessage database;
  ZelkColumnDecoder decoder({ZelkColumnValues::kRaw, false, false, 10});
  decoder.AddDatabase(database, "one");
  Received<ArrowArrayStream> stream;
  ZelkColumnStream(decoder, 0, [&, next = blocks.begin()](ZelkFrameBlock& block) mutable {
    if (next == blocks.end() && fault) throw std::runtime_error(fault);
    if (next == blocks.end()) return false;
    EXPECT_EQ(block.Size(), 0u);
    for (std::size_t i = 0; i < *next; ++i) {
      block.Append(static_cast<std::int64_t>(i), 1, 0, 0, {});
      block.Append(0, 2, 0, 0, {});
    }
    ++next;
    return true;
  }).Export(&stream);
  Received<ArrowSchema> schema;
  EXPECT_EQ(stream.get_schema(&stream, &schema), 0);
  EXPECT_EQ(schema.n_children, 2);
  std::string text;
  for (;;) {
    Received<ArrowArray> batch;
    const int error = stream.get_next(&stream, &batch);
    const char* const reason = stream.get_last_error(&stream);
    EXPECT_EQ(reason == nullptr, error == 0);
    if (error != 0) return text + (error == EIO ? "EIO: " : "?: ") + reason;
    if (!batch.release) break;
    text += std::to_string(batch.length) + " ";
  }
  EXPECT_EQ(decoder.RowCount(0), 0u);
  return text + "end";
}

TEST(ColumnStream, GivesBatchesAndThenTheEndOrTheFault) {
  const struct {
    std::vector<std::size_t> blocks;
    const char* fault;
    std::string batches;
  } cases[] = {
      {{}, nullptr, "end"},
      {{0, 3}, nullptr, "3 end"},
      {{10}, nullptr, "10 end"},
      {{4, 4, 4, 25, 0}, nullptr, "10 10 10 7 end"},
      {{4, 8}, "the log is cut off", "10 2 EIO: the log is cut off"},
      {{}, "", "EIO: "},
  };
  for (const auto& c : cases) EXPECT_EQ(batches(c.blocks, c.fault), c.batches);
  ZelkColumnDecoder decoder;
  EXPECT_THROW(ZelkColumnStream(decoder, 0, {}), std::out_of_range);
}

}  // namespace
