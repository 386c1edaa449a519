// Reads any bytes as a log, of the form that they look like or of any other, compressed or not,
// puts messages of J1939 together, and decodes all into columns. What comes out must not depend on
// the pieces in which the bytes arrive. The sanitizers judge, too.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "expect.hpp"
#include "logs/columns/column_store.hpp"
#include "logs/forms/form.hpp"
#include "logs/forms/lines.hpp"
#include "support/memory_stream.hpp"
#include "zelk/logs/transport.hpp"
#include "zelk/records.h"
#include "zelk/zelk.h"

namespace {

using namespace zelk::logs;

constexpr std::size_t kBlockBytes = 2 * kLongestLine;
constexpr std::size_t kMostUnpacked = 1 << 16;  // of a small input that unpacks to very much

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

/// Messages of which frames are likely to be: signals of both byte orders, of a multiplexor, a long
/// one in nine bytes, a float, and a group of J1939 that is longer than a frame.
constexpr const char kDatabase[] = R"(BS_:
BU_: Recorder
BO_ 291 Short: 8 Recorder
 SG_ Intel : 1|11@1- (0.1,-3) [0|0] "" Recorder
 SG_ Motorola : 23|17@0+ (1,0) [0|0] "" Recorder
 SG_ NineBytes : 4|64@1+ (1,0) [0|0] "" Recorder
BO_ 68 Multiplexed: 8 Recorder
 SG_ Page M : 0|3@1+ (1,0) [0|0] "" Recorder
 SG_ First m0 : 8|32@1- (1,0) [0|0] "" Recorder
 SG_ Second m2 : 13|9@0- (2,1) [0|0] "" Recorder
BO_ 2566834709 Group: 1785 Recorder
 SG_ Near : 0|16@1+ (1,0) [0|0] "" Recorder
 SG_ Far : 8000|8@1+ (1,0) [0|0] "" Recorder
SIG_VALTYPE_ 68 First : 1;
)";

struct Database : ZelkDatabase {
  Database() {
    const auto error =
        zelk_try_read_text(kDatabase, sizeof kDatabase - 1, &nodes, &messages, &env_vars,
                           &bit_timings, &attr_defs, &attr_values, &categories, &filter, &comment,
                           &user_data, &signal_types, &value_tables, predefined.slots);
    expect(error == 0, zelk_get_error_text());
  }
};

/// Made once: it takes longer than decoding what stands in an input.
const std::shared_ptr<const ColumnPlan>& column_plan() {
  static const Database database;
  static const auto plan = [] {
    Choosing chosen;
    chosen.add_database(database, "fuzz", "");
    const ZelkColumnOptions options{.match_groups = true, .batch_rows = 1 << 20};
    return std::make_shared<const ColumnPlan>(chosen, options);
  }();
  return plan;
}

/// Decodes blocks into the columns of all messages: at once, or by rows that are put.
class Columns {
 public:
  explicit Columns(bool by_rows) : by_rows_(by_rows) {}

  void add(const ZelkFrameBlock& block) {
    if (!by_rows_) return store_.decode(block);
    ChannelTexts channels;
    decoder_.decode(*store_.plan(), block, channels.enter(block.ChannelNames()), rows_);
    store_.append(rows_, decoder_.tables(), channels.texts());
  }

  /// The values of all tables, and which of them are null.
  std::string content() {
    std::string text;
    for (std::size_t table = 0; table < store_.plan()->tables().size(); ++table) {
      ArrowArray batch;
      while (store_.take_batch(table, true, batch)) {
        for (std::int64_t c = 0; c < batch.n_children; ++c)
          append(*batch.children[c], c == 1 ? 4 : 8, text);
        batch.release(&batch);
      }
    }
    return text;
  }

 private:
  static void append(const ArrowArray& column, std::size_t width, std::string& text) {
    const auto size = static_cast<std::size_t>(column.length);
    text.append(static_cast<const char*>(column.buffers[1]), size * width);
    if (column.buffers[0]) text.append(static_cast<const char*>(column.buffers[0]), (size + 7) / 8);
  }

  bool by_rows_;
  ColumnStore store_{column_plan()};
  BlockDecoder decoder_;
  std::vector<TableRows> rows_;
};

struct Outcome {
  std::string frames{};
  std::string columns{};
  std::uint64_t messages = 0;  ///< of J1939, put together
  ZelkLogCounts counts{};
  std::string error{};
};

/// @param most  bytes of a piece
std::unique_ptr<PeekedStream> opened(const std::string& input, std::size_t most) {
  auto bytes = decompressed(std::make_unique<MemoryStream>(input, most), "log");
  return in_utf8(std::make_unique<Limited>(std::move(bytes)));
}

/// The form that a reader finds; a host may name another one, and so does each fourth length.
const FormRow& form_of(const std::string& input) {
  if (input.size() % 4 == 0) return forms()[input.size() / 4 % forms().size()];
  try {
    const auto text = opened(input, kMostUnpacked);
    for (const FormRow& row : forms())
      if (row.is_form_of(*text)) return row;
  } catch (const ZelkLogError&) {  // which reading it tells
  }
  return forms().back();
}

/// Whether the columns of a trace without a head are told by the lines that are there at first.
bool is_headless(const FormRow& row, const std::string& input) {
  return std::string_view(row.form.name) == "trc" && !input.starts_with(";$FILEVERSION=");
}

/// @param most  bytes of a piece
Outcome read(const FormRow& row, const std::string& input, std::size_t most) {
  Outcome outcome;
  ZelkTransport transport;
  Columns columns(most < input.size());
  try {
    // Whether times are differences is told from the bytes that are there at first.
    LogInput log{opened(input, most), "log", {.times = ZelkLogTimes::kDifferences}};
    log.block_bytes = kBlockBytes;
    const auto form = row.open(std::move(log));
    Chunk chunk;
    static ZelkLogBlock block;  // its memory is kept
    while (form->next(chunk)) {
      block.frames.Clear();
      block.counts = {};
      block.malformed.clear();
      form->parse(chunk, block);
      expect_sound(block);
      outcome.counts += block.counts;
      transport.Assemble(block.frames);
      columns.add(block.frames);
      for (std::size_t i = 0; i < block.frames.Size(); ++i)
        outcome.frames += frame_text(block.frames, i) + '\n';
    }
  } catch (const ZelkLogError& error) {
    outcome.error = error.what();
  }
  transport.End();
  outcome.messages = transport.Counts().complete;
  outcome.columns = columns.content();
  return outcome;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string input(reinterpret_cast<const char*>(data), size);
  const FormRow& row = form_of(input);
  const Outcome whole = read(row, input, kMostUnpacked);
  if (is_headless(row, input)) return 0;
  const Outcome pieces = read(row, input, 1 + size / (2 + size % 7));
  expect(whole.frames == pieces.frames, "pieces give other frames",
         whole.frames + "---\n" + pieces.frames);
  expect(whole.messages == pieces.messages, "pieces give other messages of J1939");
  expect(whole.columns == pieces.columns, "pieces give other columns");
  expect(whole.error == pieces.error, "pieces give another error");
  expect(whole.counts.malformed == pieces.counts.malformed, "pieces give other malformed lines");
  return 0;
}
