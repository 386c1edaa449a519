/// \file
/// Paths and handles of Windows.

#ifndef ZELK_FILES_PATHS_WIN32_HPP
#define ZELK_FILES_PATHS_WIN32_HPP

#include <windows.h>

#include <filesystem>
#include <memory>
#include <string>

namespace zelk::files {

/// In UTF-16; empty when `text` is no text of the process's code page.
std::wstring wide(const char* text);

/// Without "." and ".."; empty when there is no such path.
std::wstring absolute_path(const char* path);

/// The path as the system takes it at any length. A short one stays as it is written, since the
/// prefix would take the meaning from names such as "NUL".
std::wstring system_path(const char* path);

/// The same for what a path names behind a link.
std::filesystem::path behind_link(const char* path);

/// A file that a save makes beside its target (save.hpp).
std::filesystem::path beside(const std::filesystem::path& target, const std::wstring& ending);

struct HandleCloser {
  void operator()(HANDLE handle) const noexcept { CloseHandle(handle); }
};

/// An open file, closed by its destructor.
using Handle = std::unique_ptr<void, HandleCloser>;

inline constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/// @param share  what others may do with the file while it is open
/// @param disposition  what to do when the file exists, and when it does not
/// @return null when the system does not open it (`GetLastError` says)
Handle open_handle(const std::filesystem::path& path, DWORD access, DWORD share, DWORD disposition,
                   DWORD flags = FILE_ATTRIBUTE_NORMAL);

/// Opens a file or folder to ask what it is, also while others use it; null when it does not exist.
Handle open_to_ask(const std::filesystem::path& path);

}  // namespace zelk::files

#endif
