#include "check/faults/find_faults.hpp"

#include <algorithm>

#include "check/faults/analysis.hpp"

namespace zelk::check {

std::vector<Fault> find_faults(const Document& document, const Names& names) {
  std::vector<Fault> faults = document.faults;
  const Analysis analysis{document, names, faults};
  find_order_faults(analysis);
  find_reference_faults(analysis);
  find_attribute_faults(analysis);
  find_value_faults(analysis);
  find_signal_faults(analysis);
  std::ranges::stable_sort(faults, {}, &Fault::token);
  return faults;
}

}  // namespace zelk::check
