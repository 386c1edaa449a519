/// What the tests need of the operating system, and what is different on each.
#ifndef ZELK_TESTS_SUPPORT_SYSTEM_HPP
#define ZELK_TESTS_SUPPORT_SYSTEM_HPP

#include <filesystem>
#include <string>

/// The bytes that end a line of a text file.
extern const char* const kLineEnd;

/// Makes the C library write a decimal comma, until `setlocale`; false when the system cannot.
bool enter_decimal_comma();

/// Makes the two bytes 0x83 0x5C one character, as they are in Shift-JIS, until `setlocale`; false
/// when the system cannot.
bool enter_double_byte_characters();

/// A path as the library takes it.
std::string encoded(const std::filesystem::path& path);

/// A path as the C++ library takes one of more than 260 characters.
std::filesystem::path at_any_length(const std::filesystem::path& absolute);

#endif
