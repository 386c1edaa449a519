#include "reader/object_actions.hpp"

#include <charconv>
#include <string>
#include <utility>

#include "base/signal_bits.hpp"
#include "model/symbols.hpp"
#include "text/words.hpp"

namespace zelk {
namespace {

catlink* create_category_link(cat* category) {
  auto* link = create_record<catlink>();
  link->category = category;
  return link;
}

}  // namespace

// --- Environment variables ---

void ObjectActions::variable(const VariableLine& line) {
  if (line.type > ZELK_ENVVAR_DATA) context_.fail(ZELK_ERR_ENVVAR_TYPE, line.name.view());
  Owned<env_var_blk> variable(zelk_create_evblk());
  variable->name = copy_text(line.name.view()).release();
  const std::uint32_t code = access_code(line.access);
  const bool is_string = (code & kAccessCodeString) != 0;
  variable->type = line.type;
  if (is_string) variable->type = ZELK_ENVVAR_STRING;
  variable->access_type = code & ~kAccessCodeString;
  variable->minimum = line.range.first;
  variable->maximum = line.range.second;
  copy_inline(variable->unit, line.unit.view());
  variable->initial = line.initial;
  variable->id = line.id;
  PendingList<rxblk> nodes;
  context_.link_names(nodes, zelk_create_rx);
  variable->access_nodes = nodes.take();
  variable->access_node_count = count_16(variable->access_nodes);
  context_.index.add(variable.get());
  context_.env_vars.append(variable.release());
  context_.end_statement();
}

/// The hexadecimal number behind the prefix. Any other name has no access code: it counts as 0,
/// with a warning.
std::uint32_t ObjectActions::access_code(TokenText access) const {
  const std::string_view text = access.view();
  std::uint32_t code = 0;
  if (text.starts_with(kAccessCodePrefix)) {
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data() + kAccessCodePrefix.size(), end, code, 16);
    if (result.ec == std::errc{} && result.ptr == end) return code;
  }
  context_.note(ZELK_ERR_MEANING, text);
  return 0;
}

void ObjectActions::data_variable(TokenText name, std::uint32_t size) {
  if (env_var_blk* variable = context_.index.variable(name.view())) {
    variable->type = ZELK_ENVVAR_DATA;
    variable->data_size = size;
  } else {
    context_.note(ZELK_ERR_ENVVAR_DATA, name.view());
  }
  context_.end_statement();
}

// --- Signal types ---

void ObjectActions::signal_type(const SignalTypeLine& line) {
  Owned<sigtype> type(zelk_create_sigtype());
  copy_inline(type->name, line.name.view());
  if (line.segment.length_bits > kLengthMax || line.segment.order > kOrderMax) {
    context_.fail(ZELK_ERR_SEGMENTATION, line.name.view());
  }
  type->length = static_cast<std::uint16_t>(line.segment.length_bits);
  set_flag(*type, ZELK_SIGNAL_MOTOROLA, line.segment.order == 0);
  set_flag(*type, ZELK_SIGNAL_SIGNED, line.is_signed);
  type->factor = line.factor_offset.first;
  type->offset = line.factor_offset.second;
  type->minimum = line.range.first;
  type->maximum = line.range.second;
  copy_inline(type->unit, line.unit.view());
  type->default_value = line.default_value;
  if (line.table.size > 0) type->valtable = &context_.table(line.table);
  context_.index.add(type.get());
  context_.types.append(type.release());
  context_.end_statement();
}

void ObjectActions::signal_type_value_type(TokenText name, std::uint32_t value_type) {
  context_.type(name).value_type = value_type;
  context_.end_statement();
}

/// Hosts know the numbers and texts of this statement's errors, which differ from those of the
/// others.
void ObjectActions::signal_type_reference(std::uint32_t id, TokenText signal_name,
                                          TokenText type_name) {
  const msgblk* message = context_.index.message(id);
  if (!message) context_.fail(ZELK_ERR_MEANING, "Msg &lu");
  sigblk* signal = context_.index.signal(*message, signal_name.view());
  if (!signal) context_.fail(ZELK_ERR_MEANING, signal_name.view());
  signal->sigtype = &context_.type(type_name);
  context_.end_statement();
}

// --- Categories ---

void ObjectActions::define_category(std::int64_t number, TokenText name, std::uint32_t level) {
  if (!std::in_range<std::int16_t>(number)) context_.fail(ZELK_ERR_MEANING, std::to_string(number));
  if (!std::in_range<std::uint16_t>(level)) context_.fail(ZELK_ERR_MEANING, std::to_string(level));
  Owned<cat> category(zelk_create_category());
  category->number = static_cast<std::int16_t>(number);
  category->level = static_cast<std::uint16_t>(level);
  copy_inline(category->name, name.view());
  context_.index.add(category.get());
  context_.categories.append(category.release());
  context_.end_statement();
}

/// Null for category 0, unless one with that number is defined.
cat* ObjectActions::category(std::int64_t number) const {
  cat* found = std::in_range<std::int16_t>(number)
                   ? context_.index.category(static_cast<std::int32_t>(number))
                   : nullptr;
  if (!found && number != 0) context_.fail(ZELK_ERR_UNKNOWN_CATEGORY, std::to_string(number));
  return found;
}

void ObjectActions::node_category(TokenText name, std::int64_t number) {
  if (symblk* node = context_.node(name)) node->category = category(number);
  context_.end_statement();
}

void ObjectActions::message_category(std::uint32_t id, std::int64_t number) {
  context_.message(id).category = category(number);
  context_.end_statement();
}

void ObjectActions::variable_category(TokenText name, std::int64_t number) {
  context_.variable(name).category = category(number);
  context_.end_statement();
}

// --- The view filter ---

void ObjectActions::filter(std::int64_t mode) {
  if (!std::in_range<std::int32_t>(mode)) context_.fail(ZELK_ERR_MEANING, std::to_string(mode));
  Owned<catlink> categories(filter_categories());
  Owned<rxblk> nodes(filter_nodes());
  filter_t& filter = context_.model.filter;
  release_list(std::exchange(filter.categories, categories.release()));
  release_list(std::exchange(filter.nodes, nodes.release()));
  filter.mode = static_cast<std::int32_t>(mode);
  filter_categories_.clear();
  filter_nodes_.clear();
  context_.end_statement();
}

catlink* ObjectActions::filter_categories() {
  PendingList<catlink> links;
  for (const std::int64_t number : filter_categories_) {
    links.push_back(create_category_link(category(number)));
  }
  return links.take();
}

rxblk* ObjectActions::filter_nodes() {
  PendingList<rxblk> links;
  for (const FilterNode& item : filter_nodes_) {
    if (item.is_quoted && item.text.view() != kNoFilterNode)
      context_.fail(ZELK_ERR_MEANING, item.text.view());
    symblk* node = item.is_quoted ? nullptr : context_.node(item.text);
    if (node || item.is_quoted) links.push_back(zelk_create_rx(node));
  }
  return links.take();
}

}  // namespace zelk
