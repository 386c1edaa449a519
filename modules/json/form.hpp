/// \file
/// The form of a document: for each object its keys in their order, the fields of the record that
/// they stand for, and how they do. The reader and the writer both follow these tables.
/// docs/json.md describes the form for users.

#ifndef ZELK_MODULES_JSON_FORM_HPP
#define ZELK_MODULES_JSON_FORM_HPP

#include <cstdint>
#include <functional>
#include <string>
#include <tuple>

#include "base/encoding.hpp"
#include "json/document.hpp"
#include "json/keys.hpp"
#include "json/words.hpp"

namespace zelk::modules::json {

/// All that a database is made of.
struct Database {
  template <typename Field>
  using Ref = std::reference_wrapper<Field>;

  Ref<msgblk*> messages;
  Ref<symblk*> nodes;
  Ref<env_var_blk*> env_vars;
  Ref<attr_def*> attr_defs;
  Ref<attr*> attr_values;
  Ref<btlblk*> bit_timings;
  Ref<cat*> categories;
  Ref<filter_t> filter;
  Ref<char*> comment;
  Ref<char*> version_text;
  Ref<sigtype*> signal_types;
  Ref<valtable*> value_tables;
};

inline constexpr std::uint16_t kTypeFlags = ZELK_SIGNAL_MOTOROLA | ZELK_SIGNAL_SIGNED;
inline constexpr std::uint16_t kSignalFlags = kTypeFlags | ZELK_SIGNAL_MULTIPLEXOR;

constexpr OtherBits bits_beyond(std::uint16_t known) {
  return {static_cast<std::uint16_t>(~known)};
}

inline bool is_enum(const attr_def& definition) { return definition.value_type == ZELK_ATTR_ENUM; }
inline bool is_no_enum(const attr_def& definition) { return !is_enum(definition); }
inline bool has_text(const attr_def& definition) {
  return is_enum(definition) || definition.value_type == ZELK_ATTR_STRING;
}
inline bool has_number(const attr_def& definition) { return !has_text(definition); }
inline bool is_text(const attr& value) {
  return value.def && value.def->value_type == ZELK_ATTR_STRING;
}
inline bool is_number(const attr& value) { return value.def && !is_text(value); }

inline auto& format_of(const Database&) { return kFormat; }
inline auto& version_of(const Database&) { return kVersion; }
inline auto& encoding_of(const Database&) { return kEncodings[0]; }

/// The encoding of the text is found out when the rest is written.
template <>
inline constexpr auto kKeys<Database> = std::tuple(
    key("format", format_of, Fixed()), key("version", version_of, Fixed()),
    key("encoding", encoding_of, Fixed()), key("version_text", &Database::version_text, Optional()),
    key("comment", &Database::comment, Optional()),
    key("bit_timings", &Database::bit_timings, List()),
    key("attribute_definitions", &Database::attr_defs, List()),
    key("attributes", &Database::attr_values, List{ZELK_OBJ_NETWORK}),
    key("categories", &Database::categories, List()),
    key("value_tables", &Database::value_tables, List()),
    key("signal_types", &Database::signal_types, List()), key("nodes", &Database::nodes, List()),
    key("messages", &Database::messages, List()),
    key("environment_variables", &Database::env_vars, List()),
    key("filter", &Database::filter, Part()));

template <>
inline constexpr auto kKeys<btlblk> = std::tuple(key("baudrate", &btlblk::baudrate, Required()),
                                                 key("btr1", &btlblk::btr1, Required()),
                                                 key("btr2", &btlblk::btr2, Required()));

/// The type comes before the fields whose meaning depends on it.
template <>
inline constexpr auto kKeys<attr_def> =
    std::tuple(key("name", &attr_def::name, Required()),
               key("object_type", &attr_def::object_type, OptionalWord{kObjectTypes}),
               key("value_type", &attr_def::value_type, RequiredWord{kAttributeTypes}),
               when(is_enum, key("items", &attr_def::enum_values, Items())),
               when(is_no_enum, key("minimum", &attr_def::minimum, Optional())),
               key("maximum", &attr_def::maximum, Optional()),
               when(has_text, key("default", &attr_def::default_value, AsText<Optional>())),
               when(has_number, key("default", &attr_def::default_value, AsNumber<Optional>())));

template <>
inline constexpr auto kKeys<attr> =
    std::tuple(key("definition", &attr::def, RequiredReference()),
               when(is_text, key("value", &attr::value, AsText<Required>())),
               when(is_number, key("value", &attr::value, AsNumber<Required>())));

template <>
inline constexpr auto kKeys<cat> = std::tuple(key("name", &cat::name, Required()),
                                              key("number", &cat::number, Required()),
                                              key("level", &cat::level, Optional()));

template <>
inline constexpr auto kKeys<valtable> = std::tuple(key("name", &valtable::name, Required()),
                                                   key("values", &valtable::values, List()));

template <>
inline constexpr auto kKeys<val> = std::tuple(key("value", &val::value, Required()),
                                              key("text", &val::text, Required()));

/// Of a link with attributes; one without is the reference alone.
template <>
inline constexpr auto kKeys<rxblk> = std::tuple(key("node", &rxblk::node, RequiredReference()),
                                                key("attributes", &rxblk::attrs, List()));

template <>
inline constexpr auto kKeys<sigtype> = std::tuple(
    key("name", &sigtype::name, Required()), key("length", &sigtype::length, Required()),
    key("byte_order", &sigtype::flags, ByteOrder()),
    key("signed", &sigtype::flags, Flag{ZELK_SIGNAL_SIGNED}),
    key("other_flags", &sigtype::flags, bits_beyond(kTypeFlags)),
    key("value_type", &sigtype::value_type, OptionalWord{kValueTypes}),
    key("factor", &sigtype::factor, Otherwise<double>{1}),
    key("offset", &sigtype::offset, Optional()), key("minimum", &sigtype::minimum, Optional()),
    key("maximum", &sigtype::maximum, Optional()), key("unit", &sigtype::unit, Optional()),
    key("default", &sigtype::default_value, Optional()),
    key("value_table", &sigtype::valtable, OptionalReference()),
    key("comment", &sigtype::comment, Optional()),
    key("attributes", &sigtype::attrs, List{ZELK_OBJ_SIGTYPE}));

template <>
inline constexpr auto kKeys<symblk> = std::tuple(
    key("name", &symblk::name, Required()), key("category", &symblk::category, OptionalReference()),
    key("comment", &symblk::comment, Optional()),
    key("attributes", &symblk::attrs, List{ZELK_OBJ_NODE}));

template <>
inline constexpr auto kKeys<msgblk> = std::tuple(
    key("name", &msgblk::name, Required()), key("id", &msgblk::id, Identifier()),
    key("extended", &msgblk::id, Flag{ZELK_ID_EXTENDED}), key("dlc", &msgblk::dlc, Required()),
    key("transmitter", &msgblk::transmitter, OptionalReference()),
    key("transmitters", &msgblk::tx_nodes, List{ZELK_OBJ_REL_MESSAGE}),
    key("category", &msgblk::category, OptionalReference()),
    key("comment", &msgblk::comment, Optional()),
    key("attributes", &msgblk::attrs, List{ZELK_OBJ_MESSAGE}),
    key("signals", &msgblk::signals, Signals()), key("signal_groups", &msgblk::siggroups, List()));

template <>
inline constexpr auto kKeys<siggroupblk> =
    std::tuple(key("name", &siggroupblk::name, Required()),
               key("repetitions", &siggroupblk::repetitions, Otherwise<std::int32_t>{1}),
               key("comment", &siggroupblk::comment, Optional()),
               key("signals", &siggroupblk::signals, List()));

template <>
inline constexpr auto kKeys<sigblk> = std::tuple(
    key("name", &sigblk::name, SignalName()), key("start_bit", &sigblk::start_bit, Required()),
    key("length", &sigblk::length, Required()), key("byte_order", &sigblk::flags, ByteOrder()),
    key("signed", &sigblk::flags, Flag{ZELK_SIGNAL_SIGNED}),
    key("value_type", &sigblk::value_type, OptionalWord{kValueTypes}),
    key("is_multiplexor", &sigblk::flags, Flag{ZELK_SIGNAL_MULTIPLEXOR}),
    key("other_flags", &sigblk::flags, bits_beyond(kSignalFlags)),
    key("multiplexor", &sigblk::mux_signal, OptionalReference()),
    key("multiplexor_values", &sigblk::mux_ranges, List()),
    key("factor", &sigblk::factor, Otherwise<double>{1}),
    key("offset", &sigblk::offset, Optional()), key("minimum", &sigblk::minimum, Optional()),
    key("maximum", &sigblk::maximum, Optional()), key("unit", &sigblk::unit, Optional()),
    key("receivers", &sigblk::receivers, List{ZELK_OBJ_REL_SIGNAL}),
    key("signal_type", &sigblk::sigtype, OptionalReference()),
    key("comment", &sigblk::comment, Optional()),
    key("attributes", &sigblk::attrs, List{ZELK_OBJ_SIGNAL}),
    key("values", &sigblk::values, List()));

/// Of a range of several values; a value alone is a number.
template <>
inline constexpr auto kKeys<muxor_val_range> = std::tuple(
    key("low", &muxor_val_range::low, Required()), key("high", &muxor_val_range::high, Required()));

template <>
inline constexpr auto kKeys<env_var_blk> = std::tuple(
    key("name", &env_var_blk::name, Required()),
    key("type", &env_var_blk::type, OptionalWord{kVariableTypes}),
    key("id", &env_var_blk::id, Required()), key("minimum", &env_var_blk::minimum, Optional()),
    key("maximum", &env_var_blk::maximum, Optional()),
    key("initial", &env_var_blk::initial, Optional()), key("unit", &env_var_blk::unit, Optional()),
    key("access_type", &env_var_blk::access_type, Optional()),
    key("access_nodes", &env_var_blk::access_nodes, List{ZELK_OBJ_REL_ENVVAR}),
    key("data_size", &env_var_blk::data_size, Optional()),
    key("category", &env_var_blk::category, OptionalReference()),
    key("comment", &env_var_blk::comment, Optional()),
    key("attributes", &env_var_blk::attrs, List{ZELK_OBJ_ENVVAR}),
    key("values", &env_var_blk::values, List()));

template <>
inline constexpr auto kKeys<filter_t> = std::tuple(key("mode", &filter_t::mode, Optional()),
                                                   key("categories", &filter_t::categories, List()),
                                                   key("nodes", &filter_t::nodes,
                                                       List{ZELK_OBJ_NODE}));

/// Fills an empty database with a document.
///
/// @param encoding  of the texts in the database
/// @throws Fault; the database then has what was read before
void read_document(const Value& document, Encoding encoding, const Database& database);

/// The document of a database, with the texts as the bytes that they are, taken for UTF-8. What
/// hosts store in it for themselves is left out and noted.
///
/// @throws Fault for a database that no document can hold
std::string document_of(const Database& database);

}  // namespace zelk::modules::json

#endif
