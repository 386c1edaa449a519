#include "show/describe.hpp"

#include "term/text.hpp"
#include "words/attribute_words.hpp"
#include "words/record_words.hpp"

namespace zelk::tool {

namespace {

/// Runs `show` for each record of a list under a heading with their number; an empty list leaves no
/// trace.
template <typename Record, typename Show>
void section(Output& out, std::string_view heading, const Record* head, const Show& show) {
  if (!head) return;
  out.blank();
  out.line("{} ({})", heading, each(head).size());
  const Output::Indent indent(out);
  for (const Record& record : each(head)) show(record);
}

}  // namespace

Describer::Describer(EncodedDatabase database, Output& out)
    : database_(database.records),
      encoding_(database.encoding),
      out_(out),
      parameter_groups_(database.records) {}

std::string Describer::shown(std::string_view text) const {
  return escaped(to_utf8(text, encoding_));
}

std::string Describer::quoted(std::string_view text) const {
  return in_quotes(to_utf8(text, encoding_));
}

std::string Describer::unit(const char* text) const {
  return *text ? fmt::format(", unit {}", quoted(text)) : "";
}

void Describer::database(std::string_view path) const {
  out_.line("Database {}", escaped(path));
  {
    const Output::Indent indent(out_);
    if (!view(database_.user_data).empty())
      out_.line("version: {}", quoted(view(database_.user_data)));
    comment(database_.comment);
    for (const btlblk& timing : each(database_.bit_timings)) {
      out_.line("bit timing: baud rate {}, BTR1 0x{:02X}, BTR2 0x{:02X}", timing.baudrate,
                timing.btr1, timing.btr2);
    }
    attributes(database_.attr_values);
    filter();
  }
  section(out_, "Nodes", database_.nodes, [this](const symblk& record) { node(record); });
  section(out_, "Messages", database_.messages, [this](const msgblk& record) {
    if (&record != database_.messages) out_.blank();
    message(record);
  });
  section(out_, "Environment variables", database_.env_vars,
          [this](const env_var_blk& record) { env_var(record); });
  section(out_, "Value tables", database_.value_tables,
          [this](const valtable& record) { value_table(record); });
  section(out_, "Signal types", database_.signal_types,
          [this](const sigtype& record) { signal_type(record); });
  section(out_, "Attribute definitions", database_.attr_defs,
          [this](const attr_def& record) { definition(record); });
  section(out_, "Categories", database_.categories,
          [this](const cat& record) { category(record); });
}

void Describer::filter() const {
  const filter_t& filter = database_.filter;
  if (!filter.categories && !filter.nodes) return;
  std::string names;
  for (const catlink& link : each(filter.categories)) {
    if (!names.empty()) names += ", ";
    names += link.category ? shown(link.category->name) : "(no category)";
  }
  out_.line("filter {}: categories {}", filter.mode, names.empty() ? "none" : names);
  const Output::Indent indent(out_);
  nodes("nodes", filter.nodes);
}

void Describer::node(const symblk& node) const {
  out_.line("Node {}", shown(view(node.name)));
  const Output::Indent indent(out_);
  category_line(node.category);
  attributes(node.attrs);
  comment(node.comment);
}

void Describer::node_and_traffic(const symblk& node) const {
  Describer::node(node);
  const Output::Indent indent(out_);
  const auto is_it = [&node](const rxblk& link) { return link.node == &node; };
  const auto any = [&is_it](const rxblk* links) {
    for (const rxblk& link : each(links))
      if (is_it(link)) return true;
    return false;
  };
  for (const msgblk& message : each(database_.messages)) {
    if (message.transmitter == &node || any(message.tx_nodes))
      out_.line("sends {}, {}", shown(view(message.name)), shown_id(message.id));
  }
  for (const msgblk& message : each(database_.messages)) {
    for (const sigblk& signal : each(message.signals)) {
      if (any(signal.receivers))
        out_.line("receives {} of {}", shown(view(signal.name)), shown(view(message.name)));
    }
  }
  for (const env_var_blk& variable : each(database_.env_vars))
    if (any(variable.access_nodes)) out_.line("accesses {}", shown(view(variable.name)));
}

void Describer::env_var(const env_var_blk& variable) const {
  out_.line("Environment variable {}", shown(view(variable.name)));
  const Output::Indent indent(out_);
  if (variable.type == ZELK_ENVVAR_DATA) {
    out_.line("type: data, {}", counted(variable.data_size, "byte"));
  } else {
    out_.line("type: {}", env_var_type(variable.type));
  }
  out_.line("value: initially {}, range {} to {}{}", variable.initial, variable.minimum,
            variable.maximum, unit(variable.unit));
  out_.line("access: code 0x{:X}, id {}", variable.access_type, variable.id);
  nodes("access nodes", variable.access_nodes);
  category_line(variable.category);
  values(variable.values);
  attributes(variable.attrs);
  comment(variable.comment);
}

void Describer::value_table(const valtable& table) const {
  out_.line("Value table {}", shown(table.name));
  const Output::Indent indent(out_);
  values(table.values);
}

void Describer::definition(const attr_def& definition) const {
  out_.line("Attribute {} of {}: {}, default {}", quoted(definition.name), object_kind(definition),
            shown_type(definition, encoding_), shown_default(definition, encoding_));
}

void Describer::category(const cat& category) const {
  out_.line("Category {}: number {}, level {}", shown(category.name), category.number,
            category.level);
}

void Describer::comment(const char* text) const {
  std::string_view lead = "comment: ";
  for (const std::string& line : escaped_lines(to_utf8(view(text), encoding_))) {
    out_.line("{}{}", lead, line);
    lead = "         ";
  }
}

void Describer::category_line(const cat* category) const {
  if (category) out_.line("category: {} ({})", shown(category->name), category->number);
}

void Describer::attributes(const attr* values) const {
  for (const attr& value : each(values))
    out_.line("attribute {} = {}", quoted(value.def->name), shown_value(value, encoding_));
}

void Describer::values(const val* values) const {
  for (const val& value : each(values))
    out_.line("value {} = {}", value.value, quoted(view(value.text)));
}

void Describer::nodes(std::string_view role, const rxblk* links) const {
  if (!links) return;
  const auto name = [this](const rxblk& link) {
    return link.node ? shown(view(link.node->name)) : "(no node)";
  };
  std::string names;
  for (const rxblk& link : each(links)) names += (names.empty() ? "" : ", ") + name(link);
  out_.line("{}: {}", role, names);
  for (const rxblk& link : each(links)) {
    for (const attr& value : each(link.attrs)) {
      out_.line("attribute {} with {} = {}", quoted(value.def->name), name(link),
                shown_value(value, encoding_));
    }
  }
}

}  // namespace zelk::tool
