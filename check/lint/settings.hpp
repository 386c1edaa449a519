/// \file
/// Which rules of lint are on, how severe each one is, and their parameters.

#ifndef ZELK_CHECK_LINT_SETTINGS_HPP
#define ZELK_CHECK_LINT_SETTINGS_HPP

#include <optional>
#include <unordered_map>

#include "check/lint/rule.hpp"

namespace zelk::check {

/// At first all rules are on, as they describe themselves.
class LintSettings {
 public:
  void set_on(const Rule& rule, bool is_on) { of(rule).is_on = is_on; }
  void set_severity(const Rule& rule, Severity severity) { of(rule).severity = severity; }
  /// @param value  between the parameter's least and most ones
  void set_parameter(const Rule& rule, double value) { of(rule).parameter = value; }

  bool is_on(const Rule& rule) const { return at(rule).is_on; }
  Severity severity(const Rule& rule) const { return at(rule).severity.value_or(rule.severity); }
  double parameter(const Rule& rule) const {
    return at(rule).parameter.value_or(rule.parameter.value);
  }

 private:
  struct State {
    bool is_on = true;
    std::optional<Severity> severity{};
    std::optional<double> parameter{};
  };

  State& of(const Rule& rule) { return states_[&rule]; }
  State at(const Rule& rule) const {
    const auto found = states_.find(&rule);
    return found == states_.end() ? State{} : found->second;
  }

  std::unordered_map<const Rule*, State> states_;
};

}  // namespace zelk::check

#endif
