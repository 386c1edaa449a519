/// \file
/// Mends of values that their definitions or statements do not allow.

#ifndef ZELK_CHECK_REPAIR_VALUE_MENDS_HPP
#define ZELK_CHECK_REPAIR_VALUE_MENDS_HPP

#include <set>
#include <string>
#include <utility>

#include "check/repair/mender.hpp"
#include "check/statements/fault.hpp"

namespace zelk::check {

/// A text that is no item of an ENUM becomes its last item: so no value is lost, and the indexes of
/// the others stay. A text that is meant for a number becomes that number. What has no meaning is
/// dropped, and numbers beyond what a statement allows come within it.
class ValueMends {
 public:
  explicit ValueMends(Mender& mender) : mender_(mender) {}

  /// @param fault  of kind `kWrongValue`
  void mend(const Fault& fault);

 private:
  void mend_attribute(const Fault& fault);
  void add_item(const Fault& fault, std::uint32_t index);
  void replace(const Fault& fault, const std::string& value);

  Mender& mender_;
  std::set<std::pair<std::uint32_t, std::string>> items_;  ///< added ones, with their definitions
};

}  // namespace zelk::check

#endif
