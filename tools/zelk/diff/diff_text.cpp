#include "diff/diff_text.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "base/characters.hpp"
#include "table/cell.hpp"
#include "table/objects.hpp"
#include "term/text.hpp"
#include "words/attribute_words.hpp"
#include "words/record_words.hpp"

namespace zelk::tool {

using check::Change;
using check::Changed;
using check::ChangeSide;
using check::Difference;

namespace {

std::string object_text(const Difference& difference) {
  if (!difference.kind) return "network";
  const Object& object = difference.object;
  const std::string_view kind = difference.kind->singular;
  const std::string name = escaped(object.name_text());
  if (const msgblk* const message = object.as<msgblk>())
    return fmt::format("{} {} {}", kind, padded_id(message->id), name);
  if (const attr_def* const definition = object.as<attr_def>())
    return fmt::format("{} {} {}", object_kind(*definition), kind, in_quotes(object.name_text()));
  const std::string owner = object.owner ? escaped(object.owner_text()) + "." : "";
  return fmt::format("{} {}{}", kind, owner, name);
}

std::string title(const Difference& difference) {
  constexpr char kSigns[] = {'-', '+', '~'};
  return fmt::format("{} {}", kSigns[static_cast<std::size_t>(difference.presence)],
                     object_text(difference));
}

/// Whether a text can stand without quotes: words, and not the one that stands for no value.
bool is_plain(std::string_view text) {
  const auto belongs = [](char c) {
    return is_name_character(c) || std::string_view("-./% ").find(c) != std::string_view::npos;
  };
  return !text.empty() && text != "none" && text.front() != ' ' && text.back() != ' ' &&
         std::ranges::all_of(text, belongs);
}

std::string value_text(const ChangeSide& side, Changed what) {
  const Cell& cell = side.cell;
  if (side.attribute) return shown_value(*side.attribute, side.encoding);
  if (cell.is_none() || (cell.list() && cell.list()->empty())) return "none";
  if (!cell.text()) return shown(cell);
  const bool is_quoted = what == Changed::kDescription || !is_plain(*cell.text());
  return is_quoted ? in_quotes(*cell.text()) : *cell.text();
}

std::string change_text(const Change& change) {
  return fmt::format("{}: {} -> {}", field_text(change), value_text(change.before, change.what),
                     value_text(change.after, change.what));
}

}  // namespace

std::string field_text(const Change& change) {
  switch (change.what) {
    case Changed::kAttribute:
      return fmt::format("attribute {}{}{}", in_quotes(change.name),
                         change.node.empty() ? "" : " with ", escaped(change.node));
    case Changed::kDescription:
      return fmt::format("value {}", change.number);
    default:
      return change.name;
  }
}

void print_difference(const Difference& difference, Output& out) {
  out.line("{}", title(difference));
  const Output::Indent indent(out);
  const Output::Indent indent_more(out);
  for (const Change& change : difference.changes) out.line("{}", change_text(change));
}

std::string difference_line(const Difference& difference) {
  std::string line = title(difference);
  const char* separator = ": ";
  for (const Change& change : difference.changes) {
    line += separator + change_text(change);
    separator = ", ";
  }
  return line;
}

}  // namespace zelk::tool
