/// \file
/// Mends of what is missing, surplus or misspelled in the forms of statements.

#ifndef ZELK_CHECK_REPAIR_FORM_MENDS_HPP
#define ZELK_CHECK_REPAIR_FORM_MENDS_HPP

#include <cstdint>
#include <span>
#include <unordered_set>

#include "check/repair/mender.hpp"
#include "check/statements/fault.hpp"

namespace zelk::check {

/// Mends the faults from `kNoFinalLineFeed` to `kCommentObject`, but for names, unreadable
/// statements and stray text.
class FormMends {
 public:
  /// @param faults  all of the text
  FormMends(Mender& mender, std::span<const Fault> faults);

  /// Leaves faults of other kinds alone.
  void mend(const Fault& fault);

 private:
  void mend_open_text(const Fault& fault);
  void mend_missing(const Fault& fault);
  void mend_surplus(const Fault& fault);
  bool is_rest_of_text(const Fault& fault) const;
  void escape_quotes(const Fault& fault);

  Mender& mender_;
  /// Texts without a second quote within what is surplus. They may be nothing but a quote, the
  /// second one of a text that lacks its first or has others within it.
  std::unordered_set<std::uint32_t> surplus_texts_;
  /// First tokens of what stands in front of a text that is missing at its place.
  std::unordered_set<std::uint32_t> late_texts_;
  std::unordered_set<std::uint32_t> beginnings_;  ///< tokens in front of which a first quote lacks
};

}  // namespace zelk::check

#endif
