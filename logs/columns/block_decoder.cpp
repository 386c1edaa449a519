#include "logs/columns/block_decoder.hpp"

#include <algorithm>
#include <numeric>

namespace zelk::logs {

namespace {

template <typename Value>
bool are_equal(std::span<const Value> values) {
  return std::equal(values.begin() + 1, values.end(), values.begin());
}

bool is_of_data(unsigned flags) { return (flags & (kZelkFrameRemote | kZelkFrameError)) == 0; }

/// Whether all frames have the same target, as in arrays of the frames of one message. Blocks of
/// other frames mostly differ in the first identifiers already.
bool are_alike(const ZelkFrameBlock& block) {
  return block.Size() > 0 && are_equal(block.Ids()) && are_equal(block.Flags()) &&
         are_equal(block.Channels());
}

}  // namespace

void FrameGroups::find(const ColumnPlan& plan, const ZelkFrameBlock& block,
                       std::optional<std::size_t> only) {
  tables_.clear();
  ends_.assign(plan.tables().size(), 0);
  routes_.clear();
  for (const std::string& name : block.ChannelNames())
    routes_.push_back(plan.finder().route_of(name));
  cache_.clear();
  unknown_ = {};
  counts_.Clear();
  const Search search{plan.finder(),    plan.targets(),  block.Ids(), block.Flags(),
                      block.Channels(), block.Lengths(), routes_,     only};
  if (!are_alike(block) || !take_alike(search)) {
    find_tables(search);
    sort_frames();
  }
  unknown_.give(counts_);
  counts_.decoded = block.Size() - counts_.unknown - counts_.remote - counts_.errors;
}

/// Takes all frames, of which the first one stands for all, when they are of a message.
bool FrameGroups::take_alike(const Search& search) {
  if (!is_of_data(search.flags.front())) return false;
  const std::uint32_t message = find_message(search, 0);
  if (message == kNoMessage) return false;
  const auto [table, length_bytes] = search.targets[message];
  std::size_t too_short = 0;
  for (const std::uint16_t length : search.lengths) too_short += length < length_bytes ? 1 : 0;
  counts_.too_short = too_short;
  if (table == kNoTable || !search.wants(table)) return true;
  tables_.push_back(table);
  frames_.resize(search.ids.size());
  std::iota(frames_.begin(), frames_.end(), std::uint32_t{0});
  ends_[table] = static_cast<std::uint32_t>(frames_.size());
  return true;
}

/// Finds the table of each frame, and counts the frames of each table.
void FrameGroups::find_tables(const Search& search) {
  table_of_.resize(search.ids.size());
  // What the loop writes, here so that it stays in registers.
  const std::span<std::uint32_t> table_of = table_of_;
  const std::span<std::uint32_t> counts = ends_;
  std::size_t too_short = 0;
  for (std::size_t i = 0; i < table_of.size(); ++i) {
    const FrameTarget target = find_target(search, i);
    too_short += search.lengths[i] < target.length_bytes ? 1 : 0;
    const std::uint32_t table = search.wants(target.table) ? target.table : kNoTable;
    table_of[i] = table;
    if (table != kNoTable && counts[table]++ == 0) tables_.push_back(table);
  }
  counts_.too_short = too_short;
}

/// Puts the frames of each table together.
void FrameGroups::sort_frames() {
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

/// What a frame is decoded to; frames that are not are counted.
inline FrameTarget FrameGroups::find_target(const Search& search, std::size_t frame) {
  constexpr FrameTarget kNone{kNoTable, 0};
  if (!counts_.AddKind(search.flags[frame])) return kNone;
  const std::uint32_t message = find_message(search, frame);
  if (message != kNoMessage) return search.targets[message];
  unknown_.add(search.ids[frame], counts_);
  return kNone;
}

inline std::uint32_t FrameGroups::find_message(const Search& search, std::size_t frame) {
  const std::size_t channel = search.channels[frame];
  const std::uint32_t route = channel < search.routes.size() ? search.routes[channel] : 0;
  return search.finder.find(route, search.ids[frame], cache_);
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
