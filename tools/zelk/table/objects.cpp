#include "table/objects.hpp"

#include <fmt/format.h>

#include <iterator>
#include <sstream>
#include <string>

#include "input/attributes.hpp"
#include "show/describe.hpp"
#include "show/layouts.hpp"
#include "table/attribute_cells.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

/// A description of a raw value, with what it belongs to.
struct Description {
  const char* name;       // of the signal or environment variable
  const msgblk* message;  // null for an environment variable
  const val* record;
};

/// A value of an attribute, with the object that has it.
struct AttributeValue {
  const char* name;  // of the attribute
  const attr* record;
  std::string_view type;
  const msgblk* message;  // null for none
  const char* object;     // null for the database and for a message, which `message` names
  const symblk* partner;  // the node of a relation; null for none
};

template <typename Record>
struct Column {
  std::string_view heading;
  Cell (*value)(const Record&);
};

// --- Values that several kinds have ---

template <typename Record>
Cell name_of(const Record& record) {
  return text(view(record.name));
}

template <typename Record>
Cell message_of(const Record& record) {
  return record.message ? text(record.message->name) : none();
}

template <typename Record>
Cell category_of(const Record& record) {
  return record.category ? text(record.category->name) : none();
}

template <typename Record>
Cell length_of(const Record& record) {
  return number(record.length);
}

template <typename Record>
Cell order_of(const Record& record) {
  return text(record.flags & ZELK_SIGNAL_MOTOROLA ? "Motorola" : "Intel");
}

template <typename Record>
Cell number_format_of(const Record& record) {
  return text(number_format(record.flags, record.value_type));
}

template <typename Record>
Cell factor_of(const Record& record) {
  return number(record.factor);
}

template <typename Record>
Cell offset_of(const Record& record) {
  return number(record.offset);
}

template <typename Record>
Cell minimum_of(const Record& record) {
  return number(record.minimum);
}

template <typename Record>
Cell maximum_of(const Record& record) {
  return number(record.maximum);
}

template <typename Record>
Cell unit_of(const Record& record) {
  return text(record.unit);
}

// --- Values of one kind ---

Cell id_of(const msgblk& message) {
  const bool is_extended = message.id & ZELK_ID_EXTENDED;
  return hexadecimal(message.id & ~ZELK_ID_EXTENDED, is_extended ? 8 : 3);
}

Cell transmitters_of(const msgblk& message) {
  Cell names{Json::array()};
  if (message.transmitter) names.value.push_back(view(message.transmitter->name));
  for (const rxblk& link : each(message.tx_nodes))
    if (link.node && link.node != message.transmitter) names.value.push_back(view(link.node->name));
  return names;
}

Cell members_of(const siggroupblk& group) {
  Cell names{Json::array()};
  for (const siglistblk& member : each(group.signals))
    names.value.push_back(view(member.signal->name));
  return names;
}

std::string_view value_type_of(const attr_def& definition) {
  switch (definition.value_type) {
    case ZELK_ATTR_INT:
      return "INT";
    case ZELK_ATTR_FLOAT:
      return "FLOAT";
    case ZELK_ATTR_STRING:
      return "STRING";
    case ZELK_ATTR_ENUM:
      return "ENUM";
    default:
      return "HEX";
  }
}

bool has_range(const attr_def& definition) {
  return definition.value_type != ZELK_ATTR_STRING && definition.value_type != ZELK_ATTR_ENUM;
}

Cell items_of(const attr_def& definition) {
  if (definition.value_type != ZELK_ATTR_ENUM) return none();
  Cell items{Json::array()};
  if (!definition.enum_values) return items;
  std::string_view rest = definition.enum_values;
  for (std::size_t end; (end = rest.find('\n')) != rest.npos; rest.remove_prefix(end + 1))
    items.value.push_back(rest.substr(0, end));
  items.value.push_back(rest);
  return items;
}

// --- The columns ---

constexpr Column<symblk> kNodeColumns[] = {
    {"name", name_of},
    {"category", category_of},
};

constexpr Column<msgblk> kMessageColumns[] = {
    {"name", name_of},
    {"id", id_of},
    {"format", [](const msgblk& m) { return text(m.id & ZELK_ID_EXTENDED ? "29-bit" : "11-bit"); }},
    {"dlc", [](const msgblk& m) { return number(m.dlc); }},
    {"signals",
     [](const msgblk& m) { return number(static_cast<double>(each(m.signals).size())); }},
    {"category", category_of},
    {"transmitters", transmitters_of},
};

