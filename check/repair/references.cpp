#include "check/repair/references.hpp"

#include "check/findings/sentences.hpp"
#include "zelk/records.h"

namespace zelk::check {

namespace {

/// Statements that are lists, of which one entry can go.
bool is_list(Word kind) {
  return kind == Word::kGroup || kind == Word::kFilter || kind == Word::kSignalType;
}

}  // namespace

void References::mend(const Fault& fault) {
  switch (fault.kind) {
    case FaultKind::kUnknownMessage:
      return mend_message(fault);
    case FaultKind::kUnknownSignal:
      return mend_member(fault, "signal");
    case FaultKind::kUnknownNode:
      return mend_node(fault);
    case FaultKind::kUnknownVariable:
      return mend_member(fault, "environment variable");
    case FaultKind::kUnknownTable:
      return mend_member(fault, "value table");
    case FaultKind::kUnknownType:
      return mend_member(fault, "signal type");
    case FaultKind::kUnknownCategory:
      return mend_member(fault, "category");
    default:
      return;
  }
}

void References::mend_message(const Fault& fault) {
  const auto id = whole_value(mender_.document, mender_.token(fault.token));
  const std::uint32_t other = id.value_or(0) ^ ZELK_ID_EXTENDED;
  const std::string text(mender_.text_of(fault.token));
  if (!id || mender_.names.message(other) == Statement::kNone)
    return mender_.drop(fault.kind, fault.statement, "there is no message " + text);
  mender_.replace_token(fault.token, std::to_string(other));
  const std::string frames = (other & ZELK_ID_EXTENDED) != 0 ? "extended" : "standard";
  mender_.note(fault.kind, fault.statement, fault.token, fault.token + 1,
               "message " + text + " taken for " + std::to_string(other) + ", the one with " +
                   frames + " frames");
}

void References::mend_member(const Fault& fault, std::string_view noun) {
  const bool has_sign = mender_.token(fault.token - 1).is_mark('-');  // the number of a category
  const std::string name = (has_sign ? "-" : "") + std::string(mender_.text_of(fault.token));
  const std::string why = "there is no " + std::string(noun) + ' ' + name;
  if (!is_list(mender_.statement(fault.statement).kind))
    return mender_.drop(fault.kind, fault.statement, why);
  const std::uint32_t first = fault.token - (has_sign ? 1 : 0);
  mender_.erase_tokens(first, fault.token + 1);
  mender_.note(fault.kind, fault.statement, first, fault.token + 1,
               shown(name) + " removed, " + why);
}

void References::mend_node(const Fault& fault) {
  // A name that is odd is known by another one in the next reading.
  if (mender_.token(fault.token).kind != TokenKind::kName) return;
  const std::string_view name = mender_.text_of(fault.token);
  if (!known_.insert(name).second) return;
  new_nodes_.push_back(name);
  mender_.note(fault.kind, fault.statement, fault.token, fault.token + 1,
               "node " + std::string(name) + " added to the list of nodes");
}

}  // namespace zelk::check
