/// \file
/// Lists what a node receives: each signal with its message, sender, cycle time, range and unit.
///
///     list_signals examples/powertrain.dbc FrontInverter

#include <cstdio>

#include "zelk/exception.hpp"
#include "zelk/zelk.h"

namespace {

/// One database, released with its records at the end of the scope.
class Database {
 public:
  Database() = default;
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;
  ~Database() {
    zelk_free(nodes, messages, env_vars, bit_timings, attr_defs, attrs, categories, &filter,
              comment, version, sig_types, val_tables);
  }

  /// No constructor: a read that throws leaves records behind, and only the destructor of a
  /// complete object releases them.
  void read(const char* path) {
    attr_def* long_names[4] = {};
    zelk_read(path, &nodes, &messages, &env_vars, &bit_timings, &attr_defs, &attrs, &categories,
              &filter, &comment, &version, &sig_types, &val_tables, long_names);
  }

  symblk* nodes = nullptr;
  msgblk* messages = nullptr;
  env_var_blk* env_vars = nullptr;
  btlblk* bit_timings = nullptr;
  attr_def* attr_defs = nullptr;
  attr* attrs = nullptr;
  cat* categories = nullptr;
  filter_t filter{};
  char* comment = nullptr;
  char* version = nullptr;
  sigtype* sig_types = nullptr;
  valtable* val_tables = nullptr;
};

/// The message's own cycle time in milliseconds, or else the default of the definition; 0 means no
/// cycle.
double cycle_time_ms(const Database& db, const msgblk& message) {
  if (zelk_is_msg_attribute_defined(&message, "CycleTime") != 0) {
    return zelk_get_msg_attrval(&message, "CycleTime").number;
  }
  return zelk_get_attrdefault(db.attr_defs, "CycleTime").number;
}

bool receives(const symblk* node, const sigblk& signal) {
  for (const rxblk* link = signal.receivers; link != nullptr; link = link->next) {
    if (link->node == node) return true;
  }
  return false;
}

void list_received(const Database& db, const symblk* node) {
  for (const msgblk* message = db.messages; message != nullptr; message = message->next) {
    const char* sender = message->transmitter != nullptr ? message->transmitter->name : "-";
    for (const sigblk* signal = message->signals; signal != nullptr; signal = signal->next) {
      if (!receives(node, *signal)) continue;
      std::printf("%s.%s from %s, %g ms, %g to %g %s\n", message->name, signal->name, sender,
                  cycle_time_ms(db, *message), signal->minimum, signal->maximum, signal->unit);
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fputs("usage: list_signals FILE NODE\n", stderr);
    return 2;
  }
  try {
    Database db;
    db.read(argv[1]);
    const symblk* node = zelk_get_symbol_name(db.nodes, argv[2]);
    if (node == nullptr) {
      std::fprintf(stderr, "no node %s in %s\n", argv[2], argv[1]);
      return 1;
    }
    list_received(db, node);
  } catch (const ZelkException& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
