#include "check/findings/finding.hpp"

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

}  // namespace zelk::check
