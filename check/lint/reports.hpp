/// \file
/// Collects the findings of rules.

#ifndef ZELK_CHECK_LINT_REPORTS_HPP
#define ZELK_CHECK_LINT_REPORTS_HPP

#include <cstddef>
#include <cstdint>
#include <vector>

#include "check/lint/lint.hpp"

namespace zelk::check {

/// Keeps the first findings of a text, by their places, and counts all. Rules find them in any
/// order, and there may be a million: the words of a finding are only made when it is kept.
class Reports {
 public:
  Reports(const LintSettings& settings, std::uint64_t limit)
      : settings_(settings), limit_(limit > 0 ? limit : UINT64_MAX) {}

  bool is_on(const Rule& rule) const { return settings_.is_on(rule); }
  double parameter(const Rule& rule) const { return settings_.parameter(rule); }

  /// @param fill  gets a `Finding&` that lacks its texts
  template <typename Fill>
  void add(const Rule& rule, Span span, const Fill& fill) {
    if (!settings_.is_on(rule) || !count(rule, span)) return;
    Finding finding{settings_.severity(rule), rule.name, span, {}};
    fill(finding);
    keep(std::move(finding));
  }

  LintResult take();

 private:
  struct Kept {
    Finding finding;
    std::uint64_t number;  ///< findings of one place stay in the order in which they were found
  };
  static bool is_before(const Kept& a, const Kept& b);

  bool count(const Rule& rule, Span span);
  void keep(Finding finding);

  const LintSettings& settings_;
  const std::uint64_t limit_;
  std::vector<Kept> kept_;  ///< a heap with the last one of the text on top
  std::array<std::uint64_t, 3> counts_{};
  std::uint64_t count_ = 0;
  Severity worst_ = Severity::kNote;
};

}  // namespace zelk::check

#endif
