#include "check/objects/objects.hpp"

#include "base/list.hpp"
#include "check/objects/attribute_words.hpp"
#include "check/objects/columns.hpp"

namespace zelk::check {

namespace {

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
    return in_utf8(columns[column].value(*object.as<Record>()), object.encoding);
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

Cell Object::comment_cell() const { return comment ? in_utf8(text(comment), encoding) : none(); }

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
      make_kind("attributes", "attribute", {}, kDefinitionColumns,
                objects_in(&ZelkDatabase::attr_defs)),
      make_kind("values", "attribute value", {}, kValueColumns, visit_values),
      make_kind("descriptions", "value description", {}, kDescriptionColumns, visit_descriptions),
  };
  return kinds;
}

}  // namespace zelk::check
