/// \file
/// The objects that edits name.

#ifndef ZELK_TOOL_EDIT_EDIT_TARGET_HPP
#define ZELK_TOOL_EDIT_EDIT_TARGET_HPP

#include <string>
#include <string_view>
#include <variant>

#include "zelk/write_manager.hpp"

namespace zelk::tool {

/// The network itself (nothing), or the record of an object.
using EditTarget = std::variant<std::monostate, symblk*, msgblk*, sigblk*, env_var_blk*>;

/// Finds the objects of a database that can be changed. A name must be that of one object only,
/// and a message can also be named by its identifier, decimal or hexadecimal behind "0x", whose
/// format bit matters only when messages of both formats have it: without the bit it is then that
/// of the 11-bit format.
///
/// All throw RequestError when there is no such object, or there are several.
class EditTargets {
 public:
  /// @param database  must outlive the object
  explicit EditTargets(const ZelkDatabase& database) : database_(database) {}

  symblk& node(const std::string& name) const;
  msgblk& message(const std::string& name) const;
  /// @param name  "MESSAGE.SIGNAL"
  sigblk& signal(const std::string& name) const;
  sigblk& signal_of(const msgblk& message, std::string_view name) const;
  env_var_blk& variable(const std::string& name) const;
  valtable& table(const std::string& name) const;
  /// @param name  "network", "node:NAME", "message:NAME", "signal:MESSAGE.SIGNAL" or
  /// "variable:NAME"
  EditTarget object(const std::string& name) const;
  /// The same, but also messages, and signals of these, that share their identifier.
  EditTarget any_object(const std::string& name) const;

 private:
  const ZelkDatabase& database_;
};

/// What attribute definitions of the object are for.
zelk_obj_t attribute_type(const EditTarget& target);

/// "network", "node Engine", "message 0x123 Speed", "signal Speed.Gear", "environment variable
/// Lid"; fit for the terminal.
std::string shown_target(const EditTarget& target);

}  // namespace zelk::tool

#endif
