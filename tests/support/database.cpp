#include "support/database.hpp"

#include <gtest/gtest.h>

#include <array>
#include <charconv>
#include <cstdio>
#include <fstream>

TemporaryFile::TemporaryFile(std::string_view content) {
  const auto* test = testing::UnitTest::GetInstance()->current_test_info();
  path_ = std::string(test->test_suite_name()) + "." + test->name() + ".dbc";
  std::ofstream(path_, std::ios::binary) << content;
}

TemporaryFile::~TemporaryFile() { std::remove(path_.c_str()); }

Database::~Database() {
  zelk_free(nodes, messages, variables, timings, definitions, values, categories, &filter, comment,
            version, types, tables);
}

uint32_t Database::read(std::string_view content) {
  return read_file(TemporaryFile(content).path());
}

uint32_t Database::read_file(const char* path) {
  zelk_clear_error_text();
  const uint32_t number =
      zelk_try_read(path, &nodes, &messages, &variables, &timings, &definitions, &values,
                    &categories, &filter, &comment, &version, &types, &tables, slots);
  reported = zelk_get_error_text();
  return number;
}

namespace {

std::string number(double value) {
  std::array<char, 400> buffer;
  return {buffer.data(), std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr};
}

std::string number(uint32_t value) { return std::to_string(value); }

std::string quoted(const char* text) {
  std::string result = text ? '"' + std::string(text) + '"' : "null";
  for (char& c : result) c = c == '\n' ? '|' : c;
  return result;
}

std::string pair(double first, const char* between, double second) {
  return number(first) + between + number(second);
}

std::string attributes(const attr* list) {
  std::string result;
  for (; list; list = list->next) {
    const bool is_text = list->def->value_type == ZELK_ATTR_STRING;
    result += std::string(result.empty() ? " {" : " ") + list->def->name + "=" +
              (is_text ? quoted(list->value.text) : number(list->value.number));
  }
  return result.empty() ? result : result + "}";
}

std::string links(const rxblk* list) {
  std::string result = "[";
  for (; list; list = list->next) {
    result += std::string(result == "[" ? "" : ",") + (list->node ? list->node->name : "-") +
              attributes(list->attrs);
  }
  return result + "]";
}

std::string descriptions(const val* list) {
  std::string result;
  for (; list; list = list->next) result += ' ' + std::to_string(list->value) + quoted(list->text);
  return result;
}

std::string category(const cat* category) {
  return category ? std::string(" in ") + category->name : "";
}

/// What all objects can have.
template <typename Object>
std::string extras(const Object& object) {
  return attributes(object.attrs) + (object.comment ? " // " + quoted(object.comment) : "") + "\n";
}

template <typename Record>
uint32_t count(const Record* list) {
  uint32_t result = 0;
  for (; list; list = list->next) ++result;
  return result;
}

std::string describe(const sigblk& signal) {
  std::string result = std::string("signal ") + signal.name + " " + number(signal.start_bit * 1.0) +
                       "|" + number(signal.length * 1.0) + " flags " + number(signal.flags * 1.0) +
                       " (" + pair(signal.factor, ",", signal.offset) + ") [" +
                       pair(signal.minimum, "|", signal.maximum) + "] " + quoted(signal.unit) +
                       " to " + links(signal.receivers);
  if (signal.receiver_count != count(signal.receivers)) result += " receivers miscounted";
  if (signal.mux_signal) result += std::string(" by ") + signal.mux_signal->name;
  for (const auto* range = signal.mux_ranges; range; range = range->next) {
    result += " " + number(range->low) + "-" + number(range->high);
  }
  if (signal.value_type != 0) result += " value type " + number(signal.value_type);
  if (signal.sigtype) result += std::string(" type ") + signal.sigtype->name;
  return result + descriptions(signal.values) + extras(signal);
}

std::string describe(const msgblk& message) {
  std::string result = "message " + number(message.id) + " " + message.name + " " +
                       number(message.dlc * 1.0) + " from " +
                       (message.transmitter ? message.transmitter->name : "-") +
                       links(message.tx_nodes) + category(message.category);
  if (message.signal_count != count(message.signals)) result += " signals miscounted";
  result += extras(message);
  for (const auto* signal = message.signals; signal; signal = signal->next) {
    result += (signal->message == &message ? "" : "astray: ") + describe(*signal);
  }
  for (const auto* group = message.siggroups; group; group = group->next) {
    result += std::string("group ") + group->name + " x" + std::to_string(group->repetitions) +
              (group->message == &message ? "" : " astray");
    for (const auto* member = group->signals; member; member = member->next) {
      result += std::string(" ") + member->signal->name;
    }
    result += '\n';
  }
  return result;
}

std::string describe(const env_var_blk& variable) {
  return std::string("variable ") + variable.name + " type " + number(variable.type) + " [" +
         pair(variable.minimum, "|", variable.maximum) + "] " + quoted(variable.unit) + " " +
         number(variable.initial) + " id " + number(variable.id) + " access " +
         number(variable.access_type) + links(variable.access_nodes) +
         (variable.access_node_count == count(variable.access_nodes) ? "" : " miscounted") +
         (variable.data_size ? " size " + number(variable.data_size) : "") +
         category(variable.category) + descriptions(variable.values) + extras(variable);
}

std::string describe(const sigtype& type) {
  return std::string("type ") + type.name + " " + number(type.length * 1.0) + " flags " +
         number(type.flags * 1.0) + " (" + pair(type.factor, ",", type.offset) + ") [" +
         pair(type.minimum, "|", type.maximum) + "] " + quoted(type.unit) + " " +
         number(type.default_value) +
         (type.valtable ? std::string(" table ") + type.valtable->name : "") +
         (type.value_type ? " value type " + number(type.value_type) : "") + extras(type);
}

std::string describe(const attr_def& definition) {
  const int32_t type = definition.value_type;
  std::string result = std::string("definition ") + definition.name + " of " +
                       std::to_string(definition.object_type) + " ";
  if (type == ZELK_ATTR_STRING) return result + "STRING " + quoted(definition.default_value.text);
  if (type == ZELK_ATTR_ENUM) {
    return result + "ENUM " + quoted(definition.enum_values) + " " +
           quoted(definition.default_value.text);
  }
  result += type == ZELK_ATTR_INT ? "INT" : type == ZELK_ATTR_HEX ? "HEX" : "FLOAT";
  return result + " [" + pair(definition.minimum, "|", definition.maximum) + "] " +
         number(definition.default_value.number);
}

std::string describe(const filter_t& filter) {
  if (!filter.categories && !filter.nodes && filter.mode == 0) return "";
  std::string result = "filter " + std::to_string(filter.mode);
  for (const auto* link = filter.categories; link; link = link->next) {
    result += std::string(" ") + (link->category ? link->category->name : "-");
  }
  return result + " " + links(filter.nodes) + "\n";
}

}  // namespace

