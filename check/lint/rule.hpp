/// \file
/// The rules of lint: what each one looks for, and why.

#ifndef ZELK_CHECK_LINT_RULE_HPP
#define ZELK_CHECK_LINT_RULE_HPP

#include <span>
#include <string_view>

#include "check/findings/finding.hpp"

namespace zelk::check {

/// A number that users can set for a rule.
struct Parameter {
  std::string_view name{};  ///< empty when the rule has none
  double value = 0;         ///< when nothing else is set
  double least = 0;
  double most = 0;
  std::string_view summary{};
};

/// All texts are whole sentences in English; those that describe may have several lines.
struct Rule {
  std::string_view name;     ///< "overlapping-signals"
  Severity severity;         ///< unless users set another one
  std::string_view summary;  ///< what it finds, in a line, as a sentence without its full stop
  std::string_view reason;   ///< what is wrong with that, and why it matters
  std::string_view example;  ///< lines of a file that it finds
  std::string_view advice;   ///< what to do
  Parameter parameter{};
};

/// All rules, by subject.
std::span<const Rule* const> all_rules();

/// The rule of this name; null when there is none.
const Rule* find_rule(std::string_view name);

/// The explanation of a rule, in lines of at most 80 characters, the last one with a line feed:
/// all that `Rule` says of it.
std::string explanation_of(const Rule& rule);

}  // namespace zelk::check

#endif
