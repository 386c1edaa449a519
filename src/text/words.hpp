/// \file
/// Words with a meaning of their own in the format, and the shape of names.

#ifndef ZELK_TEXT_WORDS_HPP
#define ZELK_TEXT_WORDS_HPP

#include <array>
#include <cstdint>
#include <string_view>

#include "zelk/records.h"

namespace zelk {

/// In front of the hexadecimal access code of an environment variable.
inline constexpr std::string_view kAccessCodePrefix = "DUMMY_NODE_OSTREL";
/// Bit of a written access code that marks a variable of type string.
inline constexpr unsigned kAccessCodeString = 0x8000;
/// The empty item of an ENUM.
inline constexpr std::string_view kEmptyItem = "ostrel_leerstring";
/// A link of the view filter to no node, in quotes.
inline constexpr std::string_view kNoFilterNode = "<<none>>";

/// The attributes that carry names too long for the format, in the order of the definition slots:
/// signal, message, node, environment variable.
inline constexpr std::array<std::string_view, 4> kLongNameAttributes = {
    "SystemSignalLongSymbol", "SystemMessageLongSymbol", "SystemNodeLongSymbol",
    "SystemEnvVarLongSymbol"};

/// Whether definitions of this kind describe a relation between a node and another object. These
/// and the ordinary ones have names and statements of their own.
constexpr bool is_relation(std::int32_t object_type) {
  return object_type == ZELK_OBJ_REL_SIGNAL || object_type == ZELK_OBJ_REL_MESSAGE ||
         object_type == ZELK_OBJ_REL_ENVVAR;
}

inline bool is_no_node(std::string_view name) { return name == ZELK_NO_NODE; }

/// Whether the lexer takes `text` for one name: a letter or "_", then letters, digits and "_"; not
/// a keyword.
bool is_name(std::string_view text);

/// Whether a written file could hold `name` as the name of an object, so that it would be read
/// back.
bool can_name_object(std::string_view name, bool is_node);

}  // namespace zelk

#endif
