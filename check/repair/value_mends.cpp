#include "check/repair/value_mends.hpp"

#include <optional>

#include "base/characters.hpp"
#include "base/numbers.hpp"
#include "check/findings/sentences.hpp"
#include "check/repair/number_mends.hpp"

namespace zelk::check {

namespace {

bool is_text(const Token& token) {
  return token.kind == TokenKind::kText || token.kind == TokenKind::kOpenText;
}

std::string_view trimmed(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(" \t");
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(" \t") - begin + 1);
}

/// A text that can only be meant for a number: "0x10", " 5", "1,5".
std::optional<std::string> meant_number(std::string_view text) {
  text = trimmed(text);
  const std::string_view number_text = text.substr(text.find_first_not_of("+-") == 1 ? 1 : 0);
  const bool is_hexadecimal =
      number_text.size() > 2 && number_text[0] == '0' && to_upper(number_text[1]) == 'X';
  const std::string_view rest = is_hexadecimal ? number_text.substr(2) : text;
  const std::string_view digits = is_hexadecimal ? "0123456789abcdefABCDEF" : "+-.,0123456789eE";
  if (rest.find_first_not_of(digits) != std::string_view::npos) return std::nullopt;
  const auto number = lenient_number(text);
  return number ? std::optional(std::string(NumberText(*number).view())) : std::nullopt;
}

}  // namespace

void ValueMends::mend(const Fault& fault) {
  switch (mender_.statement(fault.statement).kind) {
    case Word::kAttribute:
    case Word::kTypeAttribute:
    case Word::kRelationAttribute:
    case Word::kDefault:
    case Word::kRelationDefault:
      return mend_attribute(fault);
    case Word::kVariable:
      return replace(fault, "0");
    case Word::kCategoryDefinition:
      if (mender_.token(fault.token).role == Role::kLevel) return replace(fault, "65535");
      break;
    default:
      break;
  }
  mender_.drop(fault.kind, fault.statement,
               shown(mender_.text_of(fault.token)) + " is out of range");
}

void ValueMends::mend_attribute(const Fault& fault) {
  const Token& token = mender_.token(fault.token);
  const std::uint32_t definition = fault.related;
  const bool is_enum =
      mender_.document.find(mender_.statement(definition), Role::kValueType)->is(Word::kEnum);
  if (is_enum && is_text(token)) return add_item(fault, definition);
  if (is_enum)
    return mender_.drop(fault.kind, fault.statement, "the attribute has no item with this index");
  const auto number = meant_number(mender_.document.content_of(token));
  if (number) return replace(fault, *number);
  mender_.drop(fault.kind, fault.statement, "the attribute's values are numbers");
}

void ValueMends::add_item(const Fault& fault, std::uint32_t index) {
  const Statement& definition = mender_.statement(index);
  const std::string item(mender_.text_of(fault.token));
  if (mender_.is_settled(index) || !items_.emplace(index, item).second) return;
  std::uint32_t last = definition.first;
  bool has_items = false;
  for (std::uint32_t i = definition.first; i < definition.end; ++i) {
    const Role role = mender_.token(i).role;
    if (role == Role::kItem || role == Role::kValueType) last = i;
    has_items |= role == Role::kItem;
  }
  mender_.insert_behind_token(last, (has_items ? "," : " ") + item);
  mender_.note(fault.kind, fault.statement, fault.token, fault.token + 1,
               item + " added to the items of the attribute, which lacked it");
}

void ValueMends::replace(const Fault& fault, const std::string& value) {
  mender_.note(fault.kind, fault.statement, fault.token, fault.token + 1,
               shown(mender_.text_of(fault.token)) + " replaced by " + value);
  mender_.replace_token(fault.token, value);
}

}  // namespace zelk::check
