#include "zelk/logs/columns.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <deque>
#include <stdexcept>
#include <thread>

#include "base/list.hpp"
#include "codec/frames.hpp"
#include "logs/arrow_reading.hpp"
#include "logs/columns/kernels.hpp"
#include "logs/text_database.hpp"
#include "support/threads.hpp"
#include "zelk/frame_decoder.hpp"
#include "zelk/logs/column_stream.hpp"
#include "zelk/manager.hpp"
#include "zelk/zelk.h"

namespace {

using testing::ElementsAre;
using Rows = std::vector<std::string>;

/// Messages of all kinds, with the identifiers 0 to 4, and their records.
struct RandomDatabase : ZelkDatabase {
  static constexpr std::uint32_t kMessages = 5;

  RandomDatabase(Random& random, unsigned most_signals) {
    for (std::uint32_t id = 0; id < kMessages; ++id) {
      Message& message = own.emplace_back();
      message.record.id = id;
      message.record.next = id > 0 ? &own[id - 1].record : nullptr;
      add_random_signals(message, random, random.between(1, most_signals));
      if (random.one_in(4)) message.add(make_signal(random.between(0, 70), 0));
      if (random.one_in(4)) message.add(make_signal(65535, 9, random.between(0, 3)));
      if (random.one_in(3)) {
        // A multiplexor whose value is not its low 32 bits, or that selects nothing.
        sigblk& odd = message.add(random.signal(random.between(33, 40), 8));
        message.select(message.add(random.signal(8, 8)), odd, 0, 0x7F);
      }
      for (sigblk& signal : message.signals) add_descriptions(signal, random);
      messages = &message.record;
    }
  }
  ~RandomDatabase() override { messages = nullptr; }

  void add_descriptions(sigblk& signal, Random& random) {
    const unsigned count = random.one_in(2) ? random.between(1, 5) : 0;
    for (unsigned i = 0; i < count; ++i) {
      const auto value = static_cast<std::int32_t>(
          random.one_in(4) ? random.bits() : random.between(0, 6) - std::uint64_t{3});
      descriptions.push_back({value, texts[random.between(0, 2)].data(), signal.values});
      signal.values = &descriptions.back();
    }
  }

  std::deque<Message> own;
  std::deque<val> descriptions;
  std::array<std::string, 3> texts = {"off", "", "\xC3\xBC"};
};

struct Log {
  Log(Random& random, std::size_t count) {
    std::array<const char*, 3> names = {"can0", "", "vcan\xFC"};
    std::ranges::rotate(names, names.begin() + random.between(0, 2));
    for (const char* const name : names) block.ChannelIndex(name);
    const std::uint16_t flags[] = {0, 0, kZelkFrameFd, kZelkFrameRemote, kZelkFrameError};
    const bool is_classic = random.one_in(3);
    const bool is_alike = random.one_in(4);  // but for times and data
    std::uint32_t id = 0;
    std::size_t flag = 0;
    std::uint16_t channel = 0;
    for (std::size_t i = 0; i < count; ++i) {
      const std::size_t size = is_classic ? 8 : random.between(0, random.one_in(60) ? 9000 : 66);
      frames.push_back(random.frame(size));
      if (i == 0 || !is_alike) {
        id = random.between(0, RandomDatabase::kMessages);
        flag = random.between(0, 4);
        channel = static_cast<std::uint16_t>(random.between(0, 2));
      }
      block.Append(random.one_in(9) ? kZelkNoTime : static_cast<std::int64_t>(random.bits() / 2),
                   id, flags[flag], channel, frames.back());
    }
  }
  ZelkFrameBlock block;
  std::vector<Frame> frames;
};

/// What one frame's signals are by `ZelkFrameDecoder` and, where it gives all their bits, by
/// `ZelkManager`.
class ExpectedFrame {
 public:
  explicit ExpectedFrame(const msgblk& message)
      : decoder_(message),
        values_(decoder_.SignalCount()),
        raws_(decoder_.SignalCount()),
        present_(decoder_.PresenceWords()) {}

