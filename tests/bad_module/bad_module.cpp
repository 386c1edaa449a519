// A converter module as nobody should write it. Each function fails, or fills lists, in its own
// wrong way.

#include <cmath>
#include <cstring>
#include <limits>
#include <stdexcept>

#include "zelk/module.h"

namespace {

/// Zero-filled, and the first of its list from now on.
template <typename Record>
Record& add(Record*& list) {
  auto* const record = static_cast<Record*>(zelk_malloc(sizeof(Record)));
  record->next = list;
  list = record;
  return *record;
}

char* copy(const char* text) {
  return std::strcpy(static_cast<char*>(zelk_malloc(std::strlen(text) + 1)), text);
}

template <std::size_t kSize>
void overfill(char (&name)[kSize]) {
  std::memset(name, 'x', kSize);
}

/// Records that are in no list of the database.
struct Stray {
  symblk node = {};
  cat category = {};
  sigtype type = {};
  valtable table = {};
  sigblk signal = {};
  attr_def definition = {};
};

Stray& stray() {
  static Stray stray;
  return stray;
}

void add_values(attr*& list, attr_def* number, attr_def* text) {
  add(list);  // without a definition
  add(list).def = &stray().definition;
  add(list).def = text;  // without a text
  attr& value = add(list);
  value.def = number;
  value.value.number = std::numeric_limits<double>::infinity();
}

void add_definitions(attr_def*& list) {
  for (int type = -1; type < 7; ++type) {
    attr_def& definition = add(list);
    definition.object_type = type * 1000;
    definition.value_type = type;
    overfill(definition.name);
  }
  for (int type : {0, 2, 3}) {
    attr_def& definition = add(list);
    definition.object_type = ZELK_OBJ_SIGNAL;
    definition.value_type = type;
    std::strcpy(definition.name, "SystemSignalLongSymbol");
  }
}

void add_signals(msgblk& message, attr_def* definitions) {
  sigblk& first = add(message.signals);
  sigblk& second = add(message.signals);
  first.mux_signal = &stray().signal;
  second.mux_signal = &second;
  first.sigtype = &stray().type;
  first.value_type = 77;
  first.flags = 0xFFFF;
  first.length = first.start_bit = 0xFFFF;
  first.factor = std::nan("");
  overfill(first.unit);
  first.receiver_count = 500;
  add(first.receivers);
  add(first.receivers).node = &stray().node;
  add(first.values);
  add(first.mux_ranges).low = 9;
  add_values(first.attrs, definitions->next->next, definitions->next);
  siggroupblk& group = add(message.siggroups);
  overfill(group.name);
  add(group.signals);
  add(group.signals).signal = &stray().signal;
}

void add_further(const zelk_conversion& conversion) {
  add(*conversion.bit_timings);
  add(*conversion.categories).number = -1;
  overfill((*conversion.categories)->name);
  add(conversion.filter->categories).category = &stray().category;
  add(conversion.filter->nodes).node = &stray().node;
  conversion.filter->mode = -7;
  sigtype& type = add(*conversion.signal_types);
  overfill(type.name);
  overfill(type.unit);
  type.valtable = &stray().table;
  overfill(add(*conversion.value_tables).name);
  zelk_mfree(*conversion.user_data);
  *conversion.user_data = nullptr;
}

}  // namespace

extern "C" {

ZELK_MODULE_EXPORT int nonsense(const char*, msgblk** messages, symblk** nodes,
                                env_var_blk** env_vars, attr_def** attr_defs, attr** attr_values) {
  add_definitions(*attr_defs);
  add_values(*attr_values, (*attr_defs)->next->next, (*attr_defs)->next);
  add(*nodes).category = &stray().category;
  add(*nodes).name = copy("");
  add(*nodes).name = copy("not a name; \"");
  for (int i = 0; i < 2; ++i) {
    msgblk& message = add(*messages);
    message.id = 0xFFFFFFFF;
    message.dlc = message.signal_count = 0xFFFF;
    message.transmitter = &stray().node;
    message.category = &stray().category;
    add(message.tx_nodes);
    add_signals(message, *attr_defs);
  }
  // References from one message into another.
  (*messages)->signals->mux_signal = (*messages)->next->signals;
  (*messages)->signals->message = (*messages)->next;
  add((*messages)->siggroups->signals).signal = (*messages)->next->signals;
  (*messages)->next->signals->mux_signal = (*messages)->signals->next;
  add((*messages)->next->siggroups->signals).signal = (*messages)->signals;
  env_var_blk& variable = add(*env_vars);
  variable.type = 1000;
  overfill(variable.unit);
  variable.minimum = variable.initial = std::nan("");
  add(variable.access_nodes);
  add_further(*zelk_get_conversion());
  return 1;
}

ZELK_MODULE_EXPORT int half(const char*, msgblk** messages, symblk** nodes, env_var_blk**,
                            attr_def**, attr**) {
  add(*messages).name = copy("Half");
  add(*nodes);
  zelk_note(ZELK_ERR_CONVERTED_FORMAT, 7, "half");
  return 0;
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

/// Runs out of memory where the library would.
ZELK_MODULE_EXPORT int raise_memory(const char*, msgblk**, symblk**, env_var_blk**, attr_def**,
                                    attr**) {
  zelk_report(ZELK_ERR_MEMORY, 0, nullptr, 1);
  return 1;
}

/// An export that succeeds when it is told "yes".
ZELK_MODULE_EXPORT int asked(const char*, const msgblk*, const symblk*, const env_var_blk*,
                             const attr_def*, const attr*) {
  return std::strcmp(zelk_get_conversion()->option, "yes") == 0;
}

}  // extern "C"
