/// \file
/// The kinds of objects in a database, each with the columns of its table.

#ifndef ZELK_CHECK_OBJECTS_OBJECTS_HPP
#define ZELK_CHECK_OBJECTS_OBJECTS_HPP

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "base/encoded_database.hpp"
#include "check/objects/cell.hpp"

namespace zelk::check {

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

using ObjectRecord = std::variant<const symblk*, const msgblk*, const sigblk*, const siggroupblk*,
                                  const env_var_blk*, const valtable*, const sigtype*, const cat*,
                                  const attr_def*, const AttributeValue*, const Description*>;

/// One object of a database, into which it points. Value descriptions and attribute values live no
/// longer than the call that hands them out.
struct Object {
  ObjectRecord record;
  std::string_view name;             ///< as in the record
  const msgblk* owner = nullptr;     ///< the message that has it; null for none
  const char* comment = nullptr;     ///< may be null
  const attr* attributes = nullptr;  ///< its values
  const val* values = nullptr;       ///< descriptions of its raw values
  const rxblk* links = nullptr;      ///< to the nodes that send, receive or access it
  Encoding encoding = Encoding::kUtf8;

  /// The record, when it is of this type; else null.
  template <typename Record>
  const Record* as() const {
    const auto* const pointer = std::get_if<const Record*>(&record);
    return pointer ? *pointer : nullptr;
  }

  std::string name_text() const { return to_utf8(name, encoding); }
  /// The name of `owner`; empty for none.
  std::string owner_text() const;
  /// The comment in UTF-8.
  Cell comment_cell() const;
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

/// All kinds, valid until the program ends.
std::span<const ObjectKind> object_kinds();

}  // namespace zelk::check

#endif
