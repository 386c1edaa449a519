#include "check/patch/full_names.hpp"

#include <algorithm>
#include <map>
#include <string_view>
#include <utility>

#include "check/patch/splices.hpp"

namespace zelk::check {

namespace {

struct Carrier {
  CastKind kind;
  std::string_view attribute;
  Role object;  ///< that a value is about
};

constexpr Carrier kCarriers[] = {
    {CastKind::kMessage, "SystemMessageLongSymbol", Role::kMessageRef},
    {CastKind::kSignal, "SystemSignalLongSymbol", Role::kSignalRef},
    {CastKind::kNode, "SystemNodeLongSymbol", Role::kNodeRef},
    {CastKind::kVariable, "SystemEnvVarLongSymbol", Role::kVariableRef},
};

/// The carrier that a statement defines or gives a value to; null for none.
const Carrier* carrier_of(const Document& document, const Statement& statement) {
  const bool is_attribute = statement.kind == Word::kDefinition ||
                            statement.kind == Word::kDefault || statement.kind == Word::kAttribute;
  if (!is_attribute) return nullptr;
  const Role role = statement.kind == Word::kDefinition ? Role::kAttribute : Role::kAttributeRef;
  const auto* const found =
      std::ranges::find(kCarriers, document.text_of(statement, role), &Carrier::attribute);
  return found == std::end(kCarriers) ? nullptr : found;
}

bool introduces(Role role) {
  return role == Role::kMessage || role == Role::kSignal || role == Role::kNode ||
         role == Role::kVariable;
}

class FullNames {
 public:
  FullNames(const Document& document, const std::vector<CastKind>& kinds)
      : document_(document), kinds_(kinds), cast_(document), splices_(document) {}

  std::string run() {
    for (std::uint32_t i = 0; i < document_.statements.size(); ++i) gather(i);
    for (std::uint32_t i = 0; i < document_.statements.size(); ++i) rename(i);
    return splices_.apply().text;
  }

 private:
  void gather(std::uint32_t index) {
    const Statement& statement = document_.statements[index];
    const Carrier* const carrier = carrier_of(document_, statement);
    if (!carrier || !std::ranges::count(kinds_, carrier->kind)) return;
    splices_.remove(index);
    const Token* const object = document_.find(statement, carrier->object);
    if (!object) return;
    names_[{carrier->kind, cast_.object(index, *object)}] =
        document_.text_of(statement, Role::kValue);
  }

  void rename(std::uint32_t index) {
    for (const Token& token : document_.tokens_of(document_.statements[index])) {
      const auto [has, kind] = Cast::kind_of(token.role);
      const bool is_id = kind == CastKind::kMessage && token.role != Role::kMessage;
      if (!has || is_id) continue;
      const auto found = names_.find({kind, cast_.object(index, token)});
      if (found != names_.end())
        splices_.replace(token.begin, token.end, std::string(found->second));
    }
  }

  const Document& document_;
  const std::vector<CastKind>& kinds_;
  Cast cast_;
  Splices splices_;
  std::map<std::pair<CastKind, std::uint32_t>, std::string_view> names_;
};

}  // namespace

std::vector<CastKind> kinds_with_full_names(const Document& document) {
  constexpr std::uint32_t kLongestShort = 32;
  std::vector<CastKind> kinds;
  for (const Token& token : document.tokens) {
    const bool is_long = introduces(token.role) && token.end - token.begin > kLongestShort;
    const CastKind kind = Cast::kind_of(token.role).kind;
    if (is_long && !std::ranges::count(kinds, kind)) kinds.push_back(kind);
  }
  for (const Statement& statement : document.statements) {
    if (const Carrier* const carrier = carrier_of(document, statement))
      std::erase(kinds, carrier->kind);
  }
  return kinds;
}

std::string with_full_names(const Document& document, const std::vector<CastKind>& kinds) {
  return FullNames(document, kinds).run();
}

bool defines_full_names(const Document& document, const Statement& statement) {
  return statement.kind != Word::kAttribute && carrier_of(document, statement);
}

}  // namespace zelk::check
