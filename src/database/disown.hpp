/// \file
/// Clears the owned members of records that were copied byte by byte: they are the source's, and
/// the copier makes copies of them. References to other records stay, for the copier to replace.

#ifndef ZELK_DATABASE_DISOWN_HPP
#define ZELK_DATABASE_DISOWN_HPP

#include <cstddef>

#include "base/attribute_text.hpp"
#include "zelk/records.h"

namespace zelk {

/// A host may have filled the array of an inline text to the last byte, without a NUL.
template <std::size_t kSize>
void terminate(char (&field)[kSize]) {
  field[kSize - 1] = '\0';
}

inline void disown(attr& value) { value.value = {}; }
inline void disown(val& description) { description.text = nullptr; }
inline void disown(rxblk& link) { link.attrs = nullptr; }
inline void disown(catlink&) {}
inline void disown(muxor_val_range&) {}
inline void disown(siglistblk&) {}
inline void disown(siggroup_extra&) {}
inline void disown(cat& category) { terminate(category.name); }
inline void disown(btlblk&) {}
inline void disown(valtable& table) {
  terminate(table.name);
  table.values = nullptr;
}
inline void disown(siggroupblk& group) {
  terminate(group.name);
  group.signals = nullptr;
  group.extra = nullptr;
  group.comment = nullptr;
}
inline void disown(sigblk& signal) {
  terminate(signal.unit);
  signal.name = signal.comment = nullptr;
  signal.receivers = nullptr;
  signal.attrs = nullptr;
  signal.values = nullptr;
  signal.mux_ranges = nullptr;
}
inline void disown(msgblk& message) {
  message.name = message.comment = nullptr;
  message.signals = nullptr;
  message.attrs = nullptr;
  message.siggroups = nullptr;
  message.tx_nodes = nullptr;
}
inline void disown(symblk& node) {
  node.name = node.comment = nullptr;
  node.attrs = nullptr;
}
inline void disown(env_var_blk& variable) {
  terminate(variable.unit);
  variable.name = variable.comment = nullptr;
  variable.access_nodes = nullptr;
  variable.attrs = nullptr;
  variable.values = nullptr;
}
inline void disown(sigtype& type) {
  terminate(type.name);
  terminate(type.unit);
  type.comment = nullptr;
  type.attrs = nullptr;
}
inline void disown(attr_def& definition) {
  terminate(definition.name);
  if (definition.value_type == ZELK_ATTR_ENUM) definition.enum_values = nullptr;
  if (has_text_default(definition)) definition.default_value = {};
}

}  // namespace zelk

#endif
