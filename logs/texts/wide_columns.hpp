/// \file
/// The columns of wide tables.

#ifndef ZELK_LOGS_TEXTS_WIDE_COLUMNS_HPP
#define ZELK_LOGS_TEXTS_WIDE_COLUMNS_HPP

#include <string>

#include "logs/texts/text_plan.hpp"
#include "zelk/logs/wide.hpp"

struct ZelkWideChoice::State {
  zelk::logs::Choosing chosen;
};

namespace zelk::logs {

inline constexpr std::string_view kLineEnd = "\r\n";

/// Cells of a signal: its value, and its description where it has any.
inline std::size_t cell_count(const PreparedSignal& signal) {
  return signal.descriptions.empty() ? 1 : 2;
}

/// Appends the headings of a signal, each with a comma in front.
void append_headings(std::string& line, const std::string& name, const PreparedSignal& signal,
                     const std::string& unit);

ZelkTextOptions text_options(const ZelkWideOptions& options);

/// Calls `visit(database, message)` for each message that is shown.
template <typename Visit>
void for_each_shown(const TextPlan& plan, const Visit& visit) {
  auto message = plan.messages().begin();
  for (const NamedDatabase& database : plan.databases()) {
    const std::size_t count = each<const msgblk>(database.content.records.messages).size();
    for (std::size_t i = 0; i < count; ++i, ++message)
      if (message->is_shown) visit(database, *message);
  }
}

}  // namespace zelk::logs

#endif
