#include "check/findings/finding.hpp"

#include <algorithm>
#include <utility>

namespace zelk::check {

std::string_view name_of(Severity severity) {
  if (severity == Severity::kError) return "error";
  return severity == Severity::kWarning ? "warning" : "note";
}

std::optional<Severity> severity_named(std::string_view name) {
  for (const Severity severity : {Severity::kNote, Severity::kWarning, Severity::kError})
    if (name == name_of(severity)) return severity;
  return std::nullopt;
}

void Findings::add(Finding finding, std::uint64_t limit) {
  ++count;
  worst = std::max(worst, finding.severity);
  if (limit == 0 || list.size() < limit) list.push_back(std::move(finding));
}

}  // namespace zelk::check
