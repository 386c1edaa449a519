/// \file
/// The choice of messages and signals by name.

#ifndef ZELK_BASE_NAME_FILTER_HPP
#define ZELK_BASE_NAME_FILTER_HPP

#include <string>
#include <string_view>
#include <vector>

namespace zelk {

/// Patterns of names; an empty list leaves everything in.
struct NameFilter {
  std::vector<std::string> messages{};
  std::vector<std::string> signals{};  ///< of a signal, or of "Message.Signal"

  /// Whether anything is left out.
  bool is_choice() const { return !messages.empty() || !signals.empty(); }
  /// @param name  in UTF-8, as all
  bool takes_message(std::string_view name) const;
  /// @param owner  name of the signal's message
  bool takes_signal(std::string_view name, std::string_view owner) const;
};

}  // namespace zelk

#endif
