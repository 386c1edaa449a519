#include <fcntl.h>
#include <io.h>

#include <cerrno>
#include <utility>

#include "files/in_place_win32.hpp"
#include "files/paths_win32.hpp"
#include "files/save_failure.hpp"
#include "files/unbuffered.hpp"

namespace zelk::files {

namespace {

/// Null for a path that does not exist: an empty one must not become the working folder.
File open_file(const char* path, const wchar_t* mode) {
  const std::wstring name = system_path(path);
  errno = ENOENT;
  return unbuffered(name.empty() ? nullptr : _wfopen(name.c_str(), mode));
}

/// A stream that closes the handle.
File stream_of(Handle handle) {
  const int number =
      _open_osfhandle(reinterpret_cast<intptr_t>(handle.get()), _O_BINARY | _O_RDONLY);
  if (number < 0) return nullptr;
  handle.release();
  std::FILE* const stream = _fdopen(number, "rb");
  if (!stream) _close(number);
  return unbuffered(stream);
}

}  // namespace

File open_for_reading(const char* path) try {
  File file = open_file(path, L"rbN");
  Handle copy = file ? open_whole_copy(behind_link(path)) : nullptr;
  return copy ? stream_of(std::move(copy)) : std::move(file);
} catch (const SaveFailure&) {
  errno = EIO;
  return nullptr;
}

bool has_unended_write(const char* path) {
  const std::wstring copy = whole_copy_of(behind_link(path)).wstring();
  return GetFileAttributesW(copy.c_str()) != INVALID_FILE_ATTRIBUTES;
}

File open_for_writing(const char* path, Content content) {
  return open_file(path, content == Content::kText ? L"wtN" : L"wbN");
}

File open_for_appending(const char* path) { return open_file(path, L"abN"); }

}  // namespace zelk::files
