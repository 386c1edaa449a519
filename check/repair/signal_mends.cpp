#include "check/repair/signal_mends.hpp"

#include <string>
#include <unordered_map>

#include "base/characters.hpp"
#include "check/findings/sentences.hpp"

namespace zelk::check {

namespace {

/// The letter of the first indicator in the message that has one.
char letter_of(const Mender& mender, std::uint32_t message) {
  const auto& statements = mender.document.statements;
  for (std::uint32_t i = message + 1; i < statements.size(); ++i) {
    if (statements[i].kind == Word::kMessage) break;
    const std::string_view text = mender.document.text_of(statements[i], Role::kIndicator);
    if (!text.empty() && is_letter(text[0]) && text[0] != '_') return text[0];
  }
  return 'm';
}

void mend_indicator(Mender& mender, const Fault& fault) {
  const std::string_view text = mender.text_of(fault.token);
  const std::uint32_t owner = mender.statement(fault.statement).owner;
  const char letter = owner == Statement::kNone ? 'm' : letter_of(mender, owner);
  std::string digits;
  for (const char c : text)
    if (is_digit(c)) digits += c;
  if (digits.size() > 10 || (digits.size() == 10 && digits > "4294967295")) digits = "4294967295";
  const bool is_multiplexor = digits.empty() || !is_digit(text.back());
  std::string indicator = digits.empty() ? "" : to_lower(letter) + digits;
  if (is_multiplexor) indicator += to_upper(letter);
  mender.replace_token(fault.token, indicator);
  mender.note(fault.kind, fault.statement, fault.token, fault.token + 1,
              "multiplexor indicator " + shown(text) + " replaced by " + indicator);
}

/// Makes a multiplexor that no other one selects.
void drop_value(Mender& mender, const Fault& fault, const Token& indicator) {
  const auto token = static_cast<std::uint32_t>(&indicator - mender.document.tokens.data());
  const std::string text(1, to_upper(mender.text_of(token).front()));
  mender.note(fault.kind, fault.statement, token, token + 1,
              "multiplexor indicator " + shown(mender.text_of(token)) + " replaced by " + text +
                  ", multiplexors select each other in a circle");
  mender.replace_token(token, text);
}

/// Lengths from 1 up, orders 0 and 1, and at most two segments.
void mend_segments(Mender& mender, const Fault& fault) {
  const Statement& statement = mender.statement(fault.statement);
  const auto replace = [&](std::uint32_t token, std::string_view text) {
    mender.replace_token(token, std::string(text));
    mender.note(fault.kind, fault.statement, token, token + 1,
                shown(mender.text_of(token)) + " replaced by " + std::string(text));
  };
  int segments = 0;
  for (std::uint32_t i = statement.first; i < statement.end; ++i) {
    const Token& token = mender.token(i);
    const auto value = whole_value(mender.document, token);
    segments += token.role == Role::kLength ? 1 : 0;
    if (segments > 2 && token.role == Role::kLength) {
      const bool has_order = i + 2 < statement.end && mender.token(i + 2).role == Role::kOrder;
      const std::uint32_t end = i + (has_order ? 3 : 1);
      mender.erase_tokens(i - 1, end);
      mender.note(fault.kind, fault.statement, i, end, "third segment of the signal removed");
      i = end - 1;
    } else if ((token.role == Role::kLength && value == 0u) ||
               (token.role == Role::kOrder && value > 4u)) {
      replace(i, "1");
    }
  }
}

}  // namespace

void mend_signal(Mender& mender, const Fault& fault) {
  if (fault.kind == FaultKind::kIndicator) mend_indicator(mender, fault);
  if (fault.kind == FaultKind::kSegments) mend_segments(mender, fault);
}

void mend_circles(Mender& mender, std::span<const Fault> faults) {
  std::unordered_map<std::uint32_t, const Fault*> circles;  // by statement of the signal
  for (const Fault& fault : faults) {
    if (fault.kind == FaultKind::kCircle && !fault.is_accepted && mender.is_on(fault.kind))
      circles.emplace(fault.statement, &fault);
  }
  for (std::uint32_t i = 0; !circles.empty() && i < mender.document.statements.size(); ++i) {
    const Statement& statement = mender.statement(i);
    if (statement.kind != Word::kMultiplexorRanges || mender.is_settled(i)) continue;
    const auto id = whole_value(mender.document, statement, Role::kMessageRef);
    const std::uint32_t message = id ? mender.names.message(*id) : Statement::kNone;
    if (message == Statement::kNone) continue;
    const std::string_view name = mender.document.text_of(statement, Role::kSignalRef);
    if (circles.erase(mender.names.signal(message, name)) != 0)
      mender.drop(FaultKind::kCircle, i, "multiplexors select each other in a circle");
  }
  // The others are in a circle because of their indicators alone.
  for (const auto& [index, fault] : circles) {
    const Token* const indicator = mender.document.find(mender.statement(index), Role::kIndicator);
    if (indicator) drop_value(mender, *fault, *indicator);
  }
}

}  // namespace zelk::check
