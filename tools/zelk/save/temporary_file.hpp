/// \file
/// Writing a database where nobody sees it.

#ifndef ZELK_TOOL_SAVE_TEMPORARY_FILE_HPP
#define ZELK_TOOL_SAVE_TEMPORARY_FILE_HPP

#include <memory>
#include <string>

#include "files/held_folder.hpp"
#include "zelk/database.hpp"

namespace zelk::tool {

/// A file in a folder of its own, which takes the place of what killed runs left; the destructor
/// removes both, also when memory has run out.
class TemporaryFile {
 public:
  /// @throws RequestError when the system has no room for it
  TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  std::string path() const { return (folder_->path() / "written.dbc").string(); }

 private:
  std::unique_ptr<files::HeldFolder> folder_;
};

/// Writes the file as `zelk_write` does, but for an empty line at its end.
///
/// @throws RequestError with the system's reason when it cannot be written whole
void write_to(const std::string& path, const ZelkDatabase& database);

}  // namespace zelk::tool

#endif