std::string describe(const Database& database) {
  std::string result;
  if (*database.version != '\0') result += "version " + quoted(database.version) + "\n";
  if (database.comment) result += "comment " + quoted(database.comment) + "\n";
  if (database.values) result += "network" + attributes(database.values) + "\n";
  for (const auto* timing = database.timings; timing; timing = timing->next) {
    result += "timing " + number(timing->baudrate * 1.0) + ":" + number(timing->btr1 * 1.0) + "," +
              number(timing->btr2 * 1.0) + "\n";
  }
  for (const auto* node = database.nodes; node; node = node->next) {
    result += std::string("node ") + node->name + category(node->category) + extras(*node);
  }
  for (const auto* table = database.tables; table; table = table->next) {
    result += std::string("table ") + table->name + descriptions(table->values) + "\n";
  }
  for (const auto* message = database.messages; message; message = message->next) {
    result += describe(*message);
  }
  for (const auto* item = database.variables; item; item = item->next) result += describe(*item);
  for (const auto* item = database.types; item; item = item->next) result += describe(*item);
  for (const auto* definition = database.definitions; definition; definition = definition->next) {
    result += describe(*definition) + "\n";
  }
  for (const auto* category = database.categories; category; category = category->next) {
    result += "category " + std::to_string(category->number) + " " + category->name + " " +
              number(category->level * 1.0) + "\n";
  }
  return result + describe(database.filter);
}
