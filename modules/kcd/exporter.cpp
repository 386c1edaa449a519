// Writes a database as the only bus of a file in KCD.

#include <cmath>
#include <filesystem>
#include <optional>
#include <set>
#include <string>

#include "base/encoding.hpp"
#include "common/file.hpp"
#include "common/module.hpp"
#include "common/records.hpp"
#include "kcd/converter.hpp"
#include "kcd/format.hpp"
#include "kcd/left_out.hpp"
#include "kcd/message_export.hpp"
#include "kcd/text_output.hpp"

namespace zelk::modules::kcd {
namespace {

bool is_text(const attr_def& definition) { return definition.value_type == ZELK_ATTR_STRING; }

/// The definition of an attribute; null when the first one of its name has another type.
const attr_def* find_definition(const attr_def* definitions, const KcdAttribute& attribute) {
  const attr_def* const found = find_first(definitions, [&attribute](const attr_def& definition) {
    return definition.object_type == attribute.object_type &&
           view(definition.name) == attribute.name;
  });
  const bool is_of_type = found && is_text(*found) == (attribute.value_type == ZELK_ATTR_STRING) &&
                          found->value_type != ZELK_ATTR_ENUM;
  return is_of_type ? found : nullptr;
}

const attr* find_value(const attr* values, const attr_def* definition) {
  if (!definition) return nullptr;
  return find_first(values, [definition](const attr& value) { return value.def == definition; });
}

/// The whole number that an object has for a definition; none for a number that KCD cannot hold,
/// and for the default 0, which says nothing.
std::optional<std::int32_t> number_of(const attr* value, const attr_def* definition) {
  if (!definition) return std::nullopt;
  const double number = value ? value->value.number : definition->default_value.number;
  if (!(number >= 0 && number <= kMaxAttribute) || number != std::floor(number)) {
    return std::nullopt;
  }
  if (!value && number == 0) return std::nullopt;
  return static_cast<std::int32_t>(number);
}

/// Writes the value that `values` has for a definition, or else the default, as an attribute.
///
/// @return number of values that became attributes
std::uint64_t append_number(pugi::xml_node element, const char* tag, const attr* values,
                            const attr_def* definition) {
  const attr* const value = find_value(values, definition);
  const std::optional<std::int32_t> number = number_of(value, definition);
  if (number) append_attribute(element, tag, std::to_string(*number));
  return value && number ? 1 : 0;
}

class Export {
 public:
  Export(const Database& database, std::string_view option)
      : database_(database), option_(option) {}

  void write(const char* file);

 private:
  void append_document(pugi::xml_node root) const;
  void append_nodes(pugi::xml_node root);
  void append_bus(pugi::xml_node root, const char* file);
  void append_messages(pugi::xml_node bus);
  std::string bus_name(const char* file) const;
  void count_left_out();

  const Database& database_;
  const std::string_view option_;  ///< name of the bus; empty: none in particular
  const attr_def* bus_name_ = find_definition(database_.attr_defs, kBusName);
  const attr_def* baudrate_ = find_definition(database_.attr_defs, kBaudrate);
  const attr_def* interval_ = find_definition(database_.attr_defs, kInterval);
  pugi::xml_document document_;
  LeftOut left_out_;
  NodeIds ids_;
};

void Export::write(const char* file) {
  pugi::xml_node declaration = document_.append_child(pugi::node_declaration);
  append_attribute(declaration, "version", "1.0");
  append_attribute(declaration, "encoding", "UTF-8");
  pugi::xml_node root = append_child(document_, "NetworkDefinition");
  append_attribute(root, "xmlns", kNamespace);
  append_document(root);
  append_nodes(root);
  append_bus(root, file);
  count_left_out();
  const std::string content = to_xml(document_, left_out_);
  left_out_.note();
  write_new_file(file, content);  // last: what fails before it leaves no file behind
}

void Export::append_document(pugi::xml_node root) const {
  append_text(root, "Document", database_.comment);
  if (!root.first_child()) append_child(root, "Document");
  const std::string_view version = view(database_.version_text);
  if (version.empty()) return;
  append_attribute(root.first_child(), "version", version);
}

void Export::append_nodes(pugi::xml_node root) {
  for (const symblk& node : each(database_.nodes.get())) {
    const std::string id = std::to_string(ids_.size() + 1);
    ids_.emplace(&node, id);
    pugi::xml_node element = append_child(root, "Node");
    append_attribute(element, "id", id);
    append_attribute(element, "name", view(node.name));
    if (!view(node.comment).empty()) left_out_.add("node comment");
    left_out_.add("attribute value", "", each(node.attrs).size());
  }
}

std::string Export::bus_name(const char* file) const {
  if (!option_.empty()) return std::string(option_);
  if (bus_name_) {
    const attr* const value = find_value(database_.attr_values, bus_name_);
    const std::string_view name = view(value ? value->value.text : bus_name_->default_value.text);
    if (!name.empty()) return std::string(name);
  }
  return std::filesystem::path(file).stem().string();
}

void Export::append_bus(pugi::xml_node root, const char* file) {
  pugi::xml_node bus = append_child(root, "Bus");
  append_attribute(bus, "name", bus_name(file));
  const std::uint64_t names = find_value(database_.attr_values, bus_name_) ? 1 : 0;
  const std::uint64_t taken =
      names + append_number(bus, "baudrate", database_.attr_values, baudrate_);
  left_out_.add("attribute value", "", each(database_.attr_values.get()).size() - taken);
  append_messages(bus);
}

void Export::append_messages(pugi::xml_node bus) {
  std::set<std::uint32_t> ids;
  for (const msgblk& message : each(database_.messages.get())) {
    const char* reason = obstacle(message);
    const bool is_doubled = !reason && !ids.insert(message.id).second;
    if (is_doubled) reason = " with the identifier of another one";
    if (reason) {
      left_out_.add("message", reason);
      continue;
    }
    pugi::xml_node element = MessageExport(message, ids_, left_out_).append_to(bus);
    const std::uint64_t taken = append_number(element, "interval", message.attrs, interval_);
    left_out_.add("attribute value", "", each(message.attrs).size() - taken);
  }
}

void Export::count_left_out() {
  left_out_.add("environment variable", "", each(database_.env_vars.get()).size());
  left_out_.add("bit timing", "", each(database_.bit_timings.get()).size());
  left_out_.add("category definition", "", each(database_.categories.get()).size());
  left_out_.add("signal type", "", each(database_.signal_types.get()).size());
  left_out_.add("value table", "", each(database_.value_tables.get()).size());
  const filter_t& filter = database_.filter;
  if (filter.categories || filter.nodes) left_out_.add("view filter");
  for (const attr_def& definition : each(database_.attr_defs.get())) {
    const bool is_taken =
        &definition == bus_name_ || &definition == baudrate_ || &definition == interval_;
    if (!is_taken) left_out_.add("attribute definition");
  }
}

}  // namespace

void export_file(const char* file, const Database& database, std::string_view option) {
  Export(database, option).write(file);
}

}  // namespace zelk::modules::kcd
