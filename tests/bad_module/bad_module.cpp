// A converter module full of faults: each function fails, or fills the lists with wrong records.

#include <cmath>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <utility>

#include "zelk/module.h"

namespace {

/// Puts a zero-filled record in front of a list.
template <typename Record>
Record& add(Record*& list) {
  auto* const rest = std::exchange(list, static_cast<Record*>(zelk_malloc(sizeof(Record))));
  list->next = rest;
  return *list;
}

char* copy(const char* text) {
  return std::strcpy(static_cast<char*>(zelk_malloc(std::strlen(text) + 1)), text);
}

template <std::size_t kSize>
void overfill(char (&name)[kSize]) {
  std::memset(name, 'x', kSize);
}

void add_values(attr*& list, attr_def* definition) {
  static attr_def stray = {};
  add(list);  // without a definition
  add(list).def = &stray;
  attr& value = add(list);
  value.def = definition;
  value.value.number = std::numeric_limits<double>::infinity();
}

void add_definitions(attr_def*& list) {
  for (int type = -1; type < 7; ++type) {
    attr_def& definition = add(list);
    definition.object_type = type * 1000;
    definition.value_type = type;
    overfill(definition.name);
  }
  attr_def& long_name = add(list);
  long_name.object_type = ZELK_OBJ_SIGNAL;
  std::strcpy(long_name.name, "SystemSignalLongSymbol");
}

void add_signal(msgblk& message, attr_def* definition) {
  sigblk& signal = add(message.signals);
  signal.mux_signal = &signal;
  signal.value_type = 77;
  signal.flags = signal.length = signal.start_bit = 0xFFFF;
  signal.factor = std::nan("");
  overfill(signal.unit);
  signal.receiver_count = 500;
  add(signal.receivers);
  add(signal.values);
  add(signal.mux_ranges).low = 9;
  add_values(signal.attrs, definition);
}

}  // namespace

extern "C" {

ZELK_MODULE_EXPORT int nonsense(const char*, msgblk** messages, symblk** nodes,
                                env_var_blk** env_vars, attr_def** attr_defs, attr** attr_values) {
  add_definitions(*attr_defs);
  add_values(*attr_values, *attr_defs);
  add(*nodes).name = copy("not a name; \"");
  for (int i = 0; i < 2; ++i) {
    msgblk& message = add(*messages);
    message.id = 0xFFFFFFFF;
    message.dlc = message.signal_count = 0xFFFF;
    add(message.tx_nodes);
    add_signal(message, *attr_defs);
    siggroupblk& group = add(message.siggroups);
    overfill(group.name);
    add(group.signals).signal = (*messages)->signals;
  }
  (*messages)->signals->message = (*messages)->next;
  env_var_blk& variable = add(*env_vars);
  variable.type = 1000;
  overfill(variable.unit);
  variable.initial = std::nan("");
  add(variable.access_nodes);
  const zelk_conversion& more = *zelk_get_conversion();
  overfill(add(*more.categories).name);
  add(more.filter->categories);
  overfill(add(*more.signal_types).name);
  overfill(add(*more.value_tables).name);
  zelk_mfree(*more.user_data);
  *more.user_data = nullptr;
  return 1;
}

ZELK_MODULE_EXPORT int raise(const char*, msgblk** messages, symblk**, env_var_blk**, attr_def**,
                             attr**) {
  add(*messages).name = copy("Raised");
  throw std::runtime_error("raised");
}

ZELK_MODULE_EXPORT int raise_number(const char*, msgblk**, symblk**, env_var_blk**, attr_def**,
                                    attr**) {
  throw 7;
}

/// Raises what the library raises when memory runs out.
ZELK_MODULE_EXPORT int raise_memory(const char*, msgblk**, symblk**, env_var_blk**, attr_def**,
                                    attr**) {
  zelk_report(ZELK_ERR_MEMORY, 0, nullptr, 1);
  return 1;
}

/// An export that succeeds with the option "yes".
ZELK_MODULE_EXPORT int asked(const char*, const msgblk*, const symblk*, const env_var_blk*,
                             const attr_def*, const attr*) {
  return std::strcmp(zelk_get_conversion()->option, "yes") == 0;
}

}  // extern "C"
