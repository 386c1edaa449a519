#include "query/holding.hpp"

namespace zelk {

bool holds(const ZelkDatabase& database, const symblk& node) {
  return contains<symblk>(database.nodes, node);
}
bool holds(const ZelkDatabase& database, const msgblk& message) {
  return contains<msgblk>(database.messages, message);
}
bool holds(const ZelkDatabase& database, const env_var_blk& variable) {
  return contains<env_var_blk>(database.env_vars, variable);
}
bool holds(const ZelkDatabase& database, const btlblk& bit_timing) {
  return contains<btlblk>(database.bit_timings, bit_timing);
}
bool holds(const ZelkDatabase& database, const cat& category) {
  return contains<cat>(database.categories, category);
}
bool holds(const ZelkDatabase& database, const sigtype& type) {
  return contains<sigtype>(database.signal_types, type);
}
bool holds(const ZelkDatabase& database, const valtable& table) {
  return contains<valtable>(database.value_tables, table);
}
bool holds(const ZelkDatabase& database, const attr_def& definition) {
  return contains<attr_def>(database.attr_defs, definition);
}

bool holds(const ZelkDatabase& database, const sigblk& signal) {
  return signal.message && holds(database, *signal.message);
}

bool holds(const ZelkDatabase& database, const siggroupblk& group) {
  return group.message && holds(database, *group.message);
}

bool holds(const ZelkDatabase& database, const rxblk& link) {
  for (const msgblk* message = database.messages; message; message = message->next) {
    if (contains<rxblk>(message->tx_nodes, link)) return true;
    for (const sigblk* signal = message->signals; signal; signal = signal->next) {
      if (contains<rxblk>(signal->receivers, link)) return true;
    }
  }
  return find_first(database.env_vars, [&link](const env_var_blk& variable) {
    return contains<rxblk>(variable.access_nodes, link);
  });
}

}  // namespace zelk
