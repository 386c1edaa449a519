#include <algorithm>
#include <stdexcept>
#include <string>
#include <utility>

#include "logs/columns/arrow_schema.hpp"
#include "logs/columns/state.hpp"

using zelk::logs::ColumnStore;

ColumnStore& ZelkColumnDecoder::State::prepared() {
  if (!rows) rows.emplace(std::make_shared<const zelk::logs::ColumnPlan>(chosen, options));
  return *rows;
}

ColumnStore& ZelkColumnDecoder::State::store() {
  if (!rows) throw std::logic_error("a column decoder is used before its tables are asked for");
  return *rows;
}

void ZelkColumnDecoder::State::check_is_open() const {
  if (rows) throw std::logic_error("a column decoder is changed after its tables were asked for");
}

ZelkColumnDecoder::ZelkColumnDecoder(ZelkColumnOptions options)
    : state_(std::make_unique<State>()) {
  state_->options = options;
}
ZelkColumnDecoder::~ZelkColumnDecoder() = default;

void ZelkColumnDecoder::AddDatabase(const ZelkDatabase& database, std::string_view name,
                                    std::string_view channel) {
  state_->check_is_open();
  state_->chosen.add_database(database, name, channel);
}

bool ZelkColumnDecoder::SelectMessages(std::string_view pattern) {
  state_->check_is_open();
  return state_->chosen.select_messages(pattern);
}

bool ZelkColumnDecoder::SelectSignals(std::string_view pattern) {
  state_->check_is_open();
  return state_->chosen.select_signals(pattern);
}

const std::vector<ZelkColumnTable>& ZelkColumnDecoder::Tables() {
  return state_->prepared().plan()->tables();
}

void ZelkColumnDecoder::Decode(const ZelkFrameBlock& frames, ZelkColumnRows& rows) const {
  const auto& plan = state_->store().plan();
  if (!rows.content_) rows.content_ = std::make_unique<ZelkColumnRows::Content>();
  ZelkColumnRows::Content& content = *rows.content_;
  if (content.plan != plan) {
    content.plan = plan;
    content.tables.clear();
    content.filled.clear();
  }
  for (const std::uint32_t table : content.filled) content.tables[table].clear();
  content.filled.clear();
  content.channels = {};
  content.decoder.decode(*plan, frames, content.channels.enter(frames.ChannelNames()),
                         content.tables);
  content.filled = content.decoder.tables();
}

void ZelkColumnDecoder::Put(ZelkColumnRows& rows) {
  ColumnStore& store = state_->store();
  if (!rows.content_) return;
  ZelkColumnRows::Content& content = *rows.content_;
  if (content.plan != store.plan())
    throw std::logic_error("rows are put into another column decoder than they come from");
  store.append(content.tables, content.filled, content.channels.texts());
  content.filled.clear();
}

void ZelkColumnDecoder::Decode(const ZelkFrameBlock& frames) { state_->prepared().decode(frames); }

std::size_t ZelkColumnDecoder::RowCount(std::size_t table) const {
  return state_->store().row_count(table);
}

void ZelkColumnDecoder::GetSchema(std::size_t table, ArrowSchema* out) const {
  zelk::logs::export_schema(state_->store().plan()->tables().at(table).columns, *out);
}

bool ZelkColumnDecoder::TakeBatch(std::size_t table, bool is_end, ArrowArray* out) {
  return state_->store().take_batch(table, is_end, *out);
}

const ZelkFrameCounts& ZelkColumnRows::Counts() const {
  static const ZelkFrameCounts kNone;
  return content_ ? content_->decoder.counts() : kNone;
}

ZelkColumnRows::ZelkColumnRows() = default;
ZelkColumnRows::ZelkColumnRows(ZelkColumnRows&&) noexcept = default;
ZelkColumnRows& ZelkColumnRows::operator=(ZelkColumnRows&&) noexcept = default;
ZelkColumnRows::~ZelkColumnRows() = default;
