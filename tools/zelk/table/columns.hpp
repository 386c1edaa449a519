/// \file
/// The columns in which each kind of objects is listed.

#ifndef ZELK_TOOL_TABLE_COLUMNS_HPP
#define ZELK_TOOL_TABLE_COLUMNS_HPP

#include <span>
#include <string_view>

#include "table/cell.hpp"

namespace zelk::tool {

/// A description of a raw value, with its owner.
struct Description {
  const char* name;       ///< of the signal or environment variable
  const msgblk* message;  ///< null for an environment variable
  const val* record;
};

/// A value of an attribute, with the object that has it.
struct AttributeValue {
  const char* name;  ///< of the attribute
  const attr* record;
  std::string_view type;
  const msgblk* message;  ///< null for none
  const char* object;     ///< null for the database and for a message, which `message` names
  const symblk* partner;  ///< the node of a relation; null for none
};

template <typename Record>
struct Column {
  std::string_view heading;
  Cell (*value)(const Record&);  ///< with texts as in the record
};

template <typename Record>
using Columns = std::span<const Column<Record>>;

extern const Columns<symblk> kNodeColumns;
extern const Columns<msgblk> kMessageColumns;
extern const Columns<sigblk> kSignalColumns;
extern const Columns<siggroupblk> kGroupColumns;
extern const Columns<env_var_blk> kVariableColumns;
extern const Columns<valtable> kTableColumns;
extern const Columns<sigtype> kTypeColumns;
extern const Columns<cat> kCategoryColumns;
extern const Columns<attr_def> kDefinitionColumns;
extern const Columns<AttributeValue> kValueColumns;
extern const Columns<Description> kDescriptionColumns;

}  // namespace zelk::tool

#endif
