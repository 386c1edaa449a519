#include "check/includes/mend.hpp"

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

#include "check/includes/includes.hpp"
#include "check/statements/fault.hpp"

namespace zelk::check {

namespace {

/// Adds findings to others, in the order of their places.
void merge(Findings& into, Findings from) {
  const auto middle = static_cast<std::ptrdiff_t>(into.list.size());
  std::ranges::move(from.list, std::back_inserter(into.list));
  const auto by_place = [](const Finding& a, const Finding& b) {
    return a.span.begin < b.span.begin;
  };
  std::inplace_merge(into.list.begin(), into.list.begin() + middle, into.list.end(), by_place);
  into.count += from.count;
}

/// A named file is missing.
Mended unmendable(Included included) {
  std::vector<Finding>& list = included.findings.list;
  std::erase_if(list, [](const Finding& f) { return f.severity != Severity::kError; });
  included.findings.count = list.size();
  return {Outcome::kUnmendable, std::move(included.source), {}, {}, std::move(included.findings)};
}

Mended mend_with_includes(Source source, const MendOptions& options) {
  Included included = include_files(std::move(source), options.include_folder);
  if (!included.is_whole()) return unmendable(std::move(included));
  Mended mended = repair(std::move(included.source), options);
  if (mended.outcome == Outcome::kUnneeded && included.count > 0) mended.outcome = Outcome::kMended;
  merge(mended.mends, std::move(included.findings));
  return mended;
}

}  // namespace

MendedFile mend(Source source, const MendOptions& options) {
  if (options.kept.contains(kIncludeRule)) return {repair(std::move(source), options)};
  if (!options.include_folder.empty()) return {mend_with_includes(std::move(source), options)};
  Findings notes = find_includes(source);
  return {repair(std::move(source), options), std::move(notes)};
}

std::vector<std::string_view> mend_names() {
  std::vector<std::string_view> names = {kIncludeRule};
  const auto name = [](unsigned number) { return name_of(static_cast<FaultKind>(number)); };
  for (unsigned number = 0; !name(number).empty(); ++number) names.push_back(name(number));
  std::ranges::sort(names);
  return names;
}

}  // namespace zelk::check
