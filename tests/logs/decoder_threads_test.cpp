// Decoders of 8 threads at once: of each thread's own, from one database, and those that all
// threads share. The pieces that decoders are asked for are put together by one of the threads
// meanwhile.

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "logs/text_database.hpp"
#include "support/threads.hpp"
#include "zelk/logs/columns.hpp"
#include "zelk/logs/messages.hpp"
#include "zelk/logs/texts.hpp"
#include "zelk/logs/time_window.hpp"
#include "zelk/logs/transport.hpp"
#include "zelk/logs/wide.hpp"

namespace {

constexpr const char* kDatabase =
    "BS_:\nBU_: N\nBO_ 1 M: 8 N\n SG_ Gear M : 0|2@1+ (1,0) [0|0] '' N\n"
    " SG_ Low m0 : 8|16@1+ (0.1,0) [0|0] 'V' N\n SG_ High m1 : 8|16@1- (1,-4) [0|0] '' N\n"
    "BO_ 2566834709 J: 8 N\n SG_ S : 0|32@1+ (1,0) [0|0] '' N\nVAL_ 1 Gear 0 'off' 1 'on' ;\n";

ZelkFrameBlock frames() {
  ZelkFrameBlock block;
  for (int i = 0; i < 500; ++i) {
    const auto byte = static_cast<unsigned char>(i);
    const unsigned char data[8] = {byte, 1, byte, 3};
    const std::uint16_t channel = block.ChannelIndex(i % 3 == 0 ? "can0" : "can1");
    block.Append(i * 1'000'000, i % 2 == 0 ? 1 : 0x98FECA17, 0, channel, data);
  }
  return block;
}

/// Tells what it makes of frames; any number of threads may ask it at once.
using Ask = std::function<std::string(const ZelkFrameBlock&)>;

template <typename Decoder>
std::shared_ptr<Decoder> chosen(std::shared_ptr<Decoder> decoder, const ZelkDatabase& database) {
  decoder->AddDatabase(database, "d");
  return decoder;
}

Ask text_decoder(const ZelkDatabase& database, ZelkTextFormat format) {
  const auto decoder = chosen(
      std::make_shared<ZelkTextDecoder>(ZelkTextOptions{.format = format, .match_groups = true}),
      database);
  decoder->Prepare();
  return [decoder](const ZelkFrameBlock& block) {
    ZelkTextLines lines;
    decoder->Decode(block, lines);
    return std::string(decoder->Heading()) + std::string(lines.Text());
  };
}

Ask finder(const ZelkDatabase& database) {
  const auto finding = chosen(std::make_shared<ZelkMessageFinder>(true), database);
  finding->Prepare();
  return [finding](const ZelkFrameBlock& block) {
    std::string text;
    for (const std::uint32_t id : block.Ids()) text += finding->Find("can0", id).message->name;
    return text;
  };
}

Ask columns(const ZelkDatabase& database) {
  const auto decoder = chosen(std::make_shared<ZelkColumnDecoder>(), database);
  decoder->Tables();
  return [decoder](const ZelkFrameBlock& block) {
    ZelkColumnRows rows;
    decoder->Decode(block, rows);
    return std::to_string(rows.Counts().decoded);
  };
}

Ask wide_decoder(const ZelkDatabase& database) {
  const auto decoder =
      std::make_shared<ZelkWideDecoder>(*chosen(std::make_shared<ZelkWideChoice>(), database));
  return [decoder](const ZelkFrameBlock& block) {
    ZelkWideRows rows;
    decoder->Decode(block, rows);
    std::string text = decoder->Tables()[0].heading;
    for (std::size_t row = 0; row < rows.Size(); ++row) text += rows.Line(row);
    return text;
  };
}

Ask window(const ZelkDatabase&) {
  const ZelkTimeOptions options{.start = ZelkTimePoint{100'000'000, true}, .relative = true};
  const auto times = std::make_shared<ZelkTimeWindow>(options);
  times->Begin(0, "log");
  return [times](const ZelkFrameBlock& block) {
    ZelkFrameBlock cut = block;
    const std::size_t removed = times->Cut(cut, "log");
    return std::to_string(removed) + ' ' + std::to_string(cut.Times()[0]);
  };
}

Ask transport(const ZelkDatabase&) {
  return [](const ZelkFrameBlock& block) {
    ZelkTransport own;
    ZelkFrameBlock assembled = block;
    own.Assemble(assembled);
    own.End();
    return std::to_string(assembled.Size() + own.Counts().complete);
  };
}

TEST(DecoderThreads, DecodeAsOneDoes) {
  const TextDatabase database(kDatabase);
  const ZelkFrameBlock block = frames();
  const std::function<Ask()> kinds[] = {
      [&] { return text_decoder(database, ZelkTextFormat::kText); },
      [&] { return text_decoder(database, ZelkTextFormat::kJson); },
      [&] { return text_decoder(database, ZelkTextFormat::kCsv); },
      [&] { return finder(database); },
      [&] { return columns(database); },
      [&] { return wide_decoder(database); },
      [&] { return window(database); },
      [&] { return transport(database); },
  };
  std::vector<Ask> shared;
  std::vector<std::string> alone;
  for (const auto& make : kinds) {
    shared.push_back(make());
    alone.push_back(make()(block));
  }
  EXPECT_TRUE(alone[0].starts_with("(0.000000) can0 M Gear=0 \"off\" Low=0.1 V\n")) << alone[0];
  EXPECT_EQ(alone[4], "250");
  EXPECT_EQ(alone[6], "100 100000000");
  run_in_threads([&](int thread, int round) {
    const std::size_t kind = static_cast<std::size_t>(thread + round) % shared.size();
    EXPECT_EQ(shared[kind](block), alone[kind]) << kind;
    EXPECT_EQ(kinds[kind]()(block), alone[kind]) << kind;
  });
}

// One thread puts values and takes batches while the others decode.
TEST(DecoderThreads, PutWhileOthersDecode) {
  const TextDatabase database(kDatabase);
  const ZelkFrameBlock block = frames();
  ZelkColumnDecoder columns;
  columns.AddDatabase(database, "d");
  ZelkWideChoice choice;
  choice.AddDatabase(database, "d");
  std::size_t written = 0;
  ZelkTimeline timeline(choice, {}, 0, [&](std::string_view lines) { written += lines.size(); });
  ASSERT_EQ(columns.Tables().size(), 2U);
  std::size_t rows_taken = 0;
  run_in_threads([&](int thread, int) {
    ZelkColumnRows rows;
    columns.Decode(block, rows);
    ZelkTimelineValues values;
    timeline.Decode(block, values);
    EXPECT_EQ(values.Counts().decoded, 250U);
    if (thread != 0) return;
    columns.Put(rows);
    timeline.Put(values);
    ArrowArray batch = {};
    if (!columns.TakeBatch(0, true, &batch)) return;
    rows_taken += static_cast<std::size_t>(batch.length);
    batch.release(&batch);
  });
  EXPECT_EQ(rows_taken, 250U * kRounds);
  EXPECT_GT(written, 250U * kRounds);
}

}  // namespace
