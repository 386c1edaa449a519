#include "files/files.hpp"
#include "files/paths_win32.hpp"

namespace zelk::files {

namespace {

/// Null for a path that does not exist: an empty one must not become the working folder.
File open_file(const char* path, const wchar_t* mode) {
  const std::wstring name = system_path(path);
  File file(name.empty() ? nullptr : _wfopen(name.c_str(), mode));
  if (file) std::setvbuf(file.get(), nullptr, _IONBF, 0);
  return file;
}

}  // namespace

File open_for_reading(const char* path) { return open_file(path, L"rbN"); }

File open_for_writing(const char* path, Content content) {
  return open_file(path, content == Content::kText ? L"wtN" : L"wbN");
}

File open_for_appending(const char* path) { return open_file(path, L"abN"); }

}  // namespace zelk::files
