#include "logs/columns/block_decoder.hpp"

#include <algorithm>

namespace zelk::logs {

namespace {

/// Frames that hold no signals.
constexpr std::uint16_t kNoData = kZelkFrameRemote | kZelkFrameError;

}  // namespace

void FrameGroups::find(const ColumnPlan& plan, const ZelkFrameBlock& block,
                       std::optional<std::size_t> only) {
  tables_.clear();
  ends_.assign(plan.tables().size(), 0);
  find_tables(plan, block, only);
  std::uint32_t end = 0;
  for (const std::uint32_t table : tables_) {
    const std::uint32_t count = ends_[table];
    ends_[table] = end;
    end += count;
  }
  frames_.resize(end);
  for (std::uint32_t i = 0; i < table_of_.size(); ++i)
    if (table_of_[i] != kNoTable) frames_[ends_[table_of_[i]]++] = i;
}

/// Finds the table of each frame, and counts the frames of each table.
void FrameGroups::find_tables(const ColumnPlan& plan, const ZelkFrameBlock& block,
                              std::optional<std::size_t> only) {
  routes_.clear();
  for (const std::string& name : block.ChannelNames())
    routes_.push_back(plan.finder().route_of(name));
  cache_.clear();
  table_of_.resize(block.Size());
  const auto ids = block.Ids();
  const auto flags = block.Flags();
  const auto channels = block.Channels();
  for (std::size_t i = 0; i < table_of_.size(); ++i) {
    std::uint32_t table = kNoTable;
    const std::uint32_t route = channels[i] < routes_.size() ? routes_[channels[i]] : 0;
    if ((flags[i] & kNoData) == 0) table = plan.finder().find(route, ids[i], cache_);
    if (only && table != *only) table = kNoTable;
    table_of_[i] = table;
    if (table != kNoTable && ends_[table]++ == 0) tables_.push_back(table);
  }
}

std::vector<std::int32_t> ChannelTexts::enter(std::span<const std::string> names) {
  std::vector<std::int32_t> indices;
  indices.reserve(names.size());
  for (const std::string& name : names)
    indices.push_back(name.empty() ? kNoText : texts_.enter(to_utf8(name, encoding_of(name))));
  return indices;
}

void BlockDecoder::decode(const ColumnPlan& plan, const ZelkFrameBlock& block,
                          std::span<const std::int32_t> channels, std::vector<TableRows>& rows,
                          std::optional<std::size_t> only) {
  groups_.find(plan, block, only);
  rows.resize(plan.tables().size());
  const std::vector<std::uint32_t>& tables = groups_.tables();
  for (std::size_t i = 0; i < tables.size(); ++i) {
    const TablePlan& table_plan = plan.table_plans()[tables[i]];
    TableRows& table = rows[tables[i]];
    if (table.columns().empty()) table = TableRows(table_plan);
    table.reserve(groups_.frames(i).size(), plan.options().batch_rows);
    decoder_.prepare(table_plan);
  }
  for (std::size_t i = 0; i < tables.size(); ++i) {
    decoder_.decode(plan.table_plans()[tables[i]], block, groups_.frames(i), channels,
                    rows[tables[i]]);
  }
}

}  // namespace zelk::logs
