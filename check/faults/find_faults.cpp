#include "check/faults/find_faults.hpp"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <future>
#include <utility>

#include "check/faults/analysis.hpp"

namespace zelk::check {

namespace {

constexpr std::size_t kLong = 50'000;  // statements for which a second thread is worth its start

}  // namespace

std::vector<Fault> find_faults(const Document& document, const Names& names) {
  names.node({});  // makes the table that both threads look into
  std::atomic<std::size_t> next = 0;
  const auto find_references = [&] {
    std::vector<Fault> found;
    find_reference_faults({document, names, found}, next);
    return found;
  };
  // References take most of the time. For few of them, or where there is no second thread, all is
  // done in this one.
  const bool is_long = document.statements.size() > kLong;
  const auto policy = is_long ? std::launch::async | std::launch::deferred : std::launch::deferred;
  auto others = std::async(policy, find_references);
  std::vector<Fault> faults = document.faults;
  find_order_faults({document, names, faults});
  std::vector<Fault> last;
  const Analysis analysis{document, names, last};
  find_attribute_faults(analysis);
  find_value_faults(analysis);
  find_signal_faults(analysis);
  for (const auto& more : {find_references(), others.get(), std::move(last)})
    faults.insert(faults.end(), more.begin(), more.end());
  std::ranges::stable_sort(faults, {}, &Fault::token);
  return faults;
}

}  // namespace zelk::check