constexpr Column<sigblk> kSignalColumns[] = {
    {"message", message_of},
    {"name", name_of},
    {"start", [](const sigblk& s) { return number(s.start_bit); }},
    {"length", length_of},
    {"order", order_of},
    {"type", number_format_of},
    {"factor", factor_of},
    {"offset", offset_of},
    {"min", minimum_of},
    {"max", maximum_of},
    {"unit", unit_of},
    {"multiplexor",
     [](const sigblk& s) { return yes_or_no((s.flags & ZELK_SIGNAL_MULTIPLEXOR) != 0); }},
    {"selected_by",
     [](const sigblk& s) { return s.mux_signal ? text(s.mux_signal->name) : none(); }},
    {"selected_for",
     [](const sigblk& s) { return s.mux_ranges ? text(presence_values(s)) : none(); }},
    {"receivers", [](const sigblk& s) { return node_names(s.receivers); }},
    {"signal_type", [](const sigblk& s) { return s.sigtype ? text(s.sigtype->name) : none(); }},
};

constexpr Column<env_var_blk> kVariableColumns[] = {
    {"name", name_of},
    {"id", [](const env_var_blk& v) { return number(v.id); }},
    {"type", [](const env_var_blk& v) { return text(env_var_type(v.type)); }},
    {"min", minimum_of},
    {"max", maximum_of},
    {"initial", [](const env_var_blk& v) { return number(v.initial); }},
    {"unit", unit_of},
    {"bytes",
     [](const env_var_blk& v) {
       return v.type == ZELK_ENVVAR_DATA ? number(v.data_size) : none();
     }},
    {"access", [](const env_var_blk& v) { return hexadecimal(v.access_type, 1); }},
    {"category", category_of},
    {"nodes", [](const env_var_blk& v) { return node_names(v.access_nodes); }},
};

constexpr Column<valtable> kTableColumns[] = {
    {"name", name_of},
    {"values", [](const valtable& t) { return value_descriptions(t.values); }},
};

constexpr Column<sigtype> kTypeColumns[] = {
    {"name", name_of},
    {"length", length_of},
    {"order", order_of},
    {"type", number_format_of},
    {"factor", factor_of},
    {"offset", offset_of},
    {"min", minimum_of},
    {"max", maximum_of},
    {"unit", unit_of},
    {"default", [](const sigtype& t) { return number(t.default_value); }},
    {"table", [](const sigtype& t) { return t.valtable ? text(t.valtable->name) : none(); }},
};

constexpr Column<siggroupblk> kGroupColumns[] = {
    {"message", message_of},
    {"name", name_of},
    {"repetitions", [](const siggroupblk& g) { return number(g.repetitions); }},
    {"signals", members_of},
};

constexpr Column<cat> kCategoryColumns[] = {
    {"name", name_of},
    {"number", [](const cat& c) { return number(c.number); }},
    {"level", [](const cat& c) { return number(c.level); }},
};

constexpr Column<attr_def> kAttributeColumns[] = {
    {"name", name_of},
    {"object", [](const attr_def& d) { return text(object_kind(d)); }},
    {"type", [](const attr_def& d) { return text(value_type_of(d)); }},
    {"min", [](const attr_def& d) { return has_range(d) ? number(d.minimum) : none(); }},
    {"max", [](const attr_def& d) { return has_range(d) ? number(d.maximum) : none(); }},
    {"default", default_cell},
    {"items", items_of},
};

constexpr Column<AttributeValue> kValueColumns[] = {
    {"name", name_of},
    {"value", [](const AttributeValue& v) { return value_cell(*v.record); }},
    {"type", [](const AttributeValue& v) { return text(v.type); }},
    {"message", message_of},
    {"object", [](const AttributeValue& v) { return v.object ? text(v.object) : none(); }},
    {"node", [](const AttributeValue& v) { return v.partner ? name_of(*v.partner) : none(); }},
};

constexpr Column<Description> kDescriptionColumns[] = {
    {"message", message_of},
    {"name", name_of},
    {"value", [](const Description& d) { return number(d.record->value); }},
    {"text", [](const Description& d) { return text(d.record->text); }},
};

// --- The objects ---

template <typename Record>
Object object_of(const Record& record) {
  Object object{&record, view(record.name)};
  if constexpr (requires { record.message; }) object.owner = record.message;
  if constexpr (requires { record.comment; }) object.comment = record.comment;
  if constexpr (requires { record.attrs; }) object.attributes = record.attrs;
  if constexpr (requires { record.values; }) object.values = record.values;
  if constexpr (requires { record.tx_nodes; }) object.links = record.tx_nodes;
  if constexpr (requires { record.receivers; }) object.links = record.receivers;
  if constexpr (requires { record.access_nodes; }) object.links = record.access_nodes;
  return object;
}

/// Visits a list of the database.
template <typename Record>
auto objects_in(Record* ZelkDatabase::*list) {
  return [list](const ZelkDatabase& database, const VisitObject& visit) {
    for (const Record& record : each<Record>(database.*list)) visit(object_of(record));
  };
}

/// Visits a list of each message.
template <typename Record>
auto objects_in(Record* msgblk::*list) {
  return [list](const ZelkDatabase& database, const VisitObject& visit) {
    for (const msgblk& message : each(database.messages))
      for (const Record& record : each<Record>(message.*list)) visit(object_of(record));
  };
}

