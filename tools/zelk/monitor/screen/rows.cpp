#include "monitor/screen/rows.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>

#include "base/frame_id.hpp"
#include "base/wildcards.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

/// Small-lettered words of a filter, each as a pattern.
std::vector<std::string> patterns_of(std::string_view filter) {
  std::vector<std::string> patterns;
  const std::string text = lowered(filter);
  for (std::size_t at = text.find_first_not_of(' '); at != std::string::npos;) {
    const std::size_t end = std::min(text.find(' ', at), text.size());
    patterns.push_back('*' + text.substr(at, end - at) + '*');
    at = text.find_first_not_of(' ', end);
  }
  return patterns;
}

bool has(const std::string& words, const std::string& pattern) {
  const std::string_view inner = std::string_view(pattern).substr(1, pattern.size() - 2);
  if (inner.find_first_of("*?") == std::string_view::npos)
    return words.find(inner) != std::string::npos;
  return matches_wildcards(pattern, words);
}

}  // namespace

void RowList::update(const std::deque<RowState>& rows, std::int64_t now) {
  now_ = now;
  for (std::size_t i = rows_.size(); i < rows.size(); ++i) rows_.push_back({&rows[i], &rows[i]});
  // A row that was there before its first frame has its channel only now.
  for (const ShownRow& row : rows_) note_channel(row.state->channel);
}

/// A column of channels is worth its place from the second one on.
void RowList::note_channel(const std::string& channel) {
  if (channel.empty() || channel == first_channel_) return;
  if (first_channel_.empty()) {
    first_channel_ = channel;
    return;
  }
  channel_columns_ = std::max({channel_columns_, channel.size(), first_channel_.size()});
}

void RowList::freeze(bool is_wanted) {
  is_frozen_ = is_wanted;
  frozen_.clear();
  frozen_rows_.clear();
  if (!is_wanted) return;
  for (const ShownRow& row : rows_) {
    frozen_.push_back(*row.state);
    frozen_rows_.push_back({row.key, &frozen_.back()});
  }
  frozen_now_ = now_;
}

const std::string& RowList::words_of(const RowState& row) {
  auto& [words, are_all] = words_[&row];
  if (are_all) return words;
  are_all = row.count > 0;  // the first frame brings the page, the channel and the signals
  words = fmt::format("{}\n{}\n0x{:0{}X}\n{}", row.name, row.page, bare_id(row.id),
                      id_digits(row.id), row.channel);
  if (row.message == nullptr) words += "\n(unknown)";
  for (const SignalState& signal : row.signals) words += '\n' + signal.name;
  words = lowered(words);
  return words;
}

std::vector<ShownRow> RowList::choose(const RowChoice& choice) {
  const std::vector<std::string> patterns = patterns_of(choice.filter);
  std::vector<ShownRow> chosen;
  for (const ShownRow& row : all()) {
    if (choice.hides_unknown && row.state->message == nullptr) continue;
    if (choice.only_missing && !row.state->is_missing) continue;
    const auto matches = [&](const std::string& pattern) {
      return has(words_of(*row.key), pattern);
    };
    if (patterns.empty() || std::ranges::all_of(patterns, matches)) chosen.push_back(row);
  }
  std::ranges::stable_sort(chosen, [&choice](const ShownRow& a, const ShownRow& b) {
    return goes_before(*a.state, *b.state, choice.order, choice.is_reversed);
  });
  return chosen;
}

CellWidths RowList::widths(const std::vector<ShownRow>& rows,
                           const CharacterSet& characters) const {
  CellWidths widths;
  widths.channel = channel_columns_ == 0 ? 0 : std::max<std::size_t>(channel_columns_, 7);
  for (const ShownRow& row : rows) widths.take(*row.state, characters);
  return widths;
}

}  // namespace zelk::tool
