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
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

#endif
