// What edits add, beside names and comments, and delete again.

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>

#include "base/enum_items.hpp"
#include "base/list.hpp"
#include "base/signal_bits.hpp"
#include "edit/database_editor.hpp"
#include "edit/links.hpp"
#include "edit/new_name.hpp"
#include "edit/parse_attribute.hpp"
#include "edit/parse_words.hpp"
#include "input/lookup.hpp"
#include "term/text.hpp"
#include "words/attribute_words.hpp"
#include "words/record_words.hpp"

namespace zelk::tool {

namespace {

constexpr unsigned kBehindAll = std::numeric_limits<unsigned>::max();
constexpr std::uint32_t kLargestCount = 32767;

/// @throws std::bad_alloc when the manager had no memory for it
template <typename Record>
Record& made(Record* record) {
  if (!record) throw std::bad_alloc();
  return *record;
}

template <std::size_t kSize>
void set_inline(char (&field)[kSize], std::string_view text) {
  std::ranges::fill(field, '\0');
  std::ranges::copy(text, field);
}

struct KindOfObjects {
  std::string_view name;
  zelk_obj_t type;
};

constexpr KindOfObjects kKinds[] = {{"network", ZELK_OBJ_NETWORK},
                                    {"node", ZELK_OBJ_NODE},
                                    {"message", ZELK_OBJ_MESSAGE},
                                    {"signal", ZELK_OBJ_SIGNAL},
                                    {"variable", ZELK_OBJ_ENVVAR}};

zelk_obj_t kind_named(std::string_view name) {
  const auto* const found = std::ranges::find(kKinds, name, &KindOfObjects::name);
  if (found != std::end(kKinds)) return found->type;
  throw RequestError(
      fmt::format("{} is no kind of objects: network, node, message, signal and variable are",
                  in_quotes(name)));
}

constexpr std::string_view kTypes[] = {"INT", "FLOAT", "STRING", "ENUM", "HEX"};

/// "INT", "INT 0 100", "ENUM off,on".
///
/// @param text  in the encoding of the database
void set_type(attr_def& definition, std::string_view text) {
  const std::string_view name = text.substr(0, text.find(' '));
  const auto* const type = std::ranges::find(kTypes, name);
  if (type == std::end(kTypes)) {
    throw RequestError(fmt::format(
        "{} is no type: INT, HEX, FLOAT (each with a range or without), STRING and ENUM A,B are",
        in_quotes(text)));
  }
  definition.value_type = static_cast<std::int32_t>(type - std::begin(kTypes));
  std::string rest(text.substr(name.size()));
  if (definition.value_type == ZELK_ATTR_ENUM) {
    std::string items;
    for (const std::string& item : list_of(rest)) items += (items.empty() ? "" : "\n") + item;
    if (items.empty()) throw RequestError("an ENUM has at least one item: ENUM off,on");
    definition.enum_values = owned_text(items);
    return;
  }
  std::ranges::replace(rest, ' ', ',');
  const std::vector<std::string> range = list_of(rest);
  const bool is_right = range.empty() || (range.size() == 2 && has_range(definition));
  if (!is_right) throw RequestError(fmt::format("{} has no range of two ends", in_quotes(text)));
  if (range.empty()) return;
  definition.minimum = real_of(range[0]);
  definition.maximum = real_of(range[1]);
  if (definition.minimum > definition.maximum)
    throw RequestError(fmt::format("{} has its minimum above its maximum", in_quotes(text)));
}

/// An object whose values are described.
struct Described {
  val*& list;
  std::string shown;
};

Described described_object(const EditTargets& targets, const std::string& name) {
  if (name.starts_with("table:")) {
    valtable& table = targets.table(name.substr(6));
    return {table.values, "value table " + escaped(view(table.name))};
  }
  const EditTarget target = targets.object(name);
  if (auto* const* const signal = std::get_if<sigblk*>(&target))
    return {(*signal)->values, shown_target(target)};
  if (auto* const* const variable = std::get_if<env_var_blk*>(&target))
    return {(*variable)->values, shown_target(target)};
  throw RequestError(fmt::format("{} has no value descriptions: signals, variables and tables have",
                                 in_quotes(name)));
}

/// A number of 32 bits with a sign, or without one.
std::int32_t number_of(const std::string& text) {
  constexpr double kLeast = std::numeric_limits<std::int32_t>::min();
  constexpr double kMost = std::numeric_limits<std::int32_t>::max();
  const double number = real_of(text);
  const bool is_right = number == std::floor(number) && number >= kLeast && number <= kMost;
  if (!is_right) {
    throw RequestError(
        fmt::format("{} is no whole number of 32 bits with a sign", in_quotes(text)));
  }
  return static_cast<std::int32_t>(number);
}

/// Where a file has new definitions: behind the others that are not for relations or signal types.
unsigned place_for_definition(const attr_def* definitions) {
  unsigned place = 0;
  unsigned index = 0;
  for (const attr_def& definition : each(definitions)) {
    ++index;
    if (definition.object_type <= ZELK_OBJ_ENVVAR) place = index;
  }
  return place;
}

std::size_t count_values(const attr* values, const attr_def& definition) {
  return static_cast<std::size_t>(std::ranges::count_if(
      each(values), [&](const attr& value) { return value.def == &definition; }));
}

std::size_t count_values(const ZelkDatabase& database, const attr_def& definition) {
  std::size_t count = count_values(database.attr_values, definition);
  for (const symblk& node : each(database.nodes)) count += count_values(node.attrs, definition);
  for (const env_var_blk& variable : each(database.env_vars))
    count += count_values(variable.attrs, definition);
  for (const msgblk& message : each(database.messages)) {
    count += count_values(message.attrs, definition);
    for (const sigblk& signal : each(message.signals))
      count += count_values(signal.attrs, definition);
  }
  return count;
}

}  // namespace

// --- Nodes, messages, signals ---

/// Behind all that are listed.
unsigned DatabaseEditor::place_for_node() const {
  unsigned place = 0;
  for (const symblk& node : each(database_.nodes)) {
    if (unlisted_.contains(&node)) break;
    ++place;
  }
  return place;
}

std::string DatabaseEditor::add_node(Words words) {
  check_name(words[0]);
  check_free<symblk>(database_.nodes, nullptr, words[0]);
  symblk& node = made(manager_.CreateNode(name_, place_for_node()));
  manager_.SetName(node, words[0].c_str());
  return fmt::format("{}: added", shown_target(&node));
}

/// @throws RequestError when another message has the identifier
void DatabaseEditor::check_id_free(std::uint32_t id, const msgblk* message) const {
  for (const msgblk& other : each(database_.messages)) {
    if (&other != message && other.id == id) {
      throw RequestError(fmt::format("{} is the identifier of the message {}", padded_id(id),
                                     escaped(view(other.name))));
    }
  }
}

std::string DatabaseEditor::add_message(Words words) {
  const std::uint32_t id = message_id_of(words[1]);
  const std::uint32_t length = count_of(words[2], 0, kLargestCount);
  check_name(words[0]);
  check_free<msgblk>(database_.messages, nullptr, words[0]);
  check_id_free(id, nullptr);
  msgblk& message = made(manager_.CreateMessage(name_, kBehindAll));
  manager_.SetName(message, words[0].c_str());
  message.id = id;
  message.dlc = static_cast<std::uint16_t>(length);
  return fmt::format("{}: added, {}", shown_target(&message), counted(length, "byte"));
}

std::string DatabaseEditor::add_signal(Words words) {
  const std::size_t point = words[0].find('.');
  if (point == std::string::npos)
    throw RequestError(fmt::format("{} is not MESSAGE.SIGNAL", in_quotes(words[0])));
  msgblk& message = targets_.message(words[0].substr(0, point));
  const std::string name = words[0].substr(point + 1);
  const std::uint32_t start = count_of(words[1], 0, kLargestCount);
  const std::uint32_t length = count_of(words[2], 1, kLargestCount);
  check_name(name);
  check_free<sigblk>(message.signals, nullptr, name);
  sigblk& signal = made(manager_.CreateSignal(message, kBehindAll));
  manager_.SetName(signal, name.c_str());
  signal.start_bit = static_cast<std::uint16_t>(start);
  signal.length = static_cast<std::uint16_t>(length);
  return fmt::format("{}: added, {} from start bit {}", shown_target(&signal),
                     counted(length, "bit"), start);
}

// --- Value descriptions and tables ---

std::string DatabaseEditor::set_description(Words words) {
  const Described object = described_object(targets_, words[0]);
  const std::int32_t number = number_of(words[1]);
  tool::set_description(object.list, number, stored(words[2], encoding_));
  return fmt::format("{}: description of {} = {}", object.shown, number, in_quotes(words[2]));
}

std::string DatabaseEditor::delete_description(Words words) {
  const Described object = described_object(targets_, words[0]);
  const std::int32_t number = number_of(words[1]);
  if (!tool::delete_description(object.list, number))
    throw RequestError(fmt::format("{} has no description of the value {}", object.shown, number));
  return fmt::format("{}: description of {} deleted", object.shown, number);
}

std::string DatabaseEditor::add_table(Words words) {
  check_name(words[0], ZELK_INLINE_NAME_MAX);
  check_free<valtable>(database_.value_tables, nullptr, words[0]);
  valtable& table = made(manager_.CreateValueTable(name_, kBehindAll));
  set_inline(table.name, words[0]);
  return fmt::format("value table {}: added", words[0]);
}

std::string DatabaseEditor::delete_table(Words words) {
  valtable& table = targets_.table(words[0]);
  const auto users = std::ranges::count_if(
      each(database_.signal_types), [&](const sigtype& type) { return type.valtable == &table; });
  manager_.DeleteValueTable(table, name_);
  const std::string used =
      users == 0 ? "" : ", also from " + counted(static_cast<std::size_t>(users), "signal type");
  return fmt::format("value table {}: deleted{}", words[0], used);
}

// --- Attribute definitions ---

std::string DatabaseEditor::add_attribute(Words words) {
  const zelk_obj_t kind = kind_named(words[0]);
  const std::string name = stored(words[1], encoding_);
  if (name.empty() || name.size() > ZELK_INLINE_NAME_MAX)
    throw RequestError("the name of an attribute has 1 to 32 characters");
  if (find_definition({database_, encoding_}, kind, words[1])) {
    throw RequestError(
        fmt::format("{} is taken: there is an attribute of that name", in_quotes(words[1])));
  }
  attr_def& definition =
      made(manager_.CreateAttrDefinition(name_, place_for_definition(database_.attr_defs)));
  definition.object_type = kind;
  set_inline(definition.name, name);
  set_type(definition, stored(words[2], encoding_));
  const zelk_attr_value_t value = parse_attribute_value(definition, words[3], encoding_);
  definition.default_value = value;
  if (definition.value_type == ZELK_ATTR_STRING)
    definition.default_value.text = owned_text(words[3]);
  if (definition.value_type == ZELK_ATTR_ENUM) {
    definition.default_value.text =
        owned_text(EnumItems(view(definition.enum_values)).at(value.number).value_or(""));
  }
  return fmt::format("{} attribute {}: added, default {}", words[0], in_quotes(words[1]),
                     shown_default(definition, encoding_));
}

std::string DatabaseEditor::delete_attribute(Words words) {
  const zelk_obj_t kind = kind_named(words[0]);
  NameSuggestion names(words[1]);
  const attr_def* const found = find_definition({database_, encoding_}, kind, words[1], &names);
  if (!found) {
    throw RequestError(
        fmt::format("no {} attribute is named {}{}", words[0], in_quotes(words[1]), names.text()));
  }
  const std::size_t count = count_values(database_, *found);
  manager_.DeleteAttrDefinition(*changeable(found), name_);
  return fmt::format("{} attribute {}: deleted, with {}", words[0], in_quotes(words[1]),
                     counted(count, "value"));
}

// --- The result ---

bool DatabaseEditor::is_in_frame(const sigblk& signal) {
  return end_byte(signal) <= signal.message->dlc;
}

void DatabaseEditor::check_result() const {
  for (const msgblk& message : each(database_.messages)) {
    for (const sigblk& signal : each(message.signals)) {
      if (signal.minimum > signal.maximum) {
        throw RequestError(
            fmt::format("{}: the minimum is above the maximum", shown_target(changeable(&signal))));
      }
      if (is_in_frame(signal) || outside_.contains(&signal)) continue;
      throw RequestError(fmt::format("{}: reaches beyond the {} of its message",
                                     shown_target(changeable(&signal)),
                                     counted(message.dlc, "byte")));
    }
  }
}

}  // namespace zelk::tool
