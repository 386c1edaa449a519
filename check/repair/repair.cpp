#include "check/repair/repair.hpp"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <future>
#include <initializer_list>
#include <memory>
#include <optional>
#include <utility>

#include "check/faults/diagnose.hpp"
#include "check/faults/find_faults.hpp"
#include "check/repair/decoding.hpp"
#include "check/repair/doubles.hpp"
#include "check/repair/form_mends.hpp"
#include "check/repair/judge.hpp"
#include "check/repair/last_resort.hpp"
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

/// Bytes for which a second thread is worth its start.
constexpr std::size_t kLong = 1'000'000;

/// Of statements that no mend is for.
constexpr int kMostDrops = 20;

/// Mends what can be seen in one reading of a text.
class Round {
 public:
  Round(Source source, const RepairOptions& options)
      : document_(read_document(std::move(source))),
        names_(document_),
        faults_(find_faults(document_, names_)),
        mender_(document_, names_, options),
        references_(mender_),
        values_(mender_) {}
  Round(const Round&) = delete;
  Round& operator=(const Round&) = delete;

  void drop_doubles() { check::drop_doubles(mender_, faults_); }
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
  const Document& document() const { return document_; }
  /// For when there is nothing to mend: the text without a statement that the reader refuses; none
  /// when there is no such statement, or a fault is known.
  std::optional<Composition> without_refused(const Verdict& verdict) {
    const bool is_unknown = std::ranges::all_of(faults_, &Fault::is_accepted);
    if (verdict.is_accepted || !is_unknown || !drop_refused(mender_, verdict)) return std::nullopt;
    return mender_.edits.apply(mender_.document.source.text());
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

  Document document_;
  Names names_;
  std::vector<Fault> faults_;
  Mender mender_;
  References references_;
  ValueMends values_;
};

/// A text with its characters mended, and the first round of its other mends.
struct Start {
  std::optional<std::string> decoded{};  ///< of a text in UTF-16
  std::vector<Finding> findings{};       ///< of the characters
  std::optional<Composition> cleaned{};
  std::unique_ptr<Round> round{};

  bool is_other_text() const { return decoded || cleaned; }
};

Start start(const Source& source, const RepairOptions& options) {
  Start result;
  if (!options.kept.contains(name_of(FaultKind::kUtf16)))
    result.decoded = decoded_utf16(source.text());
  const std::string_view text = result.decoded ? *result.decoded : source.text();
  result.cleaned = cleaned(text, options, result.findings);
  result.round = std::make_unique<Round>(
      Source(source.path(), result.cleaned ? result.cleaned->take_text() : std::string(text)),
      options);
  return result;
}

class Repair {
 public:
  Repair(Source source, const RepairOptions& options)
      : options_(options), result_{Outcome::kUnneeded, std::move(source)} {}

  Mended run() {
    // Of a long text the strict reading takes as much time as all else.
    const bool is_long = result_.source.size() > kLong;
    std::future<Start> starting =
        std::async(is_long ? std::launch::async | std::launch::deferred : std::launch::deferred,
                   [this] { return start(result_.source, options_); });
    Verdict verdict = judge(result_.source.text());
    if (is_perfect(verdict, result_.source.text()) && options_.no_node.empty()) {
      // Another thread may still look at the source. What nobody has begun stays undone.
      if (starting.wait_for(std::chrono::seconds(0)) != std::future_status::deferred)
        starting.wait();
      return unneeded();
    }
    Start first = starting.get();
    const bool is_other_text = first.is_other_text();
    std::unique_ptr<Round> round = take(std::move(first));
    contents_ = contents_of(is_other_text ? read_document(result_.source) : round->document());
    if (is_other_text) verdict = judge(text_of(*round));
    if (is_other_text && options_.no_node.empty() && is_perfect(verdict, text_of(*round)))
      return checked(std::string(text_of(*round)), verdict);
    // What the reader takes stays as it is, doubled or not.
    if (!verdict.is_accepted) round->drop_doubles();
    int drops = 0;
    for (int rounds = 1;; ++rounds) {
      Composition composition = round->mended();
      if (round->findings().empty()) {
        auto rest = drops < kMostDrops ? round->without_refused(verdict) : std::nullopt;
        if (!rest) return ended(*round, verdict);
        composition = std::move(*rest);
        ++drops;
      }
      take(std::move(round->findings()));
      std::string text = composition.take_text();
      origins_.push_back(std::move(composition));
      clean(text);
      verdict = judge(text);
      if (is_perfect(verdict, text)) return checked(std::move(text), verdict);
      round = std::make_unique<Round>(Source(result_.source.path(), std::move(text)), options_);
      if (rounds == kMostRounds + drops) return ended(*round, verdict);
    }
  }

