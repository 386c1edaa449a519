#include "check/lint/reports.hpp"

#include <algorithm>
#include <utility>

namespace zelk::check {

bool Reports::is_before(const Kept& a, const Kept& b) {
  return std::pair(a.finding.span.begin, a.number) < std::pair(b.finding.span.begin, b.number);
}

/// Whether the finding may be kept.
bool Reports::count(const Rule& rule, Span span) {
  ++count_;
  const Severity severity = settings_.severity(rule);
  ++counts_[static_cast<std::size_t>(severity)];
  worst_ = std::max(worst_, severity);
  return kept_.size() < limit_ || span.begin < kept_.front().finding.span.begin;
}

void Reports::keep(Finding finding) {
  if (kept_.size() == limit_) {
    std::ranges::pop_heap(kept_, is_before);
    kept_.pop_back();
  }
  kept_.push_back({std::move(finding), count_});
  std::ranges::push_heap(kept_, is_before);
}

LintResult Reports::take() {
  std::ranges::sort_heap(kept_, is_before);
  LintResult result;
  result.counts = counts_;
  result.findings.count = count_;
  result.findings.worst = worst_;
  result.findings.list.reserve(kept_.size());
  for (Kept& kept : kept_) result.findings.list.push_back(std::move(kept.finding));
  return result;
}

}  // namespace zelk::check
