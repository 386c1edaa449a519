#include <windows.h>

#include <clocale>

#include "support/system.hpp"

const char* const kLineEnd = "\r\n";

bool enter_decimal_comma() { return std::setlocale(LC_ALL, "German"); }

// The code page is the process's own and not to be changed.
bool enter_double_byte_characters() { return IsDBCSLeadByte(0x83); }

std::string encoded(const std::filesystem::path& path) {
  char text[1000] = {};
  WideCharToMultiByte(CP_ACP, 0, path.c_str(), -1, text, sizeof text - 1, nullptr, nullptr);
  return text;
}

std::filesystem::path at_any_length(const std::filesystem::path& absolute) {
  std::filesystem::path native = absolute;
  return L"\\\\?\\" + native.make_preferred().native();
}
