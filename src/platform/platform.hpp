/// \file
/// What the library needs of an operating system; one source file per system fulfils it.
///
/// Paths are NUL-terminated and in the system's encoding of file names: on Windows the process's
/// ANSI code page. A path may be longer than 260 characters on Windows too.

#ifndef ZELK_PLATFORM_PLATFORM_HPP
#define ZELK_PLATFORM_PLATFORM_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>

#include "zelk/platform.h"

namespace zelk::platform {

struct FileCloser {
  void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};

/// An open file, closed when it goes.
using File = std::unique_ptr<std::FILE, FileCloser>;

/// Opens a file for reading its bytes as they are, without a buffer of the stream's own.
///
/// @return null when the file cannot be opened, or is a directory
File open_for_reading(const char* path);

/// Creates or empties a file for writing text, without a buffer of the stream's own: a line feed is
/// written as the system's line end.
///
/// @return null when the file cannot be opened for writing
File open_for_writing(const char* path);

/// A file that takes the place of another one in a single step, once it is whole: whoever opens the
/// other sees all of the old content or all of the new. What is no regular file, such as a device,
/// has no place to take and is written to directly.
class Replacement {
 public:
  /// Creates an empty file for text in the folder of `path`, or of the file that `path` links to,
  /// with the owner and the permissions of the file that is there, as far as the system lets it.
  explicit Replacement(const char* path);
  Replacement(const Replacement&) = delete;
  Replacement& operator=(const Replacement&) = delete;
  /// Removes the file unless it has taken its place.
  ~Replacement();

  /// The stream to write to, without a buffer of its own; null when no file could be created.
  std::FILE* file() const { return file_.get(); }

  /// Puts the content on the disk and the file in its place, and closes it.
  ///
  /// @return false when the system did not do all of that; the other file is as it was then
  bool take_place();

 private:
  void create();

  std::filesystem::path target_;
  /// Of the file to remove; empty when there is none. A text, which is moved without allocating: no
  /// file stays behind when memory runs out.
  std::filesystem::path::string_type path_;
  File file_;
};

/// When a file was last changed, to what the file system keeps; two readings of an unchanged file
/// are equal.
struct FileTime {
  std::int64_t ticks = 0;  ///< nanoseconds since 1970 on Linux, 100 ns since 1601 on Windows

  bool operator==(const FileTime&) const = default;
};

struct FileStatus {
  FileTime modified;
  bool owner_may_write;
};

/// @return none when nothing of that name exists, or it cannot be asked for
std::optional<FileStatus> file_status(const char* path);

/// Whether two paths name one file: made absolute, they are equal but for the case of letters, and
/// where they differ in case they do not lead to two different files.
///
/// @return false also when a path cannot be made absolute
bool is_same_path(const char* a, const char* b);

/// The bytes that begin a double-byte character in the process's code page; none in single-byte
/// code pages, nor in those (such as UTF-8) in which no later byte of a character can be an ASCII
/// one.
std::array<bool, 256> lead_bytes();

struct ModuleUnloader {
  void operator()(void* module) const noexcept;
};

/// A loaded module, let go of when this goes.
using Module = std::unique_ptr<void, ModuleUnloader>;

/// @return null when there is no loadable module of that name
Module load_module(const char* path);

/// A pointer of each thread's own; null until the thread sets one.
void* thread_value() noexcept;

/// Sets the calling thread's pointer. The end of the thread hands it to `release_thread_value`
/// (module_entry.hpp). The main thread ends with the process: its pointer stays while `atexit`
/// handlers and destructors of global objects run.
///
/// @return false when the system keeps no pointer (any more)
bool set_thread_value(void* value) noexcept;

using Function = void (*)();

/// @return null when `module` exports no function of that name
Function find_function(void* module, const char* name);

/// Puts the full file name of the library (of the program, where the library is linked into it)
/// into `buffer`, cut to `size_bytes` - 1 characters and terminated; nothing when `size_bytes` is
/// 0.
void own_file_name(char* buffer, std::uint32_t size_bytes);

/// The number of the message of this name, the same for everybody who asks for it.
///
/// @return 0xC000 to 0xFFFF; 0 when the system has no number left
std::uint32_t registered_message(const char* name);

/// Posts to windows or a thread, and never waits for them. To post to nobody is no error. See
/// hooks.hpp for what the library calls.
void post(const zelk_notification& notification);

/// Shows a message in the system's way and returns when the user has taken note of it.
///
/// @param style  bits of a Windows message box
void show_message_box(const char* text, const char* title, std::uint32_t style);

}  // namespace zelk::platform

#endif
