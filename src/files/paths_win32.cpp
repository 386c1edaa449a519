#include "files/paths_win32.hpp"

#include "base/check_memory.hpp"

namespace zelk::files {

std::wstring wide(const char* text) {
  const int size = MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, text, -1, nullptr, 0);
  if (size <= 0) return {};
  std::wstring result(static_cast<std::size_t>(size), L'\0');
  MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, text, -1, result.data(), size);
  result.pop_back();
  return result;
}

std::wstring absolute_path(const char* path) {
  const std::wstring relative = wide(path);
  if (relative.empty()) return {};
  std::wstring absolute(GetFullPathNameW(relative.c_str(), 0, nullptr, nullptr), L'\0');
  const auto size = static_cast<DWORD>(absolute.size());
  absolute.resize(GetFullPathNameW(relative.c_str(), size, absolute.data(), nullptr));
  return absolute;
}

std::wstring system_path(const char* path) {
  // The longest path that is used as it is written: it leaves room for another name in its folder.
  constexpr std::size_t kPlainPathMax = MAX_PATH - 60;
  const std::wstring absolute = absolute_path(path);
  if (absolute.size() < kPlainPathMax) return wide(path);
  if (absolute.starts_with(L"\\\\?\\") || absolute.starts_with(L"\\\\.\\")) return absolute;
  if (absolute.starts_with(L"\\\\")) return L"\\\\?\\UNC" + absolute.substr(1);
  return L"\\\\?\\" + absolute;
}

std::filesystem::path behind_link(const char* path) {
  std::filesystem::path target = system_path(path);
  std::error_code error;
  if (!std::filesystem::is_symlink(target, error)) return target;
  std::filesystem::path linked = std::filesystem::canonical(target, error);
  check_memory(error);
  return error ? target : linked;
}

std::filesystem::path beside(const std::filesystem::path& target, const std::wstring& ending) {
  constexpr std::size_t kLongestName = 200;  // leaves room for the rest of the name
  const std::wstring name = target.filename().wstring().substr(0, kLongestName);
  return target.parent_path() / (L"." + name + L".zelk-" + ending);
}

Handle open_handle(const std::filesystem::path& path, DWORD access, DWORD share, DWORD disposition,
                   DWORD flags) {
  const HANDLE handle =
      CreateFileW(path.c_str(), access, share, nullptr, disposition, flags, nullptr);
  return Handle(handle == INVALID_HANDLE_VALUE ? nullptr : handle);
}

Handle open_to_ask(const std::filesystem::path& path) {
  return open_handle(path, 0, kShareAll, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS);
}

}  // namespace zelk::files
