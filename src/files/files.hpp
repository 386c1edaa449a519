/// \file
/// Opening files, and replacing them in one step. A room of its own, which the library and the
/// program link.
///
/// Paths are NUL-terminated and in the system's encoding of file names: on Windows the process's
/// ANSI code page. A path may be longer than 260 characters on Windows too.

#ifndef ZELK_FILES_FILES_HPP
#define ZELK_FILES_FILES_HPP

#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zelk::files {

struct FileCloser {
  void operator()(std::FILE* file) const noexcept { static_cast<void>(std::fclose(file)); }
};

/// An open file, closed by its destructor.
using File = std::unique_ptr<std::FILE, FileCloser>;

/// Opens a file for reading its bytes as they are, without a buffer of the stream's own. Of a file
/// that is being written in place, or was when its writer was killed, these are those of the whole
/// copy beside it (`Replacement`).
///
/// @return null when the file cannot be opened, or is a directory (`errno` says)
/// @throws std::bad_alloc
File open_for_reading(const char* path);

/// Whether the whole copy of a write in place stands beside the file: the write goes on, or its
/// process was killed. The next `Replacement` of the file ends it then.
///
/// @throws std::bad_alloc
bool has_unended_write(const char* path);

/// What a file is written as.
enum class Content {
  kText,  ///< a line feed is written as the system's line end
  kBytes
};

/// Creates or empties a file for writing, without a buffer of the stream's own.
///
/// @return null when the file cannot be opened for writing
/// @throws std::bad_alloc
File open_for_writing(const char* path, Content content = Content::kText);

/// Opens a file for writing bytes behind those that it has, or creates it; without a buffer of the
/// stream's own.
///
/// @return null when the file cannot be opened for writing
/// @throws std::bad_alloc
File open_for_appending(const char* path);

/// All bytes of a file.
///
/// @throws std::system_error with the system's reason, std::bad_alloc
std::string read_all(const char* path);

/// A file that takes the place of another one in a single step, once it is whole: whoever opens the
/// other sees all of the old content or all of the new. It stands beside the other until then; the
/// next replacement of the same file removes what a killed process left there.
///
/// What is no regular file, such as a device, has no place to take and is written to directly. A
/// file with several names (hard links) is written in place, while a whole copy of the new content
/// stands beside it; the next replacement ends such a write when the process was killed.
class Replacement {
 public:
  /// Opens a new file beside `path`, or beside the file that `path` links to. Refuses what this
  /// process may not write.
  explicit Replacement(const char* path, Content content = Content::kText);
  Replacement(const Replacement&) = delete;
  Replacement& operator=(const Replacement&) = delete;
  /// Removes the file unless it has taken its place.
  ~Replacement();

  /// The stream to write to, without a buffer of its own; null after a failure.
  std::FILE* file() const;

  /// Gives the file what the other one has beside its content (permissions, access lists, extended
  /// attributes, and the owner where the process may), puts it on the disk and in its place, then
  /// the folder on the disk, and closes it.
  ///
  /// @pre `file()` is not null
  /// @return false when the system did not do all of that; the other file is as it was then, or
  /// `failure` says where the whole new content is: also in the file itself, whose folder is not on
  /// the disk
  bool take_place();

  /// Why the save failed, as a text for people; empty when it has not.
  const std::string& failure() const { return failure_; }

  /// What else the user should know, as a text for people; may be empty.
  const std::string& notice() const { return notice_; }

 private:
  std::string failure_;
  std::string notice_;
  std::unique_ptr<class Save> save_;  ///< null when it failed to start
};

/// A whole file, and the place that it is to take in the same file system.
struct Move {
  std::filesystem::path fresh;
  std::filesystem::path place;
};

struct FailedMove {
  std::filesystem::path place;  ///< or the folder that cannot be put on the disk
  std::string reason;           ///< a text for people
};

/// Replaces several files at once. Before the first one takes its place, all of them have what the
/// files at their places have beside their content, and are on the disk; in the end their folders
/// are.
///
/// @param new_folders  made for these files: their names are put on the disk too
/// @return the first failure; of those that this process may not write, no place is taken
std::optional<FailedMove> take_places(const std::vector<Move>& moves,
                                      const std::vector<std::filesystem::path>& new_folders);

}  // namespace zelk::files

#endif
