#include "check/includes/mend.hpp"

#include <algorithm>
#include <iterator>
#include <utility>

#include "check/includes/includes.hpp"

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

Mended mend_with_includes(Source source, const MendOptions& options) {
  Included included = include_files(std::move(source), options.include_folder);
  if (!included.is_whole()) {
    std::erase_if(included.findings.list,
                  [](const Finding& finding) { return finding.severity != Severity::kError; });
    included.findings.count = included.findings.list.size();
    return {Outcome::kUnmendable, std::move(included.source), {}, {}, std::move(included.findings)};
  }
  Mended mended = repair(std::move(included.source), options);
  if (mended.outcome == Outcome::kUnneeded && included.count > 0) {
    mended.outcome = Outcome::kMended;
    mended.text = mended.source.text();
  }
  merge(mended.mends, std::move(included.findings));
  return mended;
}

}  // namespace

Mended mend(Source source, const MendOptions& options) {
  if (options.kept.contains(kIncludeRule)) return repair(std::move(source), options);
  if (!options.include_folder.empty()) return mend_with_includes(std::move(source), options);
  Findings notes = find_includes(source);
  Mended mended = repair(std::move(source), options);
  merge(mended.mends, std::move(notes));
  return mended;
}

}  // namespace zelk::check