 private:
  /// Whether the reader takes the text, and notes nothing: it may have skipped statements.
  static bool is_perfect(const Verdict& verdict, std::string_view text) {
    return verdict.message.empty() && is_whole(verdict, text);
  }

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

  /// What was dropped may have had the only line feeds.
  void clean(std::string& text) {
    std::vector<Finding> findings;
    std::optional<Composition> composition = cleaned(text, options_, findings);
    if (!composition) return;
    take(std::move(findings));
    text = composition->take_text();
    origins_.push_back(std::move(*composition));
  }

  static std::string_view text_of(const Round& round) { return round.document().source.text(); }

  std::unique_ptr<Round> take(Start start) {
    if (start.decoded) {
      result_.source = Source(result_.source.path(), std::move(*start.decoded));
      take({{Severity::kNote, name_of(FaultKind::kUtf16), {}, std::string(kDecodedUtf16)}});
    }
    take(std::move(start.findings));
    if (start.cleaned) origins_.push_back(std::move(*start.cleaned));
    return std::move(start.round);
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

  void to_origins(Finding& finding) const {
    finding.span = origin(finding.span);
    for (RelatedPlace& place : finding.related) place.span = origin(place.span);
  }

  void take(std::vector<Finding> findings) {
    for (Finding& finding : findings) {
      to_origins(finding);
      result_.mends.list.push_back(std::move(finding));
    }
    result_.mends.count = result_.mends.list.size();
  }

  Mended unneeded() {
    result_.text = result_.source.text();
    return std::move(result_);
  }

  /// Whether a text lacks a message or signal that can be seen in the source.
  bool is_lossy(const Verdict& verdict) const {
    return !verdict.contents.includes(contents_) &&
           !verdict.contents.includes(distinct_contents_of(read_document(result_.source)));
  }

  Mended checked(std::string text, const Verdict& verdict) {
    return is_lossy(verdict) ? left_as_it_was() : mended(std::move(text));
  }

  Mended mended(std::string text) {
    result_.outcome = result_.mends.list.empty() ? Outcome::kUnneeded : Outcome::kMended;
    result_.text = std::move(text);
    return std::move(result_);
  }

  /// The mends would lose something. What the reader takes can stay; of all else the faults are
  /// told.
  Mended left_as_it_was() {
    origins_.clear();
    auto& mends = result_.mends;
    std::erase_if(mends.list,
                  [](const Finding& f) { return f.rule != name_of(FaultKind::kUtf16); });
    mends.count = mends.list.size();
    return left(read_document(result_.source), judge(result_.source.text()));
  }

  Mended ended(const Round& round, const Verdict& verdict) {
    return verdict.is_accepted ? checked(std::string(text_of(round)), verdict)
                               : left(round.document(), verdict);
  }

  /// No mend helps: tells the faults that are left.
  Mended left(const Document& document, const Verdict& verdict) {
    if (verdict.is_accepted) return mended(std::string(document.source.text()));
    result_.outcome = Outcome::kUnmendable;
    for (Finding& finding : diagnose(document, 0).list) {
      if (finding.severity != Severity::kError) continue;
      to_origins(finding);
      result_.faults.list.push_back(std::move(finding));
    }
    auto& list = result_.faults.list;
    if (list.empty()) {
      const std::uint32_t line = document.source.begin_of_line(verdict.line_feeds);
      const Span place = origin({line, line});
      list.push_back({Severity::kError, name_of(FaultKind::kRefused), place, verdict.message});
    }
    result_.faults.count = list.size();
    return std::move(result_);
  }

  const RepairOptions& options_;
  Mended result_;
  std::vector<Composition> origins_;
  Contents contents_;  ///< of the source
};

}  // namespace

Mended repair(Source source, const RepairOptions& options) {
  return Repair(std::move(source), options).run();
}

}  // namespace zelk::check
