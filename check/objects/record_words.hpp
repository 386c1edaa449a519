/// \file
/// Numbers and codes of records in words.

#ifndef ZELK_CHECK_OBJECTS_RECORD_WORDS_HPP
#define ZELK_CHECK_OBJECTS_RECORD_WORDS_HPP

#include <cstdint>
#include <string>
#include <string_view>

#include "zelk/records.h"

namespace zelk::check {

/// "0x1F": a number in hexadecimal with at least as many digits.
std::string hex_text(std::uint64_t number, int digits);

/// "0.1", "655.35", "1e+20": the shortest text that reads back as this number.
std::string number_text(double number);

/// "0x123", "0x18FEF1FE": the identifier without its format bit, with all its digits.
std::string padded_id(std::uint32_t id);

/// "11-bit" or "29-bit".
std::string_view id_format(std::uint32_t id);

/// "0x123 (291), 11-bit": the identifier without its format bit, and its format.
std::string shown_id(std::uint32_t id);

/// "Intel" or "Motorola", by the flags of a signal or signal type.
std::string_view byte_order(std::uint16_t flags);

/// "signed", "IEEE single", ...: how the bits of a signal or signal type are read.
std::string number_format(std::uint16_t flags, std::uint32_t value_type);

/// "integer", "string", ...: the type of an environment variable (`ZELK_ENVVAR_*`).
std::string_view env_var_type(std::uint32_t type);

/// "3" or "5..7".
std::string range_text(std::uint64_t low, std::uint64_t high);

/// The multiplexor values for which `signal` is present, in list order: "3, 5..7"; empty when it
/// has none.
std::string presence_values(const sigblk& signal);

}  // namespace zelk::check

#endif
