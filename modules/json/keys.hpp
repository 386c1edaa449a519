/// \file
/// The keys of an object of the document: how each stands for a field of a record.

#ifndef ZELK_MODULES_JSON_KEYS_HPP
#define ZELK_MODULES_JSON_KEYS_HPP

#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>
#include <tuple>
#include <type_traits>

#include "json/words.hpp"

namespace zelk::modules::json {

// --- How a key stands for a field ---

/// A number, a name or a text. The key is left out for the number 0, an empty name, and a text that
/// the record lacks; null is such a text where the key is required.
struct Plain {};
/// What every document of the form says at its beginning.
struct Fixed {};
/// A number. The key is left out for `absent`.
template <typename Number>
struct Otherwise {
  Number absent;
};
/// The text, or the number, of an attribute's value.
struct AsText {};
struct AsNumber {};
/// A number that may have a word. The key is left out for 0.
struct NumberWord {
  Words words;
};
/// `true` for a bit that is set; else the key is left out.
struct Flag {
  unsigned bit;
};
/// "motorola" for the bit that says so.
struct ByteOrder {};
/// The bits that have no key of their own.
struct OtherBits {
  std::uint16_t mask;
};
/// A message identifier without the bit for the extended format.
struct Identifier {};
/// The items of an ENUM, as an array of texts.
struct Items {};
/// Another record, by name or position. The key is left out for none; where it is required, null
/// stands for none.
struct Reference {};
/// An array with an element for each record. The key is left out for an empty list.
struct List {
  /// Kind of object whose attributes stand in the elements; none: that of the outer list.
  std::optional<std::int32_t> attribute_kind = {};
};
/// The list of a message's signals, which refer to each other.
struct Signals {};
/// The name of a signal, which is read before all that may refer to it.
struct SignalName {};
/// An object. The key is left out for an empty filter.
struct Part {};

/// @tparam Field  gets the field of a record by `std::invoke`
template <typename Field, typename Kind>
struct Key {
  std::string_view name;
  bool is_required;  ///< whether every object has it; otherwise it may be left out
  Field field;
  Kind kind;
};

template <typename Field, typename Kind = Plain>
constexpr Key<Field, Kind> required(std::string_view name, Field field, Kind kind = {}) {
  return {name, true, field, kind};
}

template <typename Field, typename Kind = Plain>
constexpr Key<Field, Kind> optional(std::string_view name, Field field, Kind kind = {}) {
  return {name, false, field, kind};
}

/// A key that only some records have.
template <typename Record, typename Field, typename Kind>
struct ConditionalKey {
  bool (*applies)(const Record& record);
  Key<Field, Kind> key;
};

template <typename Record, typename Field, typename Kind>
constexpr ConditionalKey<Record, Field, Kind> when(bool (*applies)(const Record&),
                                                   Key<Field, Kind> key) {
  return {applies, key};
}

/// The keys of a record, or of a part of one, that is an object of the document: a tuple of `Key`
/// and `ConditionalKey`. form.hpp has them.
template <typename Record>
inline constexpr std::tuple<> kKeys{};

// --- Following the keys ---

template <typename Field>
Field& unwrapped(Field& field) {
  return field;
}
template <typename Field>
Field& unwrapped(const std::reference_wrapper<Field>& field) {
  return field;
}

template <typename Record, typename Field, typename Kind, typename Visit>
void visit_key(Record& record, const Key<Field, Kind>& key, const Visit& visit) {
  visit(key.name, key.is_required, unwrapped(std::invoke(key.field, record)), key.kind);
}
template <typename Record, typename Field, typename Kind, typename Visit>
void visit_key(Record& record, const ConditionalKey<std::remove_const_t<Record>, Field, Kind>& key,
               const Visit& visit) {
  if (key.applies(record)) visit_key(record, key.key, visit);
}

/// Calls `visit(name, is_required, field, kind)` for each key of a record, in order.
template <typename Record, typename Visit>
void for_each_key(Record& record, const Visit& visit) {
  std::apply([&](const auto&... keys) { (visit_key(record, keys, visit), ...); },
             kKeys<std::remove_const_t<Record>>);
}

}  // namespace zelk::modules::json

#endif
