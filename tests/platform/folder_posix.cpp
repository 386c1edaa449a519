#include "platform/folder.hpp"

std::string encoded(const std::filesystem::path& path) { return path.string(); }

std::filesystem::path at_any_length(const std::filesystem::path& absolute) { return absolute; }
