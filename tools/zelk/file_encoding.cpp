#include "file_encoding.hpp"

#include <fmt/format.h>

#include <fstream>
#include <iterator>
#include <optional>

#include "lookup.hpp"
#include "text.hpp"

namespace zelk::tool {

FileEncoding::FileEncoding(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  const std::string bytes((std::istreambuf_iterator<char>(file)), {});
  encoding_ = modules::is_utf8(bytes) ? modules::Encoding::kUtf8 : modules::Encoding::kWindows1252;
}

std::vector<std::string> FileEncoding::stored(const std::vector<std::string>& words) const {
  std::vector<std::string> result;
  for (const std::string& word : words) {
    if (!modules::is_utf8(word)) {
      result.push_back(word);
      continue;
    }
    const std::optional<std::string> bytes = modules::from_utf8(word, encoding_);
    if (!bytes) {
      throw RequestError(
          fmt::format("{} has characters that are not in Windows-1252, the encoding of the file",
                      in_quotes(word)));
    }
    result.push_back(*bytes);
  }
  return result;
}

}  // namespace zelk::tool
