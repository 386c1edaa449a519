/// \file
/// The parts of a database, as the reader, the writer and the release take them.

#ifndef ZELK_DATABASE_HEADS_HPP
#define ZELK_DATABASE_HEADS_HPP

#include "model/heads.hpp"
#include "zelk/database.hpp"

namespace zelk {

template <typename Parts, typename Database>
Parts parts_of(Database& database) {
  return {database.nodes,     database.messages,    database.env_vars,     database.bit_timings,
          database.attr_defs, database.attr_values, database.categories,   database.filter,
          database.comment,   database.user_data,   database.signal_types, database.value_tables};
}

inline ModelHeads heads_of(ZelkDatabase& database) { return parts_of<ModelHeads>(database); }
inline ModelView view_of(const ZelkDatabase& database) { return parts_of<ModelView>(database); }

}  // namespace zelk

#endif
