/// \file
/// What may have been meant instead of something unknown.

#ifndef ZELK_CHECK_FAULTS_SUGGESTIONS_HPP
#define ZELK_CHECK_FAULTS_SUGGESTIONS_HPP

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/seeded_hash.hpp"
#include "check/statements/document.hpp"
#include "check/statements/names.hpp"

namespace zelk::check {

/// Compares with all that a document introduces, as long as a bounded number of comparisons lasts:
/// the time for a million unknown names is linear, too.
class Suggestions {
 public:
  /// @param document, names  must outlive the object
  Suggestions(const Document& document, const Names& names) : document_(document), names_(names) {}

  /// For a fault with a reference to something unknown: "did you mean X?", or where it is; empty
  /// when there is nothing near.
  std::string for_reference(const Fault& fault);

  /// The keyword for which the first token of a stray text may be meant; likewise.
  std::string for_keyword(std::string_view name) const;

  /// An item of the ENUM that a statement defines; likewise.
  std::string for_item(std::uint32_t definition, std::string_view text);

 private:
  std::string for_message(const Fault& fault, std::string_view id);
  std::string for_signal(const Fault& fault, std::string_view name);
  std::string nearest(std::string_view typed, const std::vector<std::string_view>& names);
  const std::vector<std::string_view>& names_with(Role role);
  std::uint32_t message_of_signal(std::string_view name);
  std::string message_words(std::uint32_t message) const;

  const Document& document_;
  const Names& names_;
  std::size_t comparisons_left_ = 200'000;
  std::unordered_map<int, std::vector<std::string_view>> by_role_;
  bool has_signals_ = false;  ///< whether those of the document have been put into `signals_`
  /// By the name of a signal, its message; `kNoStatement` when messages share the name.
  std::unordered_map<std::string_view, std::uint32_t, SeededHash> signals_;
};

}  // namespace zelk::check

#endif
