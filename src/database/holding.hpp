/// \file
/// Which database holds a record, and what kind of object that is.

#ifndef ZELK_DATABASE_HOLDING_HPP
#define ZELK_DATABASE_HOLDING_HPP

#include "base/list.hpp"
#include "database/lookup.hpp"
#include "zelk/database.hpp"

namespace zelk {

/// Whether the database's lists have this very record.
template <typename Record>
bool holds(const ZelkDatabase& database, const Record& record) {
  return contains<Record>(DatabaseLookup::list<Record>(database), record);
}
// Of a signal or group the message that it names counts; a link may be that of a receiver, a
// transmitter or an access node.
bool holds(const ZelkDatabase& database, const sigblk& signal);
bool holds(const ZelkDatabase& database, const siggroupblk& group);
bool holds(const ZelkDatabase& database, const rxblk& link);

constexpr zelk_obj_t kind_of(const symblk&) { return ZELK_OBJ_NODE; }
constexpr zelk_obj_t kind_of(const msgblk&) { return ZELK_OBJ_MESSAGE; }
constexpr zelk_obj_t kind_of(const env_var_blk&) { return ZELK_OBJ_ENVVAR; }
constexpr zelk_obj_t kind_of(const sigtype&) { return ZELK_OBJ_SIGTYPE; }
constexpr zelk_obj_t kind_of(const sigblk&) { return ZELK_OBJ_SIGNAL; }
constexpr zelk_obj_t kind_of(const rxblk&) { return ZELK_OBJ_REL_SIGNAL; }

}  // namespace zelk

#endif
