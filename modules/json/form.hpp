/// \file
/// The form of a document: for each object its keys in their order, the fields of the record that
/// they stand for, and how they do. The reader and the writer both follow these tables.
/// docs/json.md describes the form for users.

#ifndef ZELK_MODULES_JSON_FORM_HPP
#define ZELK_MODULES_JSON_FORM_HPP

#include <cstdint>
#include <tuple>

#include "base/attribute_text.hpp"
#include "common/module.hpp"
#include "json/keys.hpp"
#include "json/words.hpp"

namespace zelk::modules::json {

inline constexpr std::uint16_t kTypeFlags = ZELK_SIGNAL_MOTOROLA | ZELK_SIGNAL_SIGNED;
inline constexpr std::uint16_t kSignalFlags = kTypeFlags | ZELK_SIGNAL_MULTIPLEXOR;

constexpr OtherBits bits_beyond(std::uint16_t known) {
  return {static_cast<std::uint16_t>(~known)};
}

inline bool is_enum(const attr_def& definition) { return definition.value_type == ZELK_ATTR_ENUM; }
inline bool is_no_enum(const attr_def& definition) { return !is_enum(definition); }
inline bool has_number(const attr_def& definition) { return !has_text_default(definition); }
inline bool is_text(const attr& value) {
  return value.def && value.def->value_type == ZELK_ATTR_STRING;
}
inline bool is_number(const attr& value) { return value.def && !is_text(value); }

inline auto& format_of(const Database&) { return kFormat; }
inline auto& version_of(const Database&) { return kVersion; }
inline auto& encoding_of(const Database&) { return kEncodings[0]; }

/// The encoding that is written here is replaced when the texts have another one.
template <>
inline constexpr auto kKeys<Database> = std::tuple(
    required("format", format_of, Fixed()), required("version", version_of, Fixed()),
    optional("encoding", encoding_of, Fixed()), optional("version_text", &Database::version_text),
    optional("comment", &Database::comment),
    optional("bit_timings", &Database::bit_timings, List()),
    optional("attribute_definitions", &Database::attr_defs, List()),
    optional("attributes", &Database::attr_values, List{ZELK_OBJ_NETWORK}),
    optional("categories", &Database::categories, List()),
    optional("value_tables", &Database::value_tables, List()),
    optional("signal_types", &Database::signal_types, List()),
    optional("nodes", &Database::nodes, List()), optional("messages", &Database::messages, List()),
    optional("environment_variables", &Database::env_vars, List()),
    optional("filter", &Database::filter, Part()));

template <>
inline constexpr auto kKeys<btlblk> = std::tuple(required("baudrate", &btlblk::baudrate),
                                                 required("btr1", &btlblk::btr1),
                                                 required("btr2", &btlblk::btr2));

/// The type comes before the fields whose meaning depends on it.
template <>
inline constexpr auto kKeys<attr_def> =
    std::tuple(required("name", &attr_def::name),
               optional("object_type", &attr_def::object_type, NumberWord{kObjectTypes}),
               required("value_type", &attr_def::value_type, NumberWord{kAttributeTypes}),
               when(is_enum, optional("items", &attr_def::enum_values, Items())),
               when(is_no_enum, optional("minimum", &attr_def::minimum)),
               optional("maximum", &attr_def::maximum),
               when(has_text_default, optional("default", &attr_def::default_value, AsText())),
               when(has_number, optional("default", &attr_def::default_value, AsNumber())));

template <>
inline constexpr auto kKeys<attr> =
    std::tuple(required("definition", &attr::def, Reference()),
               when(is_text, required("value", &attr::value, AsText())),
               when(is_number, required("value", &attr::value, AsNumber())));

template <>
inline constexpr auto kKeys<cat> = std::tuple(required("name", &cat::name),
                                              required("number", &cat::number),
                                              optional("level", &cat::level));

template <>
inline constexpr auto kKeys<valtable> = std::tuple(required("name", &valtable::name),
                                                   optional("values", &valtable::values, List()));

template <>
inline constexpr auto kKeys<val> = std::tuple(required("value", &val::value),
                                              required("text", &val::text));

/// Of a link with attributes; one without is the reference alone.
template <>
inline constexpr auto kKeys<rxblk> = std::tuple(required("node", &rxblk::node, Reference()),
                                                optional("attributes", &rxblk::attrs, List()));

template <>
inline constexpr auto kKeys<sigtype> =
    std::tuple(required("name", &sigtype::name), required("length", &sigtype::length),
               optional("byte_order", &sigtype::flags, ByteOrder()),
               optional("signed", &sigtype::flags, Flag{ZELK_SIGNAL_SIGNED}),
               optional("other_flags", &sigtype::flags, bits_beyond(kTypeFlags)),
               optional("value_type", &sigtype::value_type, NumberWord{kValueTypes}),
               optional("factor", &sigtype::factor, Otherwise<double>{1}),
               optional("offset", &sigtype::offset), optional("minimum", &sigtype::minimum),
               optional("maximum", &sigtype::maximum), optional("unit", &sigtype::unit),
               optional("default", &sigtype::default_value),
               optional("value_table", &sigtype::valtable, Reference()),
               optional("comment", &sigtype::comment),
               optional("attributes", &sigtype::attrs, List{ZELK_OBJ_SIGTYPE}));

template <>
inline constexpr auto kKeys<symblk> = std::tuple(
    required("name", &symblk::name), optional("category", &symblk::category, Reference()),
    optional("comment", &symblk::comment),
    optional("attributes", &symblk::attrs, List{ZELK_OBJ_NODE}));

template <>
inline constexpr auto kKeys<msgblk> = std::tuple(
    required("name", &msgblk::name), required("id", &msgblk::id, Identifier()),
    optional("extended", &msgblk::id, Flag{ZELK_ID_EXTENDED}), required("dlc", &msgblk::dlc),
    optional("transmitter", &msgblk::transmitter, Reference()),
    optional("transmitters", &msgblk::tx_nodes, List{ZELK_OBJ_REL_MESSAGE}),
    optional("category", &msgblk::category, Reference()), optional("comment", &msgblk::comment),
    optional("attributes", &msgblk::attrs, List{ZELK_OBJ_MESSAGE}),
    optional("signals", &msgblk::signals, Signals()),
    optional("signal_groups", &msgblk::siggroups, List()));

template <>
inline constexpr auto kKeys<siggroupblk> = std::tuple(
    required("name", &siggroupblk::name),
    optional("repetitions", &siggroupblk::repetitions, Otherwise<std::int32_t>{1}),
    optional("comment", &siggroupblk::comment), optional("signals", &siggroupblk::signals, List()));

template <>
inline constexpr auto kKeys<sigblk> = std::tuple(
    required("name", &sigblk::name, SignalName()), required("start_bit", &sigblk::start_bit),
    required("length", &sigblk::length), optional("byte_order", &sigblk::flags, ByteOrder()),
    optional("signed", &sigblk::flags, Flag{ZELK_SIGNAL_SIGNED}),
    optional("value_type", &sigblk::value_type, NumberWord{kValueTypes}),
    optional("is_multiplexor", &sigblk::flags, Flag{ZELK_SIGNAL_MULTIPLEXOR}),
    optional("other_flags", &sigblk::flags, bits_beyond(kSignalFlags)),
    optional("multiplexor", &sigblk::mux_signal, Reference()),
    optional("multiplexor_values", &sigblk::mux_ranges, List()),
    optional("factor", &sigblk::factor, Otherwise<double>{1}), optional("offset", &sigblk::offset),
    optional("minimum", &sigblk::minimum), optional("maximum", &sigblk::maximum),
    optional("unit", &sigblk::unit),
    optional("receivers", &sigblk::receivers, List{ZELK_OBJ_REL_SIGNAL}),
    optional("signal_type", &sigblk::sigtype, Reference()), optional("comment", &sigblk::comment),
    optional("attributes", &sigblk::attrs, List{ZELK_OBJ_SIGNAL}),
    optional("values", &sigblk::values, List()));

/// Of a range of several values; a value alone is a number.
template <>
inline constexpr auto kKeys<muxor_val_range> = std::tuple(required("low", &muxor_val_range::low),
                                                          required("high", &muxor_val_range::high));

template <>
inline constexpr auto kKeys<env_var_blk> = std::tuple(
    required("name", &env_var_blk::name),
    optional("type", &env_var_blk::type, NumberWord{kVariableTypes}),
    required("id", &env_var_blk::id), optional("minimum", &env_var_blk::minimum),
    optional("maximum", &env_var_blk::maximum), optional("initial", &env_var_blk::initial),
    optional("unit", &env_var_blk::unit), optional("access_type", &env_var_blk::access_type),
    optional("access_nodes", &env_var_blk::access_nodes, List{ZELK_OBJ_REL_ENVVAR}),
    optional("data_size", &env_var_blk::data_size),
    optional("category", &env_var_blk::category, Reference()),
    optional("comment", &env_var_blk::comment),
    optional("attributes", &env_var_blk::attrs, List{ZELK_OBJ_ENVVAR}),
    optional("values", &env_var_blk::values, List()));

template <>
inline constexpr auto kKeys<filter_t> = std::tuple(
    optional("mode", &filter_t::mode), optional("categories", &filter_t::categories, List()),
    optional("nodes", &filter_t::nodes, List{ZELK_OBJ_NODE}));

}  // namespace zelk::modules::json

#endif
