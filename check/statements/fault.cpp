#include "check/statements/fault.hpp"

namespace zelk::check {

std::string_view name_of(FaultKind kind) {
  switch (kind) {
    case FaultKind::kNoFinalLineFeed:
      return "final-line-feed";
    case FaultKind::kNulByte:
      return "nul-byte";
    case FaultKind::kEndByte:
      return "end-byte";
    case FaultKind::kOpenText:
      return "open-text";
    case FaultKind::kOddSpace:
      return "odd-space";
    case FaultKind::kTooLong:
      return "too-long";
    case FaultKind::kMissing:
      return "missing";
    case FaultKind::kSurplus:
      return "surplus";
    case FaultKind::kStray:
      return "stray";
    case FaultKind::kUnreadable:
      return "unreadable";
    case FaultKind::kOddName:
      return "odd-name";
    case FaultKind::kKeywordName:
      return "keyword-name";
    case FaultKind::kOddNumber:
      return "odd-number";
    case FaultKind::kUnquotedText:
      return "unquoted-text";
    case FaultKind::kCommentObject:
      return "comment-object";
    case FaultKind::kSkipped:
      return "skipped";
    case FaultKind::kOrder:
      return "order";
    case FaultKind::kMissingBitTiming:
      return "missing-bs";
    case FaultKind::kMissingNodes:
      return "missing-bu";
    case FaultKind::kDoubledSection:
      return "doubled-section";
    case FaultKind::kUnknownMessage:
      return "unknown-message";
    case FaultKind::kUnknownSignal:
      return "unknown-signal";
    case FaultKind::kUnknownNode:
      return "unknown-node";
    case FaultKind::kUnknownVariable:
      return "unknown-variable";
    case FaultKind::kUnknownTable:
      return "unknown-table";
    case FaultKind::kUnknownType:
      return "unknown-type";
    case FaultKind::kUnknownCategory:
      return "unknown-category";
    case FaultKind::kUnknownAttribute:
      return "unknown-attribute";
    case FaultKind::kUnknownLink:
      return "unknown-link";
    case FaultKind::kWrongValue:
      return "wrong-value";
    case FaultKind::kAccessCode:
      return "access-code";
    case FaultKind::kIndicator:
      return "indicator";
    case FaultKind::kSegments:
      return "segments";
    case FaultKind::kMultiplexors:
      return "multiplexors";
    case FaultKind::kCircle:
      return "circle";
    case FaultKind::kDoubledMessage:
      return "doubled-message";
    case FaultKind::kDoubledSignal:
      return "doubled-signal";
    case FaultKind::kUtf16:
      return "utf-16";
    case FaultKind::kLineEnds:
      return "line-ends";
    case FaultKind::kNoNode:
      return "no-node";
    case FaultKind::kRefused:
      return "refused";
  }
  return "";
}

}  // namespace zelk::check
