/// \file
/// What the library needs of an operating system beside files (files/files.hpp); one source file
/// per system fulfils it.
///
/// Paths are NUL-terminated and in the system's encoding of file names: on Windows the process's
/// ANSI code page. A path may be longer than 260 characters on Windows too.

#ifndef ZELK_PLATFORM_PLATFORM_HPP
#define ZELK_PLATFORM_PLATFORM_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "zelk/platform.h"

namespace zelk::platform {

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

/// @return none when nothing of that name exists, or the system does not say
std::optional<FileStatus> file_status(const char* path);

/// A path, and where it led when this was made, whatever becomes of the working folder.
struct FilePath {
  // NOLINTNEXTLINE(google-explicit-constructor): a path like any other
  FilePath(const char* path);

  std::string text;  ///< as it was given
  /// From the root on; as it was given when that cannot be said in the system's encoding.
  std::string absolute;
  /// Equal for paths whose absolute forms, without "." and "..", differ in nothing but the case of
  /// letters. Empty when the path cannot be made absolute.
  std::string key;
};

/// Whether two paths name one file: their keys are equal, and they do not lead to two different
/// files.
///
/// @return false also when a path cannot be made absolute
bool is_same_path(const FilePath& a, const FilePath& b);

/// The bytes that begin a double-byte character in the process's code page; none in single-byte
/// code pages, nor in those (such as UTF-8) in which no later byte of a character can be an ASCII
/// one.
std::array<bool, 256> lead_bytes();

struct ModuleUnloader {
  void operator()(void* module) const noexcept;
};

/// A loaded module, unloaded by its destructor.
using Module = std::unique_ptr<void, ModuleUnloader>;

/// @return null when there is no loadable module of that name
Module load_module(const char* path);

/// The calling thread's own pointer; null until the thread sets one.
void* thread_value() noexcept;

/// Sets the calling thread's pointer, which `release_thread_value` (module_entry.hpp) gets when the
/// thread ends. The main thread ends with the process: its pointer stays while `atexit` handlers
/// and destructors of global objects run.
///
/// @return false when the system keeps no pointer, or no longer
bool set_thread_value(void* value) noexcept;

using Function = void (*)();

/// @return null when `module` exports no function of that name
Function find_function(void* module, const char* name);

/// Puts the full file name of the library (of the program, where the library is linked into it)
/// into `buffer`, cut to `size_bytes` - 1 characters and terminated; nothing when `size_bytes` is
/// 0.
void own_file_name(char* buffer, std::uint32_t size_bytes);

/// The number of the message of this name, the same for every caller.
///
/// @return 0xC000 to 0xFFFF; 0 when the system has no number left
std::uint32_t registered_message(const char* name);

/// Posts to windows or a thread, and never waits for them; a receiver that does not exist is no
/// error. The library calls `notify` (hooks.hpp) instead.
void post(const zelk_notification& notification);

/// Shows a message in the system's way and returns when the user has taken note of it.
///
/// @param style  bits of a Windows message box
void show_message_box(const char* text, const char* title, std::uint32_t style);

}  // namespace zelk::platform

#endif
