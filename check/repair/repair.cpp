#include "check/repair/repair.hpp"

#include <algorithm>
#include <initializer_list>
#include <optional>
#include <utility>

#include "check/faults/diagnose.hpp"
#include "check/faults/find_faults.hpp"
#include "check/repair/decoding.hpp"
#include "check/repair/form_mends.hpp"
#include "check/repair/judge.hpp"
#include "check/repair/layout.hpp"
#include "check/repair/mender.hpp"
#include "check/repair/no_node.hpp"
#include "check/repair/recovery.hpp"
#include "check/repair/references.hpp"
#include "check/repair/renames.hpp"
#include "check/repair/signal_mends.hpp"
#include "check/repair/value_mends.hpp"
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
      : names_(document),
        faults_(find_faults(document, names_)),
        mender_(document, names_, options),
        references_(mender_),
        values_(mender_) {}

  Composition mended() {
    remove_no_nodes(mender_);
    mend_names(mender_, faults_);
    each_of({FaultKind::kUnreadable, FaultKind::kStray},
            [this](const Fault& fault) { recover(mender_, fault); });
    // What else is wrong may be right once these statements are read.
    if (!mender_.has_new_statements) mend_meaning();
    FormMends forms(mender_, faults_);
    for (const Fault& fault : faults_)
      if (concerns(fault)) forms.mend(fault);
    adopt_signals(mender_);
    mend_sections(mender_, references_.new_nodes());
    const std::vector<Part> parts = ordered(mender_);
    return mender_.edits.apply(mender_.document.source.text(), parts);
  }
  std::vector<Finding>& findings() { return mender_.findings; }

 private:
  void mend_meaning() {
    for (const Fault& fault : faults_) {
      if (!concerns(fault)) continue;
      references_.mend(fault);
      if (fault.kind == FaultKind::kWrongValue) values_.mend(fault);
      mend_signal(mender_, fault);
    }
    mend_circles(mender_, faults_);
    if (mender_.is_on(FaultKind::kUnknownAttribute)) infer_definitions(mender_, faults_);
  }

  /// Whether a fault is to be mended, and there is a statement left in which it is.
  bool concerns(const Fault& fault) const {
    return !fault.is_accepted && !mender_.is_settled(fault.statement) && mender_.is_on(fault.kind);
  }

  template <typename Act>
  void each_of(std::initializer_list<FaultKind> kinds, const Act& act) {
    for (const Fault& fault : faults_)
      if (std::ranges::count(kinds, fault.kind) != 0 && concerns(fault)) act(fault);
  }

  Names names_;
  std::vector<Fault> faults_;
  Mender mender_;
  References references_;
  ValueMends values_;
};

class Repair {
 public:
  Repair(Source source, const RepairOptions& options)
      : options_(options), result_{Outcome::kUnneeded, std::move(source)} {}

  Mended run() {
    Verdict verdict = judge(result_.source.text());
    const bool is_perfect = verdict.message.empty() && is_whole(verdict, result_.source.text());
    if (is_perfect && options_.no_node.empty()) return unneeded();
    std::string text = prepared();
    const bool is_prepared = !result_.mends.list.empty();
    if (is_prepared) verdict = judge(text);
    if (is_prepared && options_.no_node.empty() && is_whole(verdict, text))
      return mended(std::move(text));
    for (int round = 0; round < kMostRounds; ++round) {
      const Document document = read_document(Source(result_.source.path(), std::move(text)));
      Round mends(document, options_);
      Composition composition = mends.mended();
      if (mends.findings().empty()) return left(document, verdict);
      take(std::move(mends.findings()));
      text = composition.take_text();
      origins_.push_back(std::move(composition));
      verdict = judge(text);
      if (is_whole(verdict, text)) return mended(std::move(text));
    }
    return left(read_document(Source(result_.source.path(), std::move(text))), verdict);
  }

 private:
  /// Whether the reader takes the text, and no byte 0xFF, which it takes for the end, hides
  /// statements.
  static bool is_whole(const Verdict& verdict, std::string_view text) {
    if (!verdict.is_accepted || text.find('\xFF') == std::string_view::npos)
      return verdict.is_accepted;
    const Document document = read_document(Source({}, std::string(text)));
    const auto end = std::ranges::find(document.faults, FaultKind::kEndByte, &Fault::kind);
    if (end == document.faults.end()) return true;
    return std::ranges::none_of(document.statements, [&](const Statement& statement) {
      return statement.first >= end->token && statement.is_readable;
    });
  }

  /// The text with its characters mended.
  std::string prepared() {
    const bool may_decode = !options_.kept.contains(name_of(FaultKind::kUtf16));
    if (auto decoded = may_decode ? decoded_utf16(result_.source.text()) : std::nullopt) {
      result_.source = Source(result_.source.path(), std::move(*decoded));
      take(
          {{Severity::kNote, name_of(FaultKind::kUtf16), {}, "text decoded from UTF-16 to UTF-8"}});
    }
    std::vector<Finding> findings;
    auto cleaned_text = cleaned(result_.source.text(), options_, findings);
    if (!cleaned_text) return std::string(result_.source.text());
    take(std::move(findings));
    std::string text = cleaned_text->take_text();
    origins_.push_back(std::move(*cleaned_text));
    return text;
  }

  /// The place in the source of one in the text of the present round.
  std::uint32_t origin(std::uint32_t offset) const {
    for (auto each = origins_.rbegin(); each != origins_.rend(); ++each)
      offset = each->origin(offset);
    return offset;
  }

  Span origin(Span span) const {
    const std::uint32_t begin = origin(span.begin);
    return {begin, std::max(begin, origin(span.end))};
  }

  void take(std::vector<Finding> findings) {
    for (Finding& finding : findings) {
      finding.span = origin(finding.span);
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

  /// No mend helps: tells the faults that are left.
  Mended left(const Document& document, const Verdict& verdict) {
    if (verdict.is_accepted) return mended(std::string(document.source.text()));
    result_.outcome = Outcome::kUnmendable;
    for (Finding& finding : diagnose(document, 0).list) {
      if (finding.severity != Severity::kError) continue;
      finding.span = origin(finding.span);
      for (RelatedPlace& place : finding.related) place.span = origin(place.span);
      result_.faults.list.push_back(std::move(finding));
    }
    auto& list = result_.faults.list;
    if (list.empty())
      list.push_back({Severity::kError, name_of(FaultKind::kRefused), {}, verdict.message});
    result_.faults.count = list.size();
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
