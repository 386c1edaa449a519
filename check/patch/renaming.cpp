#include "check/patch/renaming.hpp"

#include <algorithm>
#include <string>

namespace zelk::check {

namespace {

/// How a document names an object: a message by its identifier, or by its name for the role of
/// that.
std::string_view name_of(const Cast& cast, CastKind kind, std::uint32_t object, Role role) {
  const Document& document = cast.document();
  if (role != Role::kMessage) {
    const Token* const token = cast.token(kind, object);
    return token ? document.text_of(*token) : std::string_view();
  }
  const std::uint32_t statement = cast.statement(kind, object);
  if (statement == Cast::kNone) return {};
  return document.text_of(document.statements[statement], Role::kMessage);
}

}  // namespace

Renaming::Renaming(const Cast& before, const Cast& after) : before_(before), after_(after) {
  for (std::size_t i = 0; i < kCastKinds; ++i) {
    const auto kind = static_cast<CastKind>(i);
    for (std::uint32_t object = 0; object < before.count(kind); ++object) {
      note(kind, object, Role::kNone);
      if (kind == CastKind::kMessage) note(kind, object, Role::kMessage);
    }
  }
  std::ranges::sort(old_names_);
  reuses_names_ = std::ranges::any_of(new_names_, [this](std::string_view name) {
    return std::ranges::binary_search(old_names_, name);
  });
}

void Renaming::note(CastKind kind, std::uint32_t object, Role role) {
  const std::string_view before = name_of(before_, kind, object, role);
  const std::string_view after = name_of(after_, kind, object, role);
  if (before.empty() || after.empty() || before == after) return;
  auto& renamed = renamed_[static_cast<std::size_t>(kind)];
  renamed.resize(before_.count(kind));
  renamed[object] = true;
  old_names_.push_back(before);
  new_names_.push_back(after);
}

void Renaming::apply(const Cast& original, Splices& splices) const {
  if (old_names_.empty()) return;
  const Document& document = original.document();
  for (std::uint32_t index = 0; index < document.statements.size(); ++index) {
    const Statement& statement = document.statements[index];
    if (!statement.is_readable) continue;
    for (const Token& token : document.tokens_of(statement)) apply(original, index, token, splices);
  }
}

void Renaming::apply(const Cast& original, std::uint32_t statement, const Token& token,
                     Splices& splices) const {
  const auto [has, kind] = Cast::kind_of(token.role);
  if (!has || renamed_[static_cast<std::size_t>(kind)].empty()) return;
  const std::uint32_t object = original.object(statement, token);
  const auto& renamed = renamed_[static_cast<std::size_t>(kind)];
  if (object >= renamed.size() || !renamed[object]) return;
  const std::string_view before = name_of(before_, kind, object, token.role);
  const std::string_view after = name_of(after_, kind, object, token.role);
  if (before != after) splices.replace(token.begin, token.end, std::string(after));
}

}  // namespace zelk::check
