/// \file
/// Which database holds a record, and what kind of object that is.

#ifndef ZELK_QUERY_HOLDING_HPP
#define ZELK_QUERY_HOLDING_HPP

#include "base/list.hpp"
#include "zelk/database.hpp"

namespace zelk {

// Whether the database's lists have this very record; of a signal or group, the message that it
// names; of a link, as receiver, transmitter or access node.
bool holds(const ZelkDatabase& database, const symblk& node);
bool holds(const ZelkDatabase& database, const msgblk& message);
bool holds(const ZelkDatabase& database, const env_var_blk& variable);
bool holds(const ZelkDatabase& database, const btlblk& bit_timing);
bool holds(const ZelkDatabase& database, const cat& category);
bool holds(const ZelkDatabase& database, const sigtype& type);
bool holds(const ZelkDatabase& database, const valtable& table);
bool holds(const ZelkDatabase& database, const attr_def& definition);
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
