/// Records put into the lists of a `Database` one by one, and the text that is written from it.
#ifndef ZELK_TESTS_SUPPORT_BUILDING_HPP
#define ZELK_TESTS_SUPPORT_BUILDING_HPP

#include <vector>

#include "base/list.hpp"
#include "model/memory.hpp"
#include "support/database.hpp"
#include "support/files.hpp"
#include "writer/read_back.hpp"

inline void set(char*& field, std::string_view content) {
  zelk::assign_text(field, zelk::copy_text(content));
}

/// Cuts a content that does not fit.
template <std::size_t kSize>
void set(char (&field)[kSize], std::string_view content) {
  field[content.copy(field, kSize - 1)] = '\0';
}

template <typename Record>
Record* append(Record*& list, Record* record) {
  return zelk::end_of(list) = record;
}

template <typename Record>
std::vector<Record*> records_of(Record* head) {
  std::vector<Record*> records;
  for (Record& record : zelk::each(head)) records.push_back(&record);
  return records;
}

template <typename Object>
Object* append_named(Object*& list, Object* object, std::string_view name) {
  set(object->name, name);
  return append(list, object);
}

inline sigblk* add_signal(msgblk* message, std::string_view name) {
  sigblk* const signal = append_named(message->signals, zelk_create_sigblk(), name);
  signal->message = message;
  ++message->signal_count;
  return signal;
}

inline attr_def* add_definition(Database& database, int32_t kind, std::string_view name,
                                int32_t type, std::string_view items = "",
                                std::string_view default_text = "") {
  attr_def* const definition = append_named(database.definitions, zelk_create_attr_def(), name);
  definition->object_type = kind;
  definition->value_type = type;
  if (type == ZELK_ATTR_ENUM) set(definition->enum_values, items);
  if (type != ZELK_ATTR_ENUM && type != ZELK_ATTR_STRING) return definition;
  set(definition->default_value.text, default_text);
  return definition;
}

inline attr* add_value(attr*& list, attr_def* definition) {
  attr* const value = append(list, zelk::create_record<attr>());
  value->def = definition;
  return value;
}

inline void add_description(val*& list, int32_t value, std::string_view text) {
  val* const description = append(list, zelk_create_value());
  description->value = value;
  set(description->text, text);
}

inline void add_range(sigblk* signal, uint32_t low, uint32_t high) {
  muxor_val_range* const range = append(signal->mux_ranges, zelk_create_muxor_value_range());
  range->low = low;
  range->high = high;
}

inline uint32_t write_to(const char* path, const Database& d, uint8_t with_ranges = 1) {
  return d.write(path, with_ranges);
}

/// What keeps a file from giving the database back; empty when nothing does.
inline std::string fault_of(const Database& d) {
  return zelk::read_back_fault(view_of(d)).value_or("");
}

/// What a write makes of a file with another content.
inline std::string written(const Database& database, uint8_t with_ranges = 1) {
  const TemporaryFile file("what was there before");
  return write_to(file.path(), database, with_ranges) == 0 ? content_of(file.path()) : "error";
}

#endif
