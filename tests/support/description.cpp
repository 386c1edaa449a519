#include "support/description.hpp"

#include <algorithm>
#include <charconv>
#include <concepts>
#include <iterator>

#include "base/list.hpp"

namespace {

std::string in_one_line(std::string text) {
  std::replace(text.begin(), text.end(), '\n', '|');
  return text;
}

std::string quoted(const char* text) { return text ? '"' + in_one_line(text) + '"' : "null"; }

/// What stands in for a record that a link does not have.
template <typename Record>
std::string name_of(const Record* record) {
  return record ? record->name : "-";
}

/// One database as text. Each record's line ends with what all objects can have.
struct Description {
  std::string out;
  int digits;

  void add_one(const char* text) { out += text ? text : "null"; }
  void add_one(const std::string& text) { out += text; }
  void add_one(double number) {
    char text[32];
    out.append(text,
               std::to_chars(text, std::end(text), number, std::chars_format::general, digits).ptr);
  }
  template <std::integral Number>
  void add_one(Number number) {
    out += std::to_string(number);
  }

  template <typename... Parts>
  void add(const Parts&... parts) {
    (add_one(parts), ...);
  }

  void attributes(const attr* list) {
    for (const attr& value : zelk::each(list)) {
      add(&value == list ? " {" : " ", name_of(value.def), "=");
      if (!value.def) continue;
      if (value.def->value_type == ZELK_ATTR_STRING) add(quoted(value.value.text));
      if (value.def->value_type != ZELK_ATTR_STRING) add(value.value.number);
    }
    if (list) add("}");
  }

  void links(const rxblk* list) {
    add("[");
    for (const rxblk& link : zelk::each(list)) {
      add(&link == list ? "" : ",", name_of(link.node));
      attributes(link.attrs);
    }
    add("]");
  }

  void descriptions(const val* list) {
    for (const val& value : zelk::each(list)) add(" ", value.value, quoted(value.text));
  }

  template <typename Record>
  void miscounted(const Record* list, std::size_t count) {
    if (zelk::each(list).size() != count) add(" miscounted");
  }

  template <typename Object>
  void end(const Object& object) {
    if constexpr (requires { object.category; }) {
      if (object.category) add(" in ", object.category->name);
    }
    attributes(object.attrs);
    if (object.comment) add(" // ", quoted(object.comment));
    add("\n");
  }

  template <typename Layout>  // of a signal or type
  void layout(const Layout& layout) {
    add(layout.length, " flags ", layout.flags, " (", layout.factor, ",", layout.offset, ") [",
        layout.minimum, "|", layout.maximum, "] ", quoted(layout.unit));
  }

  void record(const symblk& node) {
    add("node ", node.name);
    end(node);
  }

  void record(const sigblk& signal) {
    add("signal ", signal.name, " ", signal.start_bit, "|");
    layout(signal);
    add(" to ");
    links(signal.receivers);
    miscounted(signal.receivers, signal.receiver_count);
    if (signal.mux_signal) add(" by ", signal.mux_signal->name);
    for (const auto& range : zelk::each(signal.mux_ranges)) add(" ", range.low, "-", range.high);
    if (signal.value_type != 0) add(" value type ", signal.value_type);
    if (signal.sigtype) add(" type ", signal.sigtype->name);
    descriptions(signal.values);
    end(signal);
  }

  void record(const msgblk& message) {
    add("message ", message.id, " ", message.name, " ", message.dlc, " from ",
        name_of(message.transmitter));
    links(message.tx_nodes);
    miscounted(message.signals, message.signal_count);
    end(message);
    for (const auto& signal : zelk::each(message.signals)) {
      if (signal.message != &message) add("astray: ");
      record(signal);
    }
    for (const auto& group : zelk::each(message.siggroups)) {
      add(group.message == &message ? "group " : "astray: ", group.name, " x", group.repetitions);
      for (const auto& member : zelk::each(group.signals)) add(" ", member.signal->name);
      add("\n");
    }
  }

  void record(const env_var_blk& variable) {
    add("variable ", variable.name, " type ", variable.type, " [", variable.minimum, "|",
        variable.maximum, "] ", quoted(variable.unit), " ", variable.initial, " id ", variable.id,
        " access ", variable.access_type);
    links(variable.access_nodes);
    miscounted(variable.access_nodes, variable.access_node_count);
    if (variable.data_size != 0) add(" size ", variable.data_size);
    descriptions(variable.values);
    end(variable);
  }

  void record(const sigtype& type) {
    add("type ", type.name, " ");
    layout(type);
    add(" ", type.default_value);
    if (type.valtable) add(" table ", type.valtable->name);
    if (type.value_type != 0) add(" value type ", type.value_type);
    end(type);
  }

  void record(const attr_def& definition) {
    const char* const types[] = {"INT", "FLOAT", "STRING", "ENUM", "HEX", "none"};
    const int32_t type = definition.value_type;
    const char* const type_word = types[type < 0 || type > ZELK_ATTR_HEX ? 5 : type];
    add("definition ", in_one_line(definition.name), " of ", definition.object_type, " ", type_word,
        " ");
    if (type == ZELK_ATTR_ENUM) add(quoted(definition.enum_values), " ");
    if (type == ZELK_ATTR_ENUM || type == ZELK_ATTR_STRING) {
      add(quoted(definition.default_value.text), "\n");
    } else {
      add("[", definition.minimum, "|", definition.maximum, "] ", definition.default_value.number,
          "\n");
    }
  }

  void record(const btlblk& timing) {
    add("timing ", timing.baudrate, ":", int{timing.btr1}, ",", int{timing.btr2}, "\n");
  }

  void record(const valtable& table) {
    add("table ", table.name);
    descriptions(table.values);
    add("\n");
  }

  void record(const cat& category) {
    add("category ", category.number, " ", category.name, " ", category.level, "\n");
  }

  template <typename Record>
  void list(const Record* head) {
    for (const Record& one : zelk::each(head)) record(one);
  }
};

}  // namespace

std::string describe(const zelk::ModelView& model, int digits) {
  Description text{{}, digits};
  if (model.version && *model.version != '\0') text.add("version ", quoted(model.version), "\n");
  if (model.comment) text.add("comment ", quoted(model.comment), "\n");
  if (model.net_attrs) text.add("network");
  text.attributes(model.net_attrs);
  if (model.net_attrs) text.add("\n");
  text.list(model.bit_timings);
  text.list(model.nodes);
  text.list(model.val_tables);
  text.list(model.messages);
  text.list(model.env_vars);
  text.list(model.sig_types);
  text.list(model.attr_defs);
  text.list(model.categories);
  const filter_t& filter = model.filter;
  if (!filter.categories && !filter.nodes && filter.mode == 0) return text.out;
  text.add("filter ", filter.mode);
  for (const auto& link : zelk::each(filter.categories)) text.add(" ", name_of(link.category));
  text.add(" ");
  text.links(filter.nodes);
  return text.out + "\n";
}
