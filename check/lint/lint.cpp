#include "check/lint/lint.hpp"

#include <algorithm>

#include "check/lint/context.hpp"

namespace zelk::check {

namespace {

const RuleGroup* const kGroups[] = {&kIdentifierRules,   &kLayoutRules, &kOverlapRules,
                                    &kMultiplexingRules, &kRangeRules,  &kDescriptionRules,
                                    &kAttributeRules,    &kNodeRules,   &kJ1939Rules,
                                    &kNameRules,         &kTextRules};

std::vector<const Rule*> collect_rules() {
  std::vector<const Rule*> all;
  for (const RuleGroup* const group : kGroups)
    all.insert(all.end(), group->rules.begin(), group->rules.end());
  return all;
}

}  // namespace

std::span<const Rule* const> all_rules() {
  static const std::vector<const Rule*> rules = collect_rules();
  return rules;
}

const Rule* find_rule(std::string_view name) {
  const auto found = std::ranges::find(all_rules(), name, &Rule::name);
  return found == all_rules().end() ? nullptr : *found;
}

LintResult lint(const Document& document, const Names& names, const RecordsView& records,
                const LintSettings& settings, std::uint64_t limit) {
  Reports reports(settings, limit);
  const Places places(document, names, records);
  const KnownAttributes attributes(records);
  const LintContext context{document, records, names, places, attributes, reports};
  std::vector<const RuleGroup*> wanted;
  std::ranges::copy_if(kGroups, std::back_inserter(wanted), [&](const RuleGroup* group) {
    return std::ranges::any_of(group->rules,
                               [&](const Rule* rule) { return reports.is_on(*rule); });
  });
  for (const PlacedMessage& message : places.messages()) {
    for (const RuleGroup* const group : wanted)
      if (group->check_message) group->check_message(context, message);
  }
  for (const RuleGroup* const group : wanted)
    if (group->check_database) group->check_database(context);
  return reports.take();
}

}  // namespace zelk::check
