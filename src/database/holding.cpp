#include "database/holding.hpp"

namespace zelk {

bool holds(const ZelkDatabase& database, const sigblk& signal) {
  return signal.message && holds(database, *signal.message);
}

bool holds(const ZelkDatabase& database, const siggroupblk& group) {
  return group.message && holds(database, *group.message);
}

bool holds(const ZelkDatabase& database, const rxblk& link) {
  for (const msgblk& message : each(database.messages)) {
    if (contains<rxblk>(message.tx_nodes, link)) return true;
    for (const sigblk& signal : each(message.signals)) {
      if (contains<rxblk>(signal.receivers, link)) return true;
    }
  }
  return find_first(database.env_vars, [&link](const env_var_blk& variable) {
    return contains<rxblk>(variable.access_nodes, link);
  });
}

}  // namespace zelk
