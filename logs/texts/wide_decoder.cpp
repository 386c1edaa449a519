#include "base/list.hpp"
#include "base/quoting.hpp"
#include "logs/lookup/table_names.hpp"
#include "logs/texts/wide_columns.hpp"

using zelk::LineBuffer;
using zelk::logs::DecodedFrame;
using zelk::logs::NamedDatabase;
using zelk::logs::PreparedMessage;
using zelk::logs::PreparedSignal;
using zelk::logs::TextPlan;

namespace zelk::logs {

void append_headings(std::string& line, const std::string& name, const PreparedSignal& signal,
                     const std::string& unit) {
  line += ',' + csv_field(unit.empty() ? name : name + " [" + unit + ']');
  if (!signal.descriptions.empty()) line += ',' + csv_field(name + ".text");
}

ZelkTextOptions text_options(const ZelkWideOptions& options) {
  return {ZelkTextFormat::kCsv, options.raw, options.numbers, options.match_groups};
}

}  // namespace zelk::logs

ZelkWideChoice::ZelkWideChoice() : state_(std::make_unique<State>()) {}
ZelkWideChoice::~ZelkWideChoice() = default;

void ZelkWideChoice::AddDatabase(const ZelkDatabase& database, std::string_view name,
                                 std::string_view channel) {
  state_->chosen.add_database(database, name, channel);
}

bool ZelkWideChoice::SelectMessages(std::string_view pattern) {
  return state_->chosen.select_messages(pattern);
}

bool ZelkWideChoice::SelectSignals(std::string_view pattern) {
  return state_->chosen.select_signals(pattern);
}

struct ZelkWideRows::Content {
  struct Row {
    std::uint32_t table;
    std::size_t end;  ///< of its line
  };

  zelk::logs::FrameWalk walk;
  LineBuffer text;
  std::vector<Row> rows;
};

ZelkWideRows::ZelkWideRows() : content_(std::make_unique<Content>()) {}
ZelkWideRows::~ZelkWideRows() = default;

std::size_t ZelkWideRows::Size() const { return content_->rows.size(); }

std::uint32_t ZelkWideRows::Table(std::size_t row) const { return content_->rows[row].table; }

std::string_view ZelkWideRows::Line(std::size_t row) const {
  const std::size_t begin = row == 0 ? 0 : content_->rows[row - 1].end;
  return content_->text.view().substr(begin, content_->rows[row].end - begin);
}

const ZelkFrameCounts& ZelkWideRows::Counts() const { return content_->walk.counts(); }

struct ZelkWideDecoder::State {
  State(const zelk::logs::Choosing& chosen, const ZelkWideOptions& options)
      : plan(chosen, zelk::logs::text_options(options)), table_of(plan.messages().size()) {}

  TextPlan plan;
  std::vector<ZelkWideTable> tables;
  std::vector<std::uint32_t> table_of;  ///< by the message's number
};

ZelkWideDecoder::ZelkWideDecoder(const ZelkWideChoice& choice, const ZelkWideOptions& options)
    : state_(std::make_unique<State>(choice.state_->chosen, options)) {
  zelk::logs::TableNames names(state_->plan.databases(), ".");
  const PreparedMessage* const first = state_->plan.messages().data();
  const auto add = [&](const NamedDatabase& database, const PreparedMessage& message) {
    ZelkWideTable table{names.next(database.name, database.text_of(message.decoder.Message().name)),
                        "time,interface"};
    for (const PreparedSignal& prepared : message.signals) {
      const sigblk& signal = message.decoder.Signal(prepared.index);
      zelk::logs::append_headings(table.heading, database.text_of(signal.name), prepared,
                                  options.units ? database.text_of(signal.unit) : "");
    }
    table.heading += zelk::logs::kLineEnd;
    state_->table_of[static_cast<std::size_t>(&message - first)] =
        static_cast<std::uint32_t>(state_->tables.size());
    state_->tables.push_back(std::move(table));
  };
  zelk::logs::for_each_shown(state_->plan, add);
}
ZelkWideDecoder::~ZelkWideDecoder() = default;

const std::vector<ZelkWideTable>& ZelkWideDecoder::Tables() const { return state_->tables; }

namespace {

void append_row(LineBuffer& out, const DecodedFrame& frame, bool raw) {
  out.append(frame.time);
  out.append(',');
  out.append(frame.interface_text);
  for (const PreparedSignal& signal : frame.message->signals) {
    out.append(',');
    const bool is_present = zelk::logs::is_present(frame, signal);
    const std::int64_t value = frame.raw[signal.index];
    if (is_present) append_value(out, signal, value, raw, zelk::NonFinite::kAsText);
    if (signal.descriptions.empty()) continue;
    out.append(',');
    if (is_present) out.append(signal.descriptions.find(value));
  }
  out.append(zelk::logs::kLineEnd);
}

}  // namespace

void ZelkWideDecoder::Decode(const ZelkFrameBlock& frames, ZelkWideRows& rows) const {
  ZelkWideRows::Content& content = *rows.content_;
  content.text.clear();
  content.rows.clear();
  const PreparedMessage* const first = state_->plan.messages().data();
  content.walk.walk(state_->plan, frames, [&](const DecodedFrame& frame, std::size_t) {
    append_row(content.text, frame, state_->plan.is_raw());
    const auto message = static_cast<std::size_t>(frame.message - first);
    content.rows.push_back({state_->table_of[message], content.text.size()});
  });
}
