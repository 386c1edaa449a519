#include "check/includes/include_folder.hpp"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <system_error>

#include "base/characters.hpp"
#include "base/check_memory.hpp"
#include "base/encoding.hpp"

namespace zelk::check {

namespace fs = std::filesystem;

namespace {

/// Why a name is refused by its spelling alone, on every system alike; empty when it is not.
std::string_view fault_of_spelling(std::string_view name) {
  const auto is_control = [](char c) { return static_cast<unsigned char>(c) < ' '; };
  if (name.empty()) return "it names no file";
  if (std::ranges::any_of(name, is_control)) return "the name has control characters";
  if (name.front() == '/') return "the name is absolute";
  if (name.find('\\') != std::string_view::npos) return "the name has a backslash";
  if (name.find(':') != std::string_view::npos) return "the name has a colon";
  for (std::size_t at = 0; at <= name.size();) {
    const std::size_t end = std::min(name.find('/', at), name.size());
    if (name.substr(at, end - at) == "..") return "the name leads upward";
    at = end + 1;
  }
  return {};
}

bool ends_in_dbc(std::string_view name) {
  constexpr std::string_view kEnding = ".DBC";
  if (name.size() < kEnding.size()) return false;
  return std::ranges::equal(name.substr(name.size() - kEnding.size()), kEnding, {}, to_upper);
}

}  // namespace

fs::path path_of(std::string_view text) { return {std::u8string(text.begin(), text.end())}; }

std::optional<std::string> bytes_of(const fs::path& path, std::size_t most) {
  std::error_code error;
  const std::uintmax_t size = fs::file_size(path, error);
  check_memory(error);
  if (error || size > most) return std::nullopt;
  std::string bytes(static_cast<std::size_t>(size), '\0');
  errno = 0;
  std::ifstream file(path, std::ios::binary);
  if (file.read(bytes.data(), static_cast<std::streamsize>(size))) return bytes;
  check_memory(errno);
  return std::nullopt;
}

IncludeFolder::IncludeFolder(const std::string& path) : path_(path_of(path)) {
  std::error_code error;
  canonical_ = fs::canonical(path_, error);
  check_memory(error);
  if (error) canonical_.clear();
}

IncludeFolder::Place IncludeFolder::find(std::string_view name) const try {
  Place place = {{}, to_utf8(name, encoding_of(name)), fault_of_spelling(name)};
  if (!place.fault.empty()) return place;
  std::error_code error;
  place.path = fs::canonical(path_ / path_of(place.name), error);
  if (error && !ends_in_dbc(place.name)) {
    place.name += ".dbc";
    place.path = fs::canonical(path_ / path_of(place.name), error);
  }
  check_memory(error);
  if (error) {
    place.fault = "there is no such file";
  } else if (!is_below(place.path)) {
    place.fault = "it leads out of the folder";
  } else if (!fs::is_regular_file(place.path, error)) {
    place.fault = "it is no regular file";
  }
  return place;
} catch (const std::system_error&) {
  return {{}, std::string(name), "the system takes no such name"};
}

bool IncludeFolder::is_below(const fs::path& path) const {
  const auto end = canonical_.end();
  return !canonical_.empty() &&
         std::mismatch(canonical_.begin(), end, path.begin(), path.end()).first == end;
}

}  // namespace zelk::check
