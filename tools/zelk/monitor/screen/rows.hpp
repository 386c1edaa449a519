/// \file
/// The rows that are shown, in their order.

#ifndef ZELK_TOOL_MONITOR_SCREEN_ROWS_HPP
#define ZELK_TOOL_MONITOR_SCREEN_ROWS_HPP

#include <cstddef>
#include <deque>
#include <string>
#include <unordered_map>
#include <vector>

#include "monitor/screen/columns.hpp"

namespace zelk::tool {

/// Which rows are wanted, and in which order.
struct RowChoice {
  Column order = Column::kId;
  bool is_reversed = false;
  /// Words, all of which a row has: in its name, page, identifier, channel or the name of a signal,
  /// in capitals or not. "*" stands for any characters and "?" for one.
  std::string filter{};
  bool hides_unknown = false;
  bool only_missing = false;
};

/// A row, and what is shown of it: the same, or what it was when the rows were frozen.
struct ShownRow {
  const RowState* key;
  const RowState* state;
};

class RowList {
 public:
  /// @param rows  stay where they are and outlive the object
  void update(const std::deque<RowState>& rows, std::int64_t now);
  /// Keeps the rows as they are now, or goes on with those that there are.
  void freeze(bool is_wanted);
  bool is_frozen() const { return is_frozen_; }

  std::vector<ShownRow> choose(const RowChoice& choice);
  /// All rows, with the time at which they were so.
  const std::vector<ShownRow>& all() const { return is_frozen() ? frozen_rows_ : rows_; }
  std::int64_t now() const { return is_frozen() ? frozen_now_ : now_; }
  CellWidths widths(const std::vector<ShownRow>& rows, const CharacterSet& characters) const;

 private:
  void note_channel(const std::string& channel);
  const std::string& words_of(const RowState& row);

  std::vector<ShownRow> rows_;
  std::int64_t now_ = 0;
  bool is_frozen_ = false;
  std::deque<RowState> frozen_;
  std::vector<ShownRow> frozen_rows_;
  std::int64_t frozen_now_ = 0;
  std::string first_channel_;
  std::size_t channel_columns_ = 0;
  struct Words {
    std::string text{};
    bool are_all = false;
  };
  std::unordered_map<const RowState*, Words> words_;  // in which filters search
};

}  // namespace zelk::tool

#endif
