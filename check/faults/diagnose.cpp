#include "check/faults/diagnose.hpp"

#include <algorithm>
#include <array>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "base/seeded_hash.hpp"
#include "check/faults/fault_words.hpp"
#include "check/faults/find_faults.hpp"

namespace zelk::check {

namespace {

bool is_reference(FaultKind kind) {
  return kind >= FaultKind::kUnknownMessage && kind <= FaultKind::kUnknownAttribute;
}

/// Faults that are one, but for their places.
bool is_joined(FaultKind kind) {
  return is_reference(kind) || kind == FaultKind::kOrder || kind == FaultKind::kNulByte ||
         kind == FaultKind::kEndByte || kind == FaultKind::kSkipped ||
         kind == FaultKind::kOddName || kind == FaultKind::kKeywordName ||
         kind == FaultKind::kWrongValue || kind == FaultKind::kOddSpace;
}

/// A text in UTF-16 of which nothing can be read.
bool is_utf16(std::string_view text) {
  using namespace std::string_view_literals;
  if (text.starts_with("\xFF\xFE"sv) || text.starts_with("\xFE\xFF"sv)) return true;
  if (text.size() < 4) return false;
  const auto is_zero = [text](std::size_t at) { return text[at] == '\0'; };
  return is_zero(0) != is_zero(1) && is_zero(0) == is_zero(2) && is_zero(1) == is_zero(3);
}

class Diagnosis {
 public:
  explicit Diagnosis(const Document& document)
      : document_(document), names_(document), faults_(find_faults(document, names_)) {}

  Findings run(std::uint64_t limit) {
    gather_lost();
    join();
    choose(limit);
    Findings findings;
    FaultWords words(document_, names_);
    for (const Joined& joined : joined_) {
      findings.count += 1;
      if (!joined.fault->is_accepted) findings.worst = Severity::kError;
      findings.worst = std::max(findings.worst, Severity::kWarning);
      if (!joined.is_chosen) continue;
      findings.list.push_back(words.finding(*joined.fault));
      if (joined.next) add_next(findings.list.back(), joined);
    }
    return findings;
  }

 private:
  struct Joined {
    const Fault* fault;
    const Fault* next = nullptr;  ///< the second one
    std::uint64_t count = 1;
    bool is_chosen = false;
  };

  /// What statements name that cannot be read: references to it are no fault of their own.
  void gather_lost() {
    for (const Statement& statement : document_.statements) {
      if (statement.is_readable) continue;
      for (const Token& token : document_.tokens_of(statement))
        if (token.kind != TokenKind::kMark) lost_.insert(document_.content_of(token));
    }
  }

  bool is_follow_up(const Fault& fault) const {
    const bool is_section =
        fault.kind == FaultKind::kMissingBitTiming || fault.kind == FaultKind::kMissingNodes;
    const bool is_no_database =
        document_.statements.size() == 1 && document_.statements[0].kind == Word::kNone;
    if (is_section) return is_no_database;
    if (fault.kind == FaultKind::kStray) return is_rest_of_line(fault);
    return is_reference(fault.kind) &&
           lost_.contains(document_.content_of(document_.tokens[fault.token]));
  }

  /// Whether a stray text goes on on the line of a statement that cannot be read.
  bool is_rest_of_line(const Fault& fault) const {
    if (fault.statement == 0 || document_.statements[fault.statement - 1].is_readable) return false;
    const auto& tokens = document_.tokens;
    const std::string_view between =
        document_.source.text(tokens[fault.token - 1].end, tokens[fault.token].begin);
    return between.find_first_of("\r\n") == std::string_view::npos;
  }

  void join() {
    std::unordered_map<std::string, std::size_t, SeededHash> places;
    joined_.reserve(faults_.size());
    for (const Fault& fault : faults_) {
      if (is_follow_up(fault)) continue;
      if (!is_joined(fault.kind)) {
        joined_.push_back({&fault});
        continue;
      }
      const auto [entry, is_new] = places.try_emplace(key_of(fault), joined_.size());
      if (is_new) {
        joined_.push_back({&fault});
        continue;
      }
      Joined& first = joined_[entry->second];
      if (!first.next) first.next = &fault;
      ++first.count;
    }
  }

  /// The same for faults that are one.
  std::string key_of(const Fault& fault) const {
    std::string key{static_cast<char>(fault.kind), fault.is_accepted ? 'a' : 'r'};
    if (fault.kind == FaultKind::kNulByte || fault.kind == FaultKind::kEndByte ||
        fault.kind == FaultKind::kOddSpace)
      return key;
    if (fault.kind == FaultKind::kOrder) {
      const bool is_late = fault.related < fault.statement;
      key += static_cast<char>(document_.statements[fault.statement].kind);
      return key + (is_late ? 'l' : 'e');
    }
    const bool counts_related =
        fault.kind == FaultKind::kUnknownSignal || fault.kind == FaultKind::kWrongValue;
    if (counts_related) key += std::to_string(fault.related);
    return key.append(" ").append(document_.text_of(document_.tokens[fault.token]));
  }

