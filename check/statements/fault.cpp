#include "check/statements/fault.hpp"

#include <array>

namespace zelk::check {

namespace {

struct KindName {
  FaultKind kind;
  std::string_view name;
};

/// In the order of `FaultKind`.
constexpr std::array<KindName, 42> kNames = {{
    {FaultKind::kNoFinalLineFeed, "final-line-feed"},
    {FaultKind::kNulByte, "nul-byte"},
    {FaultKind::kEndByte, "end-byte"},
    {FaultKind::kOpenText, "open-text"},
    {FaultKind::kOddSpace, "odd-space"},
    {FaultKind::kTooLong, "too-long"},
    {FaultKind::kMissing, "missing"},
    {FaultKind::kSurplus, "surplus"},
    {FaultKind::kStray, "stray"},
    {FaultKind::kUnreadable, "unreadable"},
    {FaultKind::kOddName, "odd-name"},
    {FaultKind::kKeywordName, "keyword-name"},
    {FaultKind::kOddNumber, "odd-number"},
    {FaultKind::kUnquotedText, "unquoted-text"},
    {FaultKind::kCommentObject, "comment-object"},
    {FaultKind::kSkipped, "skipped"},
    {FaultKind::kOrder, "order"},
    {FaultKind::kMissingBitTiming, "missing-bs"},
    {FaultKind::kMissingNodes, "missing-bu"},
    {FaultKind::kDoubledSection, "doubled-section"},
    {FaultKind::kUnknownMessage, "unknown-message"},
    {FaultKind::kUnknownSignal, "unknown-signal"},
    {FaultKind::kUnknownNode, "unknown-node"},
    {FaultKind::kUnknownVariable, "unknown-variable"},
    {FaultKind::kUnknownTable, "unknown-table"},
    {FaultKind::kUnknownType, "unknown-type"},
    {FaultKind::kUnknownCategory, "unknown-category"},
    {FaultKind::kUnknownAttribute, "unknown-attribute"},
    {FaultKind::kUnknownLink, "unknown-link"},
    {FaultKind::kWrongValue, "wrong-value"},
    {FaultKind::kAccessCode, "access-code"},
    {FaultKind::kIndicator, "indicator"},
    {FaultKind::kSegments, "segments"},
    {FaultKind::kMultiplexors, "multiplexors"},
    {FaultKind::kCircle, "circle"},
    {FaultKind::kDoubledMessage, "doubled-message"},
    {FaultKind::kDoubledSignal, "doubled-signal"},
    {FaultKind::kUtf16, "utf-16"},
    {FaultKind::kLineEnds, "line-ends"},
    {FaultKind::kNoNode, "no-node"},
    {FaultKind::kDoubledStatement, "doubled-statement"},
    {FaultKind::kRefused, "refused"},
}};

constexpr bool is_in_order() {
  for (std::size_t i = 0; i < kNames.size(); ++i)
    if (static_cast<std::size_t>(kNames[i].kind) != i) return false;
  return true;
}
static_assert(is_in_order());

}  // namespace

std::string_view name_of(FaultKind kind) {
  const auto number = static_cast<std::size_t>(kind);
  return number < kNames.size() ? kNames[number].name : std::string_view();
}

}  // namespace zelk::check
