/// \file
/// The characters of a database file.

#ifndef ZELK_TOOL_FILE_ENCODING_HPP
#define ZELK_TOOL_FILE_ENCODING_HPP

#include <string>
#include <vector>

#include "common/encoding.hpp"

namespace zelk::tool {

/// UTF-8 when all of a file is, else Windows-1252.
class FileEncoding {
 public:
  /// @param path  a file that cannot be read counts as UTF-8
  explicit FileEncoding(const std::string& path);

  /// Words of the command line, which are in UTF-8, as the file holds them. What is no UTF-8 is
  /// taken for the file's own bytes.
  ///
  /// @throws RequestError for a character that the file's encoding does not have
  std::vector<std::string> stored(const std::vector<std::string>& words) const;

 private:
  modules::Encoding encoding_;
};

}  // namespace zelk::tool

#endif
