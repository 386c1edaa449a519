#include "check/includes/mend.hpp"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "check/includes/includes.hpp"
#include "check/repair/decoding.hpp"
#include "check/statements/document.hpp"
#include "check/statements/fault.hpp"

namespace zelk::check {

namespace {

/// A log or a letter could be mended too: nothing would be left of it.
bool is_database(const Source& source) {
  if (source.text().find("BO_") != std::string_view::npos) return true;
  const Document document = read_document(source);
  return document.tokens.empty() ||
         std::ranges::any_of(document.statements, &Statement::is_readable);
}

/// The mends of each round stand together.
MendedFile sorted(MendedFile mended) {
  const auto by_place = [](const Finding& a, const Finding& b) {
    return a.span.begin < b.span.begin;
  };
  auto& mends = mended.mends.list;
  if (!std::ranges::is_sorted(mends, by_place)) std::ranges::stable_sort(mends, by_place);
  return mended;
}

/// A named file is missing.
Mended unmendable(Included included) {
  Mended mended = {Outcome::kUnmendable, std::move(included.source)};
  for (Finding& finding : included.findings.list)
    if (finding.severity == Severity::kError) mended.faults.add(std::move(finding));
  return mended;
}

Mended mend_with_includes(Source source, const MendOptions& options) {
  Included included = include_files(std::move(source), options.include_folder);
  if (!included.is_whole()) return unmendable(std::move(included));
  Mended mended = repair(std::move(included.source), options);
  if (mended.outcome == Outcome::kUnneeded && included.count > 0) mended.outcome = Outcome::kMended;
  for (Finding& finding : included.findings.list) mended.mends.add(std::move(finding));
  return mended;
}

MendedFile mend_text(Source source, const MendOptions& options) {
  if (!is_database(source)) {
    MendedFile refused = {{Outcome::kUnmendable, std::move(source)}};
    refused.faults.add(
        {.rule = name_of(FaultKind::kStray), .message = "the file has no statement of a database"});
    return refused;
  }
  if (options.kept.contains(kIncludeRule)) return sorted({repair(std::move(source), options)});
  if (!options.include_folder.empty())
    return sorted({mend_with_includes(std::move(source), options)});
  Findings notes = find_includes(source);
  return sorted({repair(std::move(source), options), std::move(notes)});
}

}  // namespace

// A text is decoded first, so that the comments in it are seen, which name files.
MendedFile mend(Source source, const MendOptions& options) {
  const std::string_view name = name_of(FaultKind::kUtf16);
  auto decoded = options.kept.contains(name) ? std::nullopt : decoded_utf16(source.text());
  if (!decoded) return mend_text(std::move(source), options);
  MendedFile mended = mend_text(Source(source.path(), *std::move(decoded)), options);
  auto& mends = mended.mends;
  mends.list.insert(mends.list.begin(), {Severity::kNote, name, {}, std::string(kDecodedUtf16)});
  ++mends.count;
  if (mended.outcome == Outcome::kUnneeded) mended.outcome = Outcome::kMended;
  return mended;
}

std::vector<std::string_view> mend_names() {
  std::vector<std::string_view> names = {kIncludeRule};
  const auto name = [](unsigned number) { return name_of(static_cast<FaultKind>(number)); };
  for (unsigned number = 0; !name(number).empty(); ++number) names.push_back(name(number));
  std::ranges::sort(names);
  return names;
}

}  // namespace zelk::check
