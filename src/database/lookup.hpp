/// \file
/// Read-only lookups in a database; they use the index while it is valid.

#ifndef ZELK_DATABASE_LOOKUP_HPP
#define ZELK_DATABASE_LOOKUP_HPP

#include <cstdint>

#include "zelk/database.hpp"

namespace zelk {

/// The lookups give null when there is no such object, and for a null name.
struct DatabaseLookup {
  /// Nodes, messages, environment variables, value tables, signal types, attribute definitions.
  template <typename Record>
  static const Record* named(const ZelkDatabase& database, const char* name);
  /// Head of the list of these records.
  template <typename Record>
  static const Record* list(const ZelkDatabase& database) {
    return database.ListOf(static_cast<const Record*>(nullptr));
  }
  static const msgblk* message(const ZelkDatabase& database, std::uint32_t id);
  static const msgblk* j1939_message(const ZelkDatabase& database, std::uint32_t id,
                                     std::uint32_t flags);
};

}  // namespace zelk

#endif