  void read(Frame frame) {
    decoder_.Decode(frame.data(), frame.size(), values_.data(), present_.data());
    decoder_.DecodeRaw(frame.data(), frame.size(), raws_.data(), present_.data());
    frame.resize(frame.size() + 80);
    for (std::size_t i = 0; i < decoder_.SignalCount(); ++i)
      if (is_present(i)) check_by_manager(frame, i);
  }

  std::size_t index_of(const sigblk& signal) const {
    std::size_t i = 0;
    while (&decoder_.Signal(i) != &signal) ++i;
    return i;
  }
  bool is_present(std::size_t i) const { return (present_[i / 64] >> i % 64 & 1) != 0; }
  std::optional<std::int64_t> physical(std::size_t i) const {
    return is_present(i) ? std::optional(std::bit_cast<std::int64_t>(values_[i])) : std::nullopt;
  }
  std::optional<std::int64_t> raw(std::size_t i) const {
    return is_present(i) ? std::optional(raws_[i]) : std::nullopt;
  }
  std::optional<std::string> text(std::size_t i) const {
    const std::int64_t raw = raws_[i];
    if (!is_present(i) || raw < INT32_MIN || raw > std::int64_t{UINT32_MAX}) return std::nullopt;
    for (const val& value : zelk::each(decoder_.Signal(i).values)) {
      if (static_cast<std::uint32_t>(value.value) == static_cast<std::uint32_t>(raw))
        return value.text;
    }
    return std::nullopt;
  }

 private:
  void check_by_manager(const Frame& frame, std::size_t i) const {
    const sigblk& signal = decoder_.Signal(i);
    const bool is_ieee = signal.value_type == 1 || signal.value_type == 2;
    if (!is_ieee && signal.length > 56) return;  // perhaps in nine bytes
    double physical = 0;
    manager_.GetSignalPhysicalValue(frame[0], signal, decoder_.Message(), physical);
    ASSERT_EQ(std::bit_cast<std::int64_t>(physical), std::bit_cast<std::int64_t>(values_[i]));
  }

  const ZelkManager manager_{static_cast<void*>(nullptr)};
  ZelkFrameDecoder decoder_;
  std::vector<double> values_;
  std::vector<std::int64_t> raws_;
  std::vector<std::uint64_t> present_;
};

/// Compares batches with frames, row by row.
class LogCheck {
 public:
  LogCheck(const ZelkColumnTable& table, const ZelkColumnDecoder& decoder, std::size_t index)
      : table_(table), expected_(*table.message) {
    decoder.GetSchema(index, &schema_);
  }

  void check(const ArrowArray& batch, const std::vector<const Log*>& logs) {
    for (std::size_t c = 0; c < table_.columns.size(); ++c)
      check_layout(*batch.children[c], zelk::logs::width_of(table_.columns[c].type));
    for (std::int64_t row = 0; row < batch.length; ++row) {
      find_next_frame(logs);
      check_row(batch, row, *logs[log_], frame_++);
      ++cells_;
    }
  }
  std::size_t rows() const { return cells_; }
  bool is_at_end(const std::vector<const Log*>& logs) {
    find_next_frame(logs);
    return log_ == logs.size();
  }

 private:
  void find_next_frame(const std::vector<const Log*>& logs) {
    for (; log_ < logs.size(); ++log_, frame_ = 0) {
      const ZelkFrameBlock& block = logs[log_]->block;
      for (; frame_ < block.Size(); ++frame_) {
        const bool has_data = (block.Flags()[frame_] & (kZelkFrameRemote | kZelkFrameError)) == 0;
        if (has_data && block.Ids()[frame_] == table_.message->id) return;
      }
    }
  }

