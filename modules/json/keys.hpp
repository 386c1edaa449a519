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

/// What every document of the form says at its beginning.
struct Fixed {};
/// A number, a name or a text; null for a text that the record does not have.
struct Required {};
/// Likewise. There is no key for the number 0, an empty name, and a text that the record lacks.
struct Optional {};
/// Likewise. There is no key for the number `absent`.
template <typename Number>
struct Otherwise {
  Number absent;
};
/// The text, or the number, of an attribute's value.
template <typename Kind>
struct AsText {};
template <typename Kind>
struct AsNumber {};
struct RequiredWord {
  Words words;
};
/// There is no key for the number 0.
struct OptionalWord {
  Words words;
};
/// `true` for a bit that is set; else there is no key.
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
/// Another record, by name or position; null for none.
struct RequiredReference {};
/// Likewise. There is no key for none.
struct OptionalReference {};
/// An array with an element for each record; there is no key for an empty list.
struct List {
  /// Kind of object whose attributes stand in the elements; none: that of the outer list.
  std::optional<std::int32_t> attribute_kind = {};
};
/// The list of a message's signals, which refer to each other.
struct Signals {};
/// The name of a signal, which is read before all that may refer to it.
struct SignalName {};
/// An object; there is no key for a filter that is empty.
struct Part {};

/// @tparam Field  gets the field of a record by `std::invoke`
template <typename Field, typename Kind>
struct Key {
  std::string_view name;
  Field field;
  Kind kind;
};

template <typename Field, typename Kind>
constexpr Key<Field, Kind> key(std::string_view name, Field field, Kind kind) {
  return {name, field, kind};
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
  visit(key.name, unwrapped(std::invoke(key.field, record)), key.kind);
}
template <typename Record, typename Field, typename Kind, typename Visit>
void visit_key(Record& record, const ConditionalKey<std::remove_const_t<Record>, Field, Kind>& key,
               const Visit& visit) {
  if (key.applies(record)) visit_key(record, key.key, visit);
}

/// Calls `visit(name, field, kind)` for each key of a record, in order.
template <typename Record, typename Visit>
void for_each_key(Record& record, const Visit& visit) {
  std::apply([&](const auto&... keys) { (visit_key(record, keys, visit), ...); },
             kKeys<std::remove_const_t<Record>>);
}

}  // namespace zelk::modules::json

#endif
