/// What stands in files.
#ifndef ZELK_TESTS_SUPPORT_FILES_HPP
#define ZELK_TESTS_SUPPORT_FILES_HPP

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

/// The file, byte for byte; empty when there is none.
inline std::string bytes_of(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// The file with a line feed for each of the system's line ends, so that one expectation holds on
/// every system; empty when there is none.
inline std::string content_of(const std::filesystem::path& path) {
  std::string content = bytes_of(path);  // in text mode Windows would end it at a 0x1A byte
  for (std::size_t at = 0; (at = content.find("\r\n", at)) != std::string::npos;) {
    content.erase(at, 1);
  }
  return content;
}

#endif