  void check_row(const ArrowArray& batch, std::int64_t row, const Log& log, std::size_t frame) {
    const std::int64_t time = log.block.Times()[frame];
    ASSERT_EQ(number_at(*batch.children[0], "l", row),
              time == kZelkNoTime ? std::nullopt : std::optional(time));
    const std::string& name = log.block.ChannelNames()[log.block.Channels()[frame]];
    const std::string channel = name == "vcan\xFC" ? "vcan\xC3\xBC" : name;
    ASSERT_EQ(text_at(*batch.children[1], row),
              channel.empty() ? std::nullopt : std::optional(channel));
    expected_.read(log.frames[frame]);
    for (std::size_t c = 2; c < table_.columns.size(); ++c) {
      const ArrowArray& values = *batch.children[c];
      const std::string_view format = schema_.children[c]->format;
      const ZelkColumn& column = table_.columns[c];
      const std::size_t signal = expected_.index_of(*column.signal);
      if (column.type == ZelkColumnType::kDictionary) {
        ASSERT_EQ(text_at(values, row), expected_.text(signal));
      } else if (is_physical(column)) {
        ASSERT_EQ(number_at(values, format, row), expected_.physical(signal)) << c;
      } else {
        ASSERT_EQ(number_at(values, format, row), expected_.raw(signal)) << c;
      }
    }
  }

  bool is_physical(const ZelkColumn& column) const {
    return column.type == ZelkColumnType::kDouble && !column.name.ends_with("raw") && !is_raw;
  }

 public:
  bool is_raw = false;

