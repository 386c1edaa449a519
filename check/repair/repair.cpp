#include "check/repair/repair.hpp"

#include <optional>
#include <utility>

#include "check/findings/sentences.hpp"
#include "check/repair/form_mends.hpp"
#include "check/repair/judge.hpp"
#include "check/repair/layout.hpp"
#include "check/repair/mender.hpp"
#include "check/statements/document.hpp"
#include "check/statements/names.hpp"

namespace zelk::check {

namespace {

/// A mend can bring to light what another one has to mend.
constexpr int kMostRounds = 6;

/// Mends what can be seen in one reading of a text.
class Round {
 public:
  Round(const Document& document, const RepairOptions& options)
      : names_(document), mender_(document, names_, options) {}

  Composition mended() {
    for (const Fault& fault : mender_.document.faults) mend_statement(fault);
    for (const Fault& fault : mender_.document.faults) mend(fault);
    mend_sections(mender_, {});
    const std::vector<Part> parts = ordered(mender_);
    return mender_.edits.apply(mender_.document.source.text(), parts);
  }
  std::vector<Finding>& findings() { return mender_.findings; }

 private:
  /// Statements of which nothing can be kept.
  void mend_statement(const Fault& fault) {
    const bool may_drop = fault.kind == FaultKind::kStray || fault.kind == FaultKind::kUnreadable;
    if (!may_drop || !mender_.is_on(fault.kind)) return;
    const Word kind = mender_.statement(fault.statement).kind;
    if (kind == Word::kMessage || kind == Word::kSignal) return;
    const bool is_stray = fault.kind == FaultKind::kStray;
    mender_.drop(fault.kind, fault.statement,
                 is_stray ? "it begins no statement" : "expected " + std::string(fault.expected));
  }

  void mend(const Fault& fault) {
    const bool is_gone =
        fault.statement != Fault::kNoStatement && mender_.is_dropped(fault.statement);
    if (!is_gone && mender_.is_on(fault.kind)) mend_form(mender_, fault);
  }

  Names names_;
  Mender mender_;
};

class Repair {
 public:
  Repair(Source source, const RepairOptions& options)
      : options_(options), result_{Outcome::kUnneeded, std::move(source)} {}

  Mended run() {
    Verdict verdict = judge(result_.source.text());
    if (verdict.is_accepted && verdict.message.empty()) return unneeded();
    std::string text(result_.source.text());
    for (int round = 0; round < kMostRounds; ++round) {
      const Document document = read_document(Source(result_.source.path(), std::move(text)));
      Round mends(document, options_);
      Composition composition = mends.mended();
      if (mends.findings().empty()) return left(document, verdict);
      take(std::move(mends.findings()), document);
      verdict = judge(composition.text());
      if (verdict.is_accepted) return mended(composition.take_text());
      text = composition.take_text();
      origins_.push_back(std::move(composition));
    }
    return left(read_document(Source(result_.source.path(), std::move(text))), verdict);
  }

 private:
  /// The place in the source of one in the text of the present round.
  std::uint32_t origin(std::uint32_t offset) const {
    for (auto each = origins_.rbegin(); each != origins_.rend(); ++each)
      offset = each->origin(offset);
    return offset;
  }

  void take(std::vector<Finding> findings, const Document&) {
    for (Finding& finding : findings) {
      if (!origins_.empty()) {
        const std::uint32_t begin = origin(finding.span.begin);
        finding.span = {begin, std::max(begin, origin(finding.span.end))};
      }
      result_.mends.list.push_back(std::move(finding));
    }
    result_.mends.count = result_.mends.list.size();
  }

  Mended unneeded() {
    result_.text = result_.source.text();
    return std::move(result_);
  }

  Mended mended(std::string text) {
    result_.outcome = result_.mends.list.empty() ? Outcome::kUnneeded : Outcome::kMended;
    result_.text = std::move(text);
    return std::move(result_);
  }

  /// Nothing is left to be mended.
  Mended left(const Document& document, const Verdict& verdict) {
    if (verdict.is_accepted) return mended(std::string(document.source.text()));
    result_.outcome = Outcome::kUnmendable;
    result_.faults.list.push_back({Severity::kError, "refused", {}, verdict.message});
    result_.faults.count = 1;
    return std::move(result_);
  }

  const RepairOptions& options_;
  Mended result_;
  std::vector<Composition> origins_;
};

}  // namespace

Mended repair(Source source, const RepairOptions& options) {
  return Repair(std::move(source), options).run();
}

}  // namespace zelk::check
