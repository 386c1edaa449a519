/// \file
/// The kinds of objects in a database, each with the columns of its table.

#ifndef ZELK_TOOL_TABLE_OBJECTS_HPP
#define ZELK_TOOL_TABLE_OBJECTS_HPP

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "input/database.hpp"
#include "table/cell.hpp"

namespace zelk::tool {

/// One object of a database, into which it points. Of value descriptions and attribute values it
/// lives no longer than the call that it is handed to.
struct Object {
  const void* record;
  std::string_view name;             ///< as in the record
  const msgblk* owner = nullptr;     ///< the message that has it; null for none
  const char* comment = nullptr;     ///< may be null
  const attr* attributes = nullptr;  ///< its values
  const val* values = nullptr;       ///< descriptions of its raw values
  const rxblk* links = nullptr;      ///< to the nodes that send, receive or access it
  Encoding encoding = Encoding::kUtf8;

  std::string name_text() const { return to_utf8(name, encoding); }
  /// The name of `owner`; empty for none.
  std::string owner_text() const;
};

using VisitObject = std::function<void(const Object&)>;

/// A kind of objects.
struct ObjectKind {
  std::string_view plural;    ///< "messages"
  std::string_view singular;  ///< "message"
  bool is_named;              ///< false: `Object::name` is what they belong to
  bool has_comments;
  std::optional<zelk_obj_t> attribute_type;  ///< of the attributes that they can have
  std::vector<std::string_view> headings;    ///< of the columns
  std::function<Cell(const Object& object, std::size_t column)> cell;  ///< in UTF-8
  /// Visits the objects of a database in its order.
  std::function<void(EncodedDatabase database, const VisitObject& visit)> for_each;

  /// The columns of an object, to the end of `cells`.
  void append_cells(const Object& object, std::vector<Cell>& cells) const;
};

/// All kinds; they stay.
std::span<const ObjectKind> object_kinds();

}  // namespace zelk::tool

#endif
