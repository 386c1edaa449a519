#include "check/repair/split_names.hpp"

#include <set>
#include <string_view>
#include <utility>

#include "base/characters.hpp"

namespace zelk::check {

namespace {

/// "m3x", "mux3": perhaps not right, but meant for an indicator.
bool is_meant_for_indicator(std::string_view text) {
  const bool begins_with_mux = text.size() > 2 && to_upper(text[0]) == 'M' &&
                               to_upper(text[1]) == 'U' && to_upper(text[2]) == 'X';
  return text.size() == 1 || is_digit(text[1]) || begins_with_mux;
}

using SignalName = std::pair<std::uint32_t, std::string_view>;  // of a message

/// The names by which statements refer to signals, but for those with another word behind them.
std::set<SignalName> referred_names(const Mender& mender) {
  std::set<SignalName> names;
  for (const Statement& statement : mender.document.statements) {
    const auto id = statement.is_readable
                        ? whole_value(mender.document, statement, Role::kMessageRef)
                        : std::nullopt;
    if (!id) continue;
    for (std::uint32_t i = statement.first; i + 1 < statement.end; ++i) {
      const bool is_whole = mender.token(i + 1).kind != TokenKind::kName;
      if (mender.token(i).role == Role::kSignalRef && is_whole)
        names.emplace(mender.names.message(*id), mender.text_of(i));
    }
  }
  return names;
}

}  // namespace

std::vector<Fault> split_names(const Mender& mender, std::span<const Fault> faults) {
  std::vector<Fault> found;
  std::set<SignalName> referred;
  bool is_read = false;
  for (const Fault& fault : faults) {
    if (fault.kind != FaultKind::kIndicator || !mender.is_on(FaultKind::kOddName)) continue;
    if (is_meant_for_indicator(mender.text_of(fault.token))) continue;
    if (!std::exchange(is_read, true)) referred = referred_names(mender);
    const std::uint32_t name = fault.token - 1;
    const std::uint32_t owner = mender.statement(fault.statement).owner;
    if (!referred.contains({owner, mender.text_of(name)}))
      found.push_back({FaultKind::kOddName, fault.statement, name, fault.token + 1});
  }
  return found;
}

}  // namespace zelk::check
