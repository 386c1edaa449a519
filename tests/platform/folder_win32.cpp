#include <windows.h>

#include "platform/folder.hpp"

std::string encoded(const std::filesystem::path& path) {
  char text[1000] = {};
  WideCharToMultiByte(CP_ACP, 0, path.c_str(), -1, text, sizeof text - 1, nullptr, nullptr);
  return text;
}

std::filesystem::path at_any_length(const std::filesystem::path& absolute) {
  std::filesystem::path native = absolute;
  return L"\\\\?\\" + native.make_preferred().native();
}
