/// \file
/// The choice of messages and signals by name.

#ifndef ZELK_LOGS_LOOKUP_CHOOSING_HPP
#define ZELK_LOGS_LOOKUP_CHOOSING_HPP

#include <string_view>
#include <vector>

#include "base/name_filter.hpp"
#include "logs/lookup/named_database.hpp"

namespace zelk::logs {

/// What is decoded, while it is being chosen.
struct Choosing {
  void add_database(const ZelkDatabase& database, std::string_view name, std::string_view channel);
  /// @return whether a message, or a signal, of the databases added so far matches
  bool select_messages(std::string_view pattern);
  bool select_signals(std::string_view pattern);

  std::vector<NamedDatabase> databases{};
  NameFilter choice{};
};

}  // namespace zelk::logs

#endif
