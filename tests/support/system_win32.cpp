#include <windows.h>

#include <clocale>

#include "support/system.hpp"

const char* const kLineEnd = "\r\n";

bool enter_decimal_comma() { return std::setlocale(LC_ALL, "German"); }

// The code page is the process's own and not to be changed.
bool enter_double_byte_characters() { return IsDBCSLeadByte(0x83); }