 private:
  const ZelkColumnTable& table_;
  ExpectedFrame expected_;
  Received<ArrowSchema> schema_;
  std::size_t log_ = 0;
  std::size_t frame_ = 0;
  std::size_t cells_ = 0;
};

/// Blocks are decoded at once, or into rows which are put in their order; batches are taken now and
/// then.
void check_columns(const ZelkDatabase& database, Random& random, const ZelkColumnOptions& options) {
  ZelkColumnDecoder decoder(options);
  decoder.AddDatabase(database, "random");
  const auto& tables = decoder.Tables();
  std::deque<LogCheck> checks;
  for (std::size_t t = 0; t < tables.size(); ++t) {
    checks.emplace_back(tables[t], decoder, t).is_raw = options.values == ZelkColumnValues::kRaw;
  }
  std::deque<Log> logs;
  std::vector<const Log*> log_pointers;
  ZelkColumnRows rows[2];
  std::size_t row_count = 0;
  for (int round = 0; round < 6; ++round) {
    for (int i = 0; i < 2; ++i) {
      logs.emplace_back(random, random.one_in(8) ? 2500 : random.between(0, 200));
      log_pointers.push_back(&logs.back());
    }
    if (random.one_in(3)) {
      for (std::size_t i = logs.size() - 2; i < logs.size(); ++i) decoder.Decode(logs[i].block);
    } else {
      decoder.Decode(logs.back().block, rows[1]);
      decoder.Decode(logs[logs.size() - 2].block, rows[0]);
      for (ZelkColumnRows& part : rows) decoder.Put(part);
    }
    const bool is_end = round == 5 || random.one_in(3);
    for (std::size_t t = 0; t < tables.size(); ++t) {
      Received<ArrowArray> batch;
      while (decoder.TakeBatch(t, is_end, &batch)) {
        ASSERT_LE(static_cast<std::size_t>(batch.length), options.batch_rows);
        checks[t].check(batch, log_pointers);
        if (testing::Test::HasFatalFailure()) return;
        row_count += static_cast<std::size_t>(batch.length);
        batch.reset();
      }
      ASSERT_LT(decoder.RowCount(t), is_end ? 1 : options.batch_rows);
    }
  }
  for (LogCheck& check : checks) ASSERT_TRUE(check.is_at_end(log_pointers));
  ASSERT_GT(row_count, 0u);
}

TEST(Columns, EqualWhatFrameDecoderAndManagerRead) {
  Random random;
  for (int i = 0; i < 30; ++i) {
    const RandomDatabase database(random, i == 0 ? 70 : 9);
    for (const auto values :
         {ZelkColumnValues::kPhysical, ZelkColumnValues::kRaw, ZelkColumnValues::kTexts}) {
      const std::size_t batch_rows = random.one_in(2) ? random.between(1, 100) : 1000;
      check_columns(database, random, {values, random.one_in(2), false, batch_rows});
      ASSERT_FALSE(HasFatalFailure()) << i << ", " << static_cast<int>(values);
    }
  }
}

constexpr char kTwo[] =
    "BS_:\nBU_:\n"
    "BO_ 10 Engine: 8 Ostrel__XXX\n"
    " SG_ Speed : 0|16@1+ (0.5,-10) [0|0] 'km/h' Ostrel__XXX\n"
    " SG_ Gear : 16|4@1- (1,0) [0|0] '' Ostrel__XXX\n"
    " SG_ time : 24|1@1+ (1,0) [0|0] '\xB0' Ostrel__XXX\n"
    "BO_ 2147483658 Brake: 8 Ostrel__XXX\n"
    " SG_ Speed : 7|16@0- (1,0) [0|0] '' Ostrel__XXX\n"
    "VAL_ 10 Gear -1 'R' 0 'N' 1 'D' 2 'D' ;\n";

/// All rows of a table, a text for each.
Rows rows_of(ZelkColumnDecoder& decoder, std::size_t table) {
  Received<ArrowSchema> schema;
  decoder.GetSchema(table, &schema);
  Rows rows;
  Received<ArrowArray> batch;
  while (decoder.TakeBatch(table, true, &batch)) {
    for (std::int64_t row = 0; row < batch.length; ++row) {
      std::string& text = rows.emplace_back();
      for (std::int64_t c = 1; c < batch.n_children; ++c) {
        const ArrowArray& values = *batch.children[c];
        const std::string_view format = schema.children[c]->format;
        std::string cell = "null";
        if (values.dictionary) {
          cell = text_at(values, row).value_or(cell);
        } else if (const auto number = number_at(values, format, row)) {
          cell = format != "g" ? std::to_string(*number)
                               : std::to_string(std::bit_cast<double>(*number));
        }
        text += (text.empty() ? "" : " ") + cell;
      }
    }
    batch.reset();
  }
  return rows;
}

std::string types_of(const ZelkColumnDecoder& decoder, std::size_t table) {
  Received<ArrowSchema> schema;
  decoder.GetSchema(table, &schema);
  EXPECT_STREQ(schema.format, "+s");
  std::string types;
  for (std::int64_t c = 0; c < schema.n_children; ++c) {
    const ArrowSchema& column = *schema.children[c];
    EXPECT_EQ(column.flags, ARROW_FLAG_NULLABLE);
    types += std::string(column.name) + ":" + column.format;
    if (column.dictionary) types += std::string(":") + column.dictionary->format;
    if (column.metadata) {
      std::int32_t length = 0;  // in the machine's order of bytes
      std::memcpy(&length, column.metadata + 12, sizeof length);
      types += ":" + std::string(column.metadata + 16, static_cast<std::size_t>(length));
    }
    types += " ";
  }
  return types;
}

void append(ZelkFrameBlock& block, std::uint32_t id, const char* channel, Frame data) {
  block.Append(7, id, 0, block.ChannelIndex(channel), data);
}

TEST(Columns, HaveNamesTypesUnitsAndTexts) {
  const TextDatabase database(kTwo);
  ZelkFrameBlock block;
  append(block, 10, "can0", {0x04, 0x01, 0x0F, 0x01});
  append(block, 10, "", {0, 0, 0x05});
  append(block, 10, "can0", {0, 0, 0x02});
  const struct {
    ZelkColumnOptions options;
    std::string types;
    Rows rows;
  } cases[] = {
      {{},
       "time:l channel:i:u Speed:g:km/h Gear:g time_2:g:\xC2\xB0 ",
       {"can0 120.000000 -1.000000 1.000000", "null -10.000000 5.000000 null",
        "can0 -10.000000 2.000000 null"}},
      {{ZelkColumnValues::kRaw},
       "time:l channel:i:u Speed:S Gear:c time_2:C ",
       {"can0 260 -1 1", "null 0 5 null", "can0 0 2 null"}},
      {{ZelkColumnValues::kTexts, true},
       "time:l channel:i:u Speed:g:km/h Gear:i:u Gear.raw:c time_2:g:\xC2\xB0 ",
       {"can0 120.000000 R -1 1.000000", "null -10.000000 null 5 null",
        "can0 -10.000000 D 2 null"}},
  };
  for (const auto& c : cases) {
    ZelkColumnDecoder decoder(c.options);
    decoder.AddDatabase(database, "two");
    ASSERT_EQ(decoder.Tables().size(), 2u);
    EXPECT_EQ(types_of(decoder, 0), c.types);
    decoder.Decode(block);
    EXPECT_EQ(rows_of(decoder, 0), c.rows);
    EXPECT_EQ(rows_of(decoder, 1), Rows());
  }
}

TEST(Columns, AreOfSelectedMessagesAndSignals) {
  const TextDatabase database(kTwo);
  const struct {
    std::vector<const char*> messages, signals;
    std::string tables;
    std::string matches;  // of each pattern
  } cases[] = {
      {{}, {}, "Engine(5) Brake(3) ", ""},
      {{"?rake"}, {}, "Brake(3) ", "1"},
      {{"engine"}, {}, "", "0"},
      {{}, {"Speed"}, "Engine(3) Brake(3) ", "1"},
      {{}, {"*.G*", "Brak*.time"}, "Engine(3) ", "10"},
      {{"Brake", "x"}, {"Engine.*"}, "", "101"},
  };
  for (const auto& c : cases) {
    ZelkColumnDecoder decoder;
    decoder.AddDatabase(database, "two");
    std::string tables, matches;
    for (const char* pattern : c.messages) matches += decoder.SelectMessages(pattern) ? "1" : "0";
    for (const char* pattern : c.signals) matches += decoder.SelectSignals(pattern) ? "1" : "0";
    for (const ZelkColumnTable& table : decoder.Tables())
      tables += table.name + "(" + std::to_string(table.columns.size()) + ") ";
    EXPECT_EQ(tables, c.tables);
    EXPECT_EQ(matches, c.matches);
  }
}

constexpr char kJ1939[] =
    "BS_:\nBU_:\n"
    "BO_ 2566844926 Own: 8 Ostrel__XXX\n"  // 0x98FEF1FE
    " SG_ s : 0|8@1+ (1,0) [0|0] '' Ostrel__XXX\n";
constexpr char kFormat[] =
    "BA_DEF_ BO_ 'VFrameFormat' ENUM 'ExtendedCAN','J1939PG';\n"
    "BA_DEF_DEF_ 'VFrameFormat' 'J1939PG';\n";

TEST(Columns, FindMessagesByChannelIdentifierAndGroup) {
  const TextDatabase two(kTwo);
  const TextDatabase silent(kJ1939);
  const TextDatabase group(std::string(kJ1939) + kFormat);
  ZelkFrameBlock block;
  append(block, 10, "can1", {1, 0, 0, 0});
  append(block, 10, "can0", {2, 0, 0, 0});
  append(block, 0x8000000A, "can2", {0, 3});
  append(block, 0x98FEF1FE, "can1", {4});
  append(block, 0x8CFEF117, "can0", {5});
  append(block, 0x0CFEF117, "can0", {6});
  block.Append(8, 10, 0, 99, Frame{7, 0, 0, 0});  // of a channel that the block does not know
  struct Added {
    const ZelkDatabase& database;
    const char* name;
    const char* channel;
  };
  const struct {
    std::vector<Added> databases;
    bool match_groups;
    std::vector<std::pair<std::string, Rows>> tables;
  } cases[] = {
      {{{two, "a", ""}, {two, "b", "can0"}},
       false,
       {{"a::Engine", {"can1 1", "can0 2", "null 7"}},
        {"a::Brake", {"can2 3"}},
        {"b::Engine", {}},
        {"b::Brake", {}}}},
      {{{two, "a", "can1"}, {two, "a", ""}},
       false,
       {{"a::Engine", {"can1 1"}},
        {"a::Brake", {}},
        {"a::Engine_2", {"can0 2", "null 7"}},
        {"a::Brake_2", {"can2 3"}}}},
      {{{silent, "s", ""}}, false, {{"Own", {"can1 4"}}}},
      {{{silent, "s", ""}}, true, {{"Own", {"can1 4", "can0 5"}}}},
      {{{silent, "s", "can1"}, {group, "g", ""}},
       false,
       {{"s::Own", {"can1 4"}}, {"g::Own", {"can0 5"}}}},
      {{{silent, "s", "can1"}, {group, "g", "can1"}},
       true,
       {{"s::Own", {"can1 4"}}, {"g::Own", {}}}},
  };
  for (const auto& c : cases) {
    ZelkColumnDecoder decoder({ZelkColumnValues::kRaw, false, c.match_groups});
    for (const Added& added : c.databases)
      decoder.AddDatabase(added.database, added.name, added.channel);
    decoder.SelectSignals("s*");
    decoder.SelectSignals("Speed");
    std::vector<std::pair<std::string, Rows>> tables;
    for (const ZelkColumnTable& table : decoder.Tables()) tables.push_back({table.name, {}});
    decoder.Decode(block);
    for (std::size_t t = 0; t < tables.size(); ++t) tables[t].second = rows_of(decoder, t);
    EXPECT_EQ(tables, c.tables);
  }
}

// More identifiers than are counted at a time, in turns.
TEST(Columns, CountUnknownFramesByTheirIdentifiers) {
  const TextDatabase database(kTwo);
  ZelkColumnDecoder decoder;
  decoder.AddDatabase(database, "two");
  decoder.Tables();
  ZelkFrameBlock block;
  for (std::uint32_t i = 0; i < 2100; ++i) {
    const std::uint32_t id = i % 700;
    if (id % 3 >= i / 700) append(block, ZELK_ID_EXTENDED | 0x10000 | id * 7, "can0", {});
  }
  append(block, 10, "can0", {});
  ZelkColumnRows rows;
  for (int i = 0; i < 2; ++i) decoder.Decode(block, rows);
  const ZelkFrameCounts& counts = rows.Counts();
  EXPECT_EQ(counts.decoded, 1u);
  EXPECT_EQ(counts.too_short, 1u);
  EXPECT_EQ(counts.unknown, 1399u);  // of each three identifiers 1, 2 and 3 frames
  ASSERT_EQ(counts.unknown_ids.size(), 700u);
  for (std::uint32_t i = 0; i < 700; ++i)
    EXPECT_EQ(counts.unknown_ids.at(ZELK_ID_EXTENDED | 0x10000 | i * 7), i % 3 + 1) << i;
}

/// Frames decoded, unknown, remote, errors and too short; rows of two tables, and of the second one
/// when that alone is decoded.
using Numbers = std::vector<std::uint64_t>;

Numbers numbers_of(const ZelkDatabase& database, const ZelkFrameBlock& block) {
  ZelkColumnDecoder decoder, alone;
  for (ZelkColumnDecoder* const each : {&decoder, &alone}) {
    each->AddDatabase(database, "three");
    for (const char* const message : {"Engine", "Brake"}) each->SelectMessages(message);
    EXPECT_EQ(each->Tables().size(), 2u);
  }
  ZelkColumnRows rows;
  decoder.Decode(block, rows);
  const ZelkFrameCounts counts = rows.Counts();
  decoder.Put(rows);
  Received<ArrowArrayStream> stream;
  ZelkColumnStream(alone, 1, [&, is_end = false](ZelkFrameBlock& next) mutable {
    next = block;
    return !std::exchange(is_end, true);
  }).Export(&stream);
  Received<ArrowArray> batch;
  EXPECT_EQ(stream.get_next(&stream, &batch), 0);
  EXPECT_EQ(alone.RowCount(0), 0u);
  return {counts.decoded,      counts.unknown,
          counts.remote,       counts.errors,
          counts.too_short,    decoder.RowCount(0),
          decoder.RowCount(1), batch.release ? static_cast<std::uint64_t>(batch.length) : 0};
}

// Alone, the frames of a message are found at once; together with another one, one by one.
TEST(Columns, CountFramesOfOneMessageAlikeAloneAndAmongOthers) {
  std::string text = kTwo;
  const TextDatabase database(text.insert(text.find("BO_"), "BO_ 11 Other: 4 Ostrel__XXX\n"));
  const struct {
    std::uint32_t id;
    std::uint16_t flags;
    std::size_t length;
    Numbers numbers;
  } cases[] = {
      {10, 0, 8, {5, 0, 0, 0, 0, 5, 0, 0}},
      {10, kZelkFrameFd, 7, {5, 0, 0, 0, 5, 5, 0, 0}},
      {0x8000000A, kZelkFrameSent, 9, {5, 0, 0, 0, 0, 0, 5, 5}},
      {11, 0, 3, {5, 0, 0, 0, 5, 0, 0, 0}},
      {0x8000000B, 0, 0, {0, 5, 0, 0, 0, 0, 0, 0}},
      {10, kZelkFrameRemote, 0, {0, 0, 5, 0, 0, 0, 0, 0}},
      {12, kZelkFrameError, 8, {0, 0, 0, 5, 0, 0, 0, 0}},
  };
  for (const auto& c : cases) {
    ZelkFrameBlock block;
    for (int i = 0; i < 5; ++i) block.Append(i, c.id, c.flags, 0, Frame(c.length));
    EXPECT_EQ(numbers_of(database, block), c.numbers) << c.id;
    block.Append(5, 13, 0, 0, {});
    Numbers with_unknown = c.numbers;
    ++with_unknown[1];
    EXPECT_EQ(numbers_of(database, block), with_unknown) << c.id;
  }
}

TEST(Columns, LeaveInSmallerBatchesBeforeTheyTakeTooMuchMemory) {
  const TextDatabase database(kTwo);
  ZelkColumnDecoder decoder({.kept_bytes = 600});
  decoder.AddDatabase(database, "two");
  const std::size_t engine = 0, brake = 1;
  ASSERT_EQ(decoder.Tables().size(), 2u);
  ZelkFrameBlock block;
  append(block, 10, "can0", {0, 0, 0, 0});                                 // 36 bytes
  for (int i = 0; i < 28; ++i) append(block, 0x8000000A, "can0", {0, 1});  // 20 bytes each
  decoder.Decode(block);
  Received<ArrowArray> batch;
  EXPECT_FALSE(decoder.TakeBatch(brake, false, &batch));
  block.Clear();
  append(block, 0x8000000A, "can0", {0, 1});
  ZelkColumnRows rows;
  decoder.Decode(block, rows);
  decoder.Put(rows);
  EXPECT_FALSE(decoder.TakeBatch(engine, false, &batch));
  ASSERT_TRUE(decoder.TakeBatch(brake, false, &batch));
  EXPECT_EQ(batch.length, 29);
}

TEST(Columns, OutliveTheDecoderAndTheirParents) {
  const TextDatabase database(kTwo);
  ArrowArray gear{}, dictionary{};
  ArrowSchema name{};
  {
    auto decoder = std::make_unique<ZelkColumnDecoder>(
        ZelkColumnOptions{ZelkColumnValues::kTexts, false, false, 2});
    decoder->AddDatabase(database, "two");
    ZelkFrameBlock block;
    for (unsigned char i = 0; i < 3; ++i) append(block, 10, "can0", {0, 0, i});
    decoder->Decode(block);
    Received<ArrowArray> batch;
    Received<ArrowSchema> schema;
    decoder->GetSchema(0, &schema);
    ASSERT_TRUE(decoder->TakeBatch(0, false, &batch));
    EXPECT_FALSE(decoder->TakeBatch(0, false, &batch));
    EXPECT_EQ(decoder->RowCount(0), 1u);
    decoder.reset();
    gear = std::exchange(*batch.children[3], {});
    dictionary = std::exchange(*gear.dictionary, {});
    name = std::exchange(*schema.children[2], {});
  }
  EXPECT_EQ(value_at<std::int32_t>(gear, 1), 2);
  gear.release(&gear);
  EXPECT_EQ(gear.release, nullptr);
  EXPECT_EQ(std::string_view(static_cast<const char*>(dictionary.buffers[2]), 3), "RND");
  std::thread([&] { dictionary.release(&dictionary); }).join();
  EXPECT_STREQ(name.name, "Speed");
  name.release(&name);
}

TEST(Columns, AreDecodedByManyThreadsAtOnce) {
  Random random;
  const RandomDatabase database(random, 9);
  std::deque<Log> logs;
  for (int i = 0; i < kThreads * kRounds; ++i) logs.emplace_back(random, 50);
  ZelkColumnDecoder decoder, at_once;
  for (ZelkColumnDecoder* const each : {&decoder, &at_once}) each->AddDatabase(database, "random");
  const std::size_t table_count = decoder.Tables().size();
  std::vector<ZelkColumnRows> rows(logs.size());
  run_in_threads([&](int thread, int round) {
    const auto at = static_cast<std::size_t>(thread * kRounds + round);
    decoder.Decode(logs[at].block, rows[at]);
  });
  for (std::size_t i = 0; i < logs.size(); ++i) {
    decoder.Put(rows[i]);
    at_once.Decode(logs[i].block);
  }
  for (std::size_t t = 0; t < table_count; ++t) {
    const Rows expected = rows_of(at_once, t);
    EXPECT_GT(expected.size(), 500u);
    EXPECT_EQ(rows_of(decoder, t), expected);
  }
}

TEST(Columns, RefuseCallsInTheWrongOrder) {
  const TextDatabase database(kTwo);
  ZelkColumnDecoder decoder, other;
  ZelkColumnRows rows;
  const ZelkFrameBlock block;
  EXPECT_THROW(decoder.Decode(block, rows), std::logic_error);
  EXPECT_THROW(decoder.Put(rows), std::logic_error);
  EXPECT_THROW(decoder.RowCount(0), std::logic_error);
  other.Decode(block);
  EXPECT_TRUE(decoder.Tables().empty());
  EXPECT_THROW(decoder.AddDatabase(database, "two"), std::logic_error);
  EXPECT_THROW(decoder.SelectMessages("*"), std::logic_error);
  EXPECT_THROW(decoder.SelectSignals("*"), std::logic_error);
  decoder.Decode(block, rows);
  EXPECT_THROW(other.Put(rows), std::logic_error);
  ArrowSchema schema;
  ArrowArray array;
  EXPECT_THROW(decoder.RowCount(0), std::out_of_range);
  EXPECT_THROW(decoder.GetSchema(0, &schema), std::out_of_range);
  EXPECT_THROW(decoder.TakeBatch(0, true, &array), std::out_of_range);
}

}  // namespace
