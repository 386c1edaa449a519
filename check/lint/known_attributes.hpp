/// \file
/// Values of the attributes that the field's tools agree on.

#ifndef ZELK_CHECK_LINT_KNOWN_ATTRIBUTES_HPP
#define ZELK_CHECK_LINT_KNOWN_ATTRIBUTES_HPP

#include <optional>
#include <string_view>
#include <vector>

#include "check/records/strict_reading.hpp"

namespace zelk::check {

/// An attribute with a meaning; without a definition nothing has a value.
class KnownAttribute {
 public:
  /// @param object  `ZELK_OBJ_*`; the first definition for such objects counts
  KnownAttribute(const attr_def* definitions, zelk_obj_t object, std::string_view name);

  bool is_defined() const { return definition_; }
  /// Whether the object has a value of its own.
  bool is_set(const attr* values) const { return find(values); }

  /// Whether objects can have a text for which `is_wanted`: an item or the default.
  template <typename Predicate>
  bool allows(const Predicate& is_wanted) const {
    for (const std::string_view item : items_)
      if (is_wanted(item)) return true;
    return is_wanted(text(nullptr).value_or(""));
  }

  // The object's value, or else the default.
  std::optional<double> number(const attr* values) const;
  std::optional<std::string_view> text(const attr* values) const;

 private:
  const attr* find(const attr* values) const;
  std::optional<std::string_view> item(double index) const;

  const attr_def* definition_;
  std::vector<std::string_view> items_;  ///< of an ENUM
};

struct KnownAttributes {
  explicit KnownAttributes(const RecordsView& records);

  KnownAttribute bus_type;      ///< of the network: "CAN", "CAN FD"
  KnownAttribute protocol;      ///< of the network: "J1939"
  KnownAttribute frame_format;  ///< of messages: "StandardCAN", "ExtendedCAN", "J1939PG", ...
  KnownAttribute send_type;     ///< of messages: "cyclic", ...
  KnownAttribute cycle_time;    ///< of messages, in milliseconds
  KnownAttribute station;       ///< of nodes: the J1939 address
  bool has_j1939_protocol;      ///< the network says that it is one of J1939
  bool has_j1939;               ///< it says so, or messages may
  bool has_group_numbers;       ///< identifiers of messages are group numbers

  bool is_j1939(const msgblk& message) const;
};

/// Whether a send type says that the message comes again and again, whatever the application does.
bool is_cyclic(std::string_view send_type);

}  // namespace zelk::check

#endif