void visit_descriptions(const ZelkDatabase& database, const VisitObject& visit) {
  for (const msgblk& message : each(database.messages)) {
    for (const sigblk& signal : each(message.signals)) {
      for (const val& value : each(signal.values))
        visit(object_of(Description{signal.name, &message, &value}));
    }
  }
  for (const env_var_blk& variable : each(database.env_vars)) {
    for (const val& value : each(variable.values))
      visit(object_of(Description{variable.name, nullptr, &value}));
  }
}

/// Visits the attribute values of objects.
class ValueVisitor {
 public:
  explicit ValueVisitor(const VisitObject& visit) : visit_(visit) {}

  void database(const ZelkDatabase& database) const {
    values(database.attr_values, nullptr, nullptr);
    for (const symblk& node : each(database.nodes)) values(node.attrs, nullptr, node.name);
    for (const msgblk& message : each(database.messages)) {
      values(message.attrs, &message, nullptr);
      relations(message.tx_nodes, &message, nullptr);
      for (const sigblk& signal : each(message.signals)) {
        values(signal.attrs, &message, signal.name);
        relations(signal.receivers, &message, signal.name);
      }
    }
    for (const env_var_blk& variable : each(database.env_vars)) {
      values(variable.attrs, nullptr, variable.name);
      relations(variable.access_nodes, nullptr, variable.name);
    }
    for (const sigtype& type : each(database.signal_types)) values(type.attrs, nullptr, type.name);
  }

 private:
  void values(const attr* list, const msgblk* message, const char* object,
              const symblk* partner = nullptr) const {
    for (const attr& value : each(list)) {
      visit_(object_of(AttributeValue{value.def->name, &value, object_kind(*value.def), message,
                                      object, partner}));
    }
  }

  void relations(const rxblk* links, const msgblk* message, const char* object) const {
    for (const rxblk& link : each(links)) values(link.attrs, message, object, link.node);
  }

  const VisitObject& visit_;
};

void visit_values(const ZelkDatabase& database, const VisitObject& visit) {
  ValueVisitor(visit).database(database);
}

template <typename Record, std::size_t count, typename ForEach>
ObjectKind make_kind(std::string_view plural, std::string_view singular,
                     std::optional<zelk_obj_t> attribute_type,
                     const Column<Record> (&columns)[count], const ForEach& for_each) {
  constexpr bool kIsNamed = !requires(Record record) { record.record; };
  constexpr bool kHasComments = requires(Record record) { record.comment; };
  ObjectKind kind{plural, singular, kIsNamed, kHasComments, attribute_type, {}, {}, {}};
  for (const Column<Record>& column : columns) kind.headings.push_back(column.heading);
  kind.cell = [&columns](const Object& object, std::size_t column) {
    return in_utf8(columns[column].value(*static_cast<const Record*>(object.record)),
                   object.encoding);
  };
  kind.for_each = [for_each](EncodedDatabase database, const VisitObject& visit) {
    for_each(database.records, [&](Object object) {
      object.encoding = database.encoding;
      visit(object);
    });
  };
  return kind;
}

}  // namespace

std::string Object::owner_text() const {
  return owner ? to_utf8(view(owner->name), encoding) : std::string();
}

void ObjectKind::append_cells(const Object& object, std::vector<Cell>& cells) const {
  for (std::size_t i = 0; i < headings.size(); ++i) cells.push_back(cell(object, i));
}

std::span<const ObjectKind> object_kinds() {
  static const ObjectKind kinds[] = {
      make_kind("nodes", "node", ZELK_OBJ_NODE, kNodeColumns, objects_in(&ZelkDatabase::nodes)),
      make_kind("messages", "message", ZELK_OBJ_MESSAGE, kMessageColumns,
                objects_in(&ZelkDatabase::messages)),
      make_kind("signals", "signal", ZELK_OBJ_SIGNAL, kSignalColumns, objects_in(&msgblk::signals)),
      make_kind("groups", "signal group", {}, kGroupColumns, objects_in(&msgblk::siggroups)),
      make_kind("variables", "environment variable", ZELK_OBJ_ENVVAR, kVariableColumns,
                objects_in(&ZelkDatabase::env_vars)),
      make_kind("tables", "value table", {}, kTableColumns,
                objects_in(&ZelkDatabase::value_tables)),
      make_kind("types", "signal type", ZELK_OBJ_SIGTYPE, kTypeColumns,
                objects_in(&ZelkDatabase::signal_types)),
      make_kind("categories", "category", {}, kCategoryColumns,
                objects_in(&ZelkDatabase::categories)),
      make_kind("attributes", "attribute", {}, kAttributeColumns,
                objects_in(&ZelkDatabase::attr_defs)),
      make_kind("values", "attribute value", {}, kValueColumns, visit_values),
      make_kind("descriptions", "value description", {}, kDescriptionColumns, visit_descriptions),
  };
  return kinds;
}

}  // namespace zelk::tool
