/// \file
/// Words of the document that stand for numbers of the records.

#ifndef ZELK_MODULES_JSON_WORDS_HPP
#define ZELK_MODULES_JSON_WORDS_HPP

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include "zelk/records.h"

namespace zelk::modules::json {

struct Word {
  std::string_view text;
  std::int64_t number;
};

/// All words that a place takes.
using Words = std::span<const Word>;

inline constexpr const char* kFormat = "zelk-json";
inline constexpr int kVersion = 1;
inline constexpr const char* kEncodings[] = {"utf-8", "windows-1252"};  // as `Encoding`

inline constexpr const char* kIntel = "intel";
inline constexpr const char* kMotorola = "motorola";

inline constexpr std::array<Word, 3> kValueTypes = {{{"integer", ZELK_VALUE_INTEGER},
                                                     {"ieee_single", ZELK_VALUE_IEEE_SINGLE},
                                                     {"ieee_double", ZELK_VALUE_IEEE_DOUBLE}}};

inline constexpr std::array<Word, 4> kVariableTypes = {{{"integer", ZELK_ENVVAR_INTEGER},
                                                        {"float", ZELK_ENVVAR_FLOAT},
                                                        {"string", ZELK_ENVVAR_STRING},
                                                        {"data", ZELK_ENVVAR_DATA}}};

inline constexpr std::array<Word, 9> kObjectTypes = {
    {{"network", ZELK_OBJ_NETWORK},
     {"node", ZELK_OBJ_NODE},
     {"message", ZELK_OBJ_MESSAGE},
     {"signal", ZELK_OBJ_SIGNAL},
     {"environment_variable", ZELK_OBJ_ENVVAR},
     {"signal_type", ZELK_OBJ_SIGTYPE},
     {"node_signal", ZELK_OBJ_REL_SIGNAL},
     {"node_message", ZELK_OBJ_REL_MESSAGE},
     {"node_environment_variable", ZELK_OBJ_REL_ENVVAR}}};

inline constexpr std::array<Word, 5> kAttributeTypes = {{{"int", ZELK_ATTR_INT},
                                                         {"float", ZELK_ATTR_FLOAT},
                                                         {"string", ZELK_ATTR_STRING},
                                                         {"enum", ZELK_ATTR_ENUM},
                                                         {"hex", ZELK_ATTR_HEX}}};

}  // namespace zelk::modules::json

#endif
