#include "monitor/screen/details.hpp"

#include <fmt/format.h>

#include <algorithm>

#include "term/text.hpp"

namespace zelk::tool {

namespace {

constexpr std::size_t kIndent = 4;
constexpr std::size_t kMostNameColumns = 32;
constexpr std::size_t kValueColumns = 14;

std::string flag_words(const RowState& row) {
  std::string words;
  const auto add = [&](std::uint16_t flag, const char* word) {
    if (row.flags & flag) words += word;
  };
  add(kZelkFrameFd, " FD");
  add(kZelkFrameBrs, " BRS");
  add(kZelkFrameEsi, " ESI");
  add(kZelkFrameRemote, " remote");
  add(kZelkFrameSent, " sent");
  return words;
}

}  // namespace

RowDetails::RowDetails(const RowState& row, const TablePlan& plan, std::size_t columns)
    : row_(row), bytes_in_line_(std::clamp<std::size_t>(columns / 3, 4, 18) - 2), data_lines_(0) {
  if (plan.cuts_data(row)) data_lines_ = (row.data.size() + bytes_in_line_ - 1) / bytes_in_line_;
  std::size_t longest = 8;
  for (const SignalState& signal : row.signals) longest = std::max(longest, signal.name.size());
  name_columns_ = std::min({longest, kMostNameColumns, std::max<std::size_t>(columns / 2, 8)});
}

std::optional<std::size_t> RowDetails::signal_at(std::size_t line) const {
  if (line < 1 + data_lines_ || line >= line_count()) return std::nullopt;
  return line - 1 - data_lines_;
}

void RowDetails::write(std::size_t line, std::int64_t now, const CharacterSet& characters,
                       LineWriter& out) const {
  out.skip_to(kIndent);
  if (line == 0) return write_figures(characters, out);
  if (const auto index = signal_at(line)) return write_signal(row_.signals[*index], now, out);
  const std::size_t begin = (line - 1) * bytes_in_line_;
  write_bytes(row_, begin, std::min(begin + bytes_in_line_, row_.data.size()), now, false, out);
}

/// What narrow tables have no column for stands here too.
void RowDetails::write_figures(const CharacterSet& characters, LineWriter& out) const {
  if (row_.count == 0) {
    out.add(fmt::format("never received, expected every {} ms", milliseconds_text(row_.nominal_ms)),
            Role::kAlert);
    return;
  }
  std::string text = counted(row_.data.size(), "byte") + flag_words(row_);
  text += ", " + counted(row_.count, "frame");
  if (row_.cycle_ms > 0) {
    text += fmt::format(", every {} {} {} ms", milliseconds_text(row_.cycle_ms),
                        characters.sign("±", "+-"), milliseconds_text(row_.deviation_ms));
  }
  if (row_.nominal_ms > 0)
    text += fmt::format(", nominal {} ms", milliseconds_text(row_.nominal_ms));
  if (!row_.channel.empty()) text += ", on " + row_.channel;
  out.add(text, Role::kFaint);
}

void RowDetails::write_signal(const SignalState& signal, std::int64_t now, LineWriter& out) const {
  out.add_left(signal.name, name_columns_, Role::kPlain);
  out.add(" ");
  if (!signal.is_present) return out.add_right("-", kValueColumns, Role::kFaint);
  const Role role = role_of_change(signal.changed_at, now, Role::kPlain);
  // A number that is cut would look like another one.
  out.add_right(signal.spelled, std::max(kValueColumns, signal.spelled.size()), role);
  out.add(" ");
  if (!signal.unit.empty()) out.add(signal.unit + ' ', Role::kPlain);
  if (!signal.text.empty()) out.add('"' + signal.text + '"', Role::kText);
}

}  // namespace zelk::tool
