#include "logs/columns/block_decoder.hpp"

#include <algorithm>

namespace zelk::logs {

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
  unknown_ = {};
  counts_.Clear();
  table_of_.resize(block.Size());
  std::size_t too_short = 0;
  for (std::size_t i = 0; i < table_of_.size(); ++i) {
    FrameTarget target = find_target(plan, block, i);
    too_short += block.Lengths()[i] < target.length_bytes ? 1 : 0;
    if (only && target.table != *only) target.table = kNoTable;
    table_of_[i] = target.table;
    if (target.table != kNoTable && ends_[target.table]++ == 0) tables_.push_back(target.table);
  }
  unknown_.give(counts_);
  counts_.too_short = too_short;
  counts_.decoded = block.Size() - counts_.unknown - counts_.remote - counts_.errors;
}

/// What a frame is decoded to; frames that are not are counted.
inline FrameTarget FrameGroups::find_target(const ColumnPlan& plan, const ZelkFrameBlock& block,
                                            std::size_t frame) {
  constexpr FrameTarget kNone{kNoTable, 0};
  const std::uint32_t id = block.Ids()[frame];
  if (!counts_.AddKind(block.Flags()[frame])) return kNone;
  const std::size_t channel = block.Channels()[frame];
  const std::uint32_t route = channel < routes_.size() ? routes_[channel] : 0;
  const std::uint32_t message = plan.finder().find(route, id, cache_);
  if (message != kNoMessage) return plan.targets()[message];
  unknown_.add(id, counts_);
  return kNone;
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
