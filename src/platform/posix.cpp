#include <langinfo.h>
#include <sys/stat.h>

#include <cstdlib>
#include <cstring>
#include <cwchar>

#include "platform/platform.hpp"

namespace zelk::platform {
namespace {

bool is_directory(std::FILE* file) {
  struct stat status = {};
  return fstat(fileno(file), &status) == 0 && S_ISDIR(status.st_mode);
}

/// Whether the C library takes `byte`, alone, for the beginning of a longer character.
bool begins_character(char byte) {
  std::mbstate_t state = {};
  return std::mbrlen(&byte, 1, &state) == static_cast<std::size_t>(-2);
}

}  // namespace

File open_for_reading(const char* path) {
  File file(std::fopen(path, "rbe"));
  if (!file || is_directory(file.get())) return nullptr;
  std::setvbuf(file.get(), nullptr, _IONBF, 0);
  return file;
}

File open_for_writing(const char* path) {
  File file(std::fopen(path, "we"));
  if (file) std::setvbuf(file.get(), nullptr, _IONBF, 0);
  return file;
}

std::array<bool, 256> lead_bytes() {
  std::array<bool, 256> leads = {};
  if (MB_CUR_MAX == 1 || std::strcmp(nl_langinfo(CODESET), "UTF-8") == 0) return leads;
  for (unsigned byte = 0x80; byte < leads.size(); ++byte) {
    leads[byte] = begins_character(static_cast<char>(byte));
  }
  return leads;
}

}  // namespace zelk::platform
