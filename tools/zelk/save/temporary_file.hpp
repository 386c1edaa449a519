/// \file
/// Writing a database where nobody sees it.

#ifndef ZELK_TOOL_SAVE_TEMPORARY_FILE_HPP
#define ZELK_TOOL_SAVE_TEMPORARY_FILE_HPP

#include <filesystem>
#include <string>

#include "zelk/database.hpp"

namespace zelk::tool {

/// A file in a new folder; the destructor removes both, also when memory has run out.
class TemporaryFile {
 public:
  TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile();

  std::string path() const { return file_.string(); }

 private:
  std::filesystem::path folder_;
  std::filesystem::path file_;
};

/// Writes the file as `zelk_write` does, but for an empty line at its end.
///
/// @throws RequestError with the system's reason when it cannot be written whole
void write_to(const std::string& path, const ZelkDatabase& database);

}  // namespace zelk::tool

#endif