  /// Errors first, then warnings.
  void choose(std::uint64_t limit) {
    std::uint64_t left = limit == 0 ? joined_.size() : limit;
    for (const bool is_accepted : {false, true}) {
      for (Joined& joined : joined_) {
        if (left == 0) return;
        if (joined.fault->is_accepted != is_accepted) continue;
        joined.is_chosen = true;
        --left;
      }
    }
  }

  void add_next(Finding& finding, const Joined& joined) const {
    const std::uint64_t more = joined.count - 2;
    finding.related.push_back(
        {span_of(document_, *joined.next),
         more == 0 ? "and here" : "and here, and at " + std::to_string(more) + " more places"});
    if (more == 1) finding.related.back().message = "and here, and at 1 more place";
  }

  const Document& document_;
  Names names_;
  std::vector<Fault> faults_;
  std::vector<Joined> joined_;
  std::unordered_set<std::string_view, SeededHash> lost_;
};

struct Sentence {
  FaultKind kind;
  std::string_view text;
};

constexpr Sentence kSentences[] = {
    {FaultKind::kNoFinalLineFeed, "A name or a comment ends with the file."},
    {FaultKind::kNulByte, "A NUL byte stands in the file, or cuts a text."},
    {FaultKind::kEndByte, "A byte 0xFF outside of texts ends the file for the reader."},
    {FaultKind::kOpenText, "A text has no second quote."},
    {FaultKind::kOddSpace, "A blank outside ASCII stands directly behind a name."},
    {FaultKind::kTooLong, "A name or number has more than 1023 characters."},
    {FaultKind::kMissing, "Something is missing that the form of the statement wants."},
    {FaultKind::kSurplus, "Something stands in a statement that does not belong there."},
    {FaultKind::kStray, "A text begins no statement."},
    {FaultKind::kUnreadable, "A statement cannot be read."},
    {FaultKind::kOddName, "A name has characters that names do not have."},
    {FaultKind::kKeywordName, "A keyword stands where a name must."},
    {FaultKind::kOddNumber, "A number is misspelled, out of range or of the wrong kind."},
    {FaultKind::kUnquotedText, "A text is not between quotes."},
    {FaultKind::kCommentObject, "A comment does not say of what kind its object is."},
    {FaultKind::kSkipped, "A statement of an announced kind is skipped."},
    {FaultKind::kOrder, "A statement is out of order."},
    {FaultKind::kMissingBitTiming, "The file has no section \"BS_:\"."},
    {FaultKind::kMissingNodes, "The file has no section \"BU_:\"."},
    {FaultKind::kDoubledSection, "The file has a section twice."},
    {FaultKind::kUnknownMessage, "A statement refers to a message that is not defined."},
    {FaultKind::kUnknownSignal, "A statement refers to a signal that its message does not have."},
    {FaultKind::kUnknownNode, "A statement refers to a node that is not defined."},
    {FaultKind::kUnknownVariable,
     "A statement refers to an environment variable that is not defined."},
    {FaultKind::kUnknownTable, "A signal type refers to a value table that is not defined."},
    {FaultKind::kUnknownType, "A statement refers to a signal type that is not defined."},
    {FaultKind::kUnknownCategory, "A statement refers to a category that is not defined."},
    {FaultKind::kUnknownAttribute, "A statement refers to an attribute that is not defined."},
    {FaultKind::kUnknownLink, "A relation is to a node that is not linked to the object."},
    {FaultKind::kWrongValue, "A value is not of the attribute's type, or out of range."},
    {FaultKind::kAccessCode, "A variable's access code is misspelled."},
    {FaultKind::kIndicator, "A multiplexor indicator is misspelled."},
    {FaultKind::kSegments, "The length or byte order of a signal is wrong."},
    {FaultKind::kMultiplexors, "Nothing says which multiplexor selects a signal."},
    {FaultKind::kCircle, "Multiplexors select each other in a circle."},
    {FaultKind::kDoubledMessage, "Two messages have one identifier."},
    {FaultKind::kDoubledSignal, "Two signals of a message have one name."},
    {FaultKind::kUtf16, "The file is in UTF-16."},
    {FaultKind::kDoubledStatement, "A statement says the same as another one."},
    {FaultKind::kRefused, "The library refuses the file."},
};

}  // namespace

Findings diagnose(const Document& document, std::uint64_t limit) {
  if (!is_utf16(document.source.text())) return Diagnosis(document).run(limit);
  const Names names(document);
  Findings findings;
  findings.add(FaultWords(document, names).finding({FaultKind::kUtf16, kNoStatement, 0, 0}));
  return findings;
}

std::string_view sentence_of_fault(std::string_view name) {
  const auto* const found = std::ranges::find(
      kSentences, name, [](const Sentence& sentence) { return name_of(sentence.kind); });
  return found == std::end(kSentences) ? std::string_view() : found->text;
}

}  // namespace zelk::check
