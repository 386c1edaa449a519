/// \file
/// Putting bytes into a file, as they are.

#ifndef ZELK_TOOL_SAVE_REPLACE_FILE_HPP
#define ZELK_TOOL_SAVE_REPLACE_FILE_HPP

#include <string>
#include <string_view>

#include "files/files.hpp"

namespace zelk::tool {

/// A file that is written bit by bit and then takes the place of the one at its path, with the care
/// of `ZelkDatabase::Write` for the old file, its permissions and its links. The old one stays
/// until then, and when this is destroyed before.
class ReplacedFile {
 public:
  /// Prints on standard error what the user should know beside.
  ///
  /// @throws RequestError that says why when the path cannot be written
  explicit ReplacedFile(const std::string& path);

  /// @throws RequestError that says why when the system does not take the bytes
  void write(std::string_view bytes);

  /// Puts the file in its place; `HeldSignals` keep this whole.
  ///
  /// @throws RequestError that says why when it is not there
  void take_place();

 private:
  files::Replacement file_;
};

/// Puts `bytes` into the file at `path`, all of them or none, with the signals held back that end a
/// program.
///
/// @throws RequestError that says why when the file is not written
void replace_file(const std::string& path, std::string_view bytes);

/// Makes the file at `path` whole when an earlier write to it did not end, and prints a warning
/// about that: for commands that have nothing else to change there.
///
/// @throws RequestError that says why when it cannot be done
void end_earlier_write(const std::string& path);

}  // namespace zelk::tool

#endif
