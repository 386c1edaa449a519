#include <windows.h>

#include <algorithm>
#include <string>

#include "platform/module_entry.hpp"
#include "platform/paths_win32.hpp"
#include "platform/platform.hpp"

namespace zelk::platform {
namespace {

/// Null for a path that does not exist: an empty one must not become the working folder.
File open_file(const char* path, const wchar_t* mode) {
  const std::wstring name = system_path(path);
  File file(name.empty() ? nullptr : _wfopen(name.c_str(), mode));
  if (file) std::setvbuf(file.get(), nullptr, _IONBF, 0);
  return file;
}

/// Whether both files exist and are not the same one; folders may tell "a" and "A" apart.
bool are_different_files(const char* a, const char* b) {
  const Handle handle_a = open_to_ask(system_path(a));
  const Handle handle_b = open_to_ask(system_path(b));
  BY_HANDLE_FILE_INFORMATION info_a = {};
  BY_HANDLE_FILE_INFORMATION info_b = {};
  if (!handle_a || !handle_b || !GetFileInformationByHandle(handle_a.get(), &info_a) ||
      !GetFileInformationByHandle(handle_b.get(), &info_b)) {
    return false;
  }
  return info_a.dwVolumeSerialNumber != info_b.dwVolumeSerialNumber ||
         info_a.nFileIndexHigh != info_b.nFileIndexHigh ||
         info_a.nFileIndexLow != info_b.nFileIndexLow;
}

}  // namespace

File open_for_reading(const char* path) { return open_file(path, L"rbN"); }

File open_for_writing(const char* path) { return open_file(path, L"wtN"); }

std::optional<FileStatus> file_status(const char* path) {
  WIN32_FILE_ATTRIBUTE_DATA data = {};
  if (!GetFileAttributesExW(system_path(path).c_str(), GetFileExInfoStandard, &data)) {
    return std::nullopt;
  }
  const std::int64_t high = data.ftLastWriteTime.dwHighDateTime;
  const bool is_read_only = (data.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0;
  return FileStatus{{(high << 32) | data.ftLastWriteTime.dwLowDateTime}, !is_read_only};
}

bool is_same_path(const char* a, const char* b) {
  const std::wstring absolute_a = absolute_path(a);
  const std::wstring absolute_b = absolute_path(b);
  constexpr BOOL kIgnoreCase = TRUE;
  if (absolute_a.empty() || CompareStringOrdinal(absolute_a.c_str(), -1, absolute_b.c_str(), -1,
                                                 kIgnoreCase) != CSTR_EQUAL) {
    return false;
  }
  return absolute_a == absolute_b || !are_different_files(a, b);
}

std::array<bool, 256> lead_bytes() {
  std::array<bool, 256> leads = {};
  for (unsigned byte = 0x80; byte < leads.size(); ++byte) {
    leads[byte] = IsDBCSLeadByte(static_cast<BYTE>(byte)) != 0;
  }
  return leads;
}

void ModuleUnloader::operator()(void* module) const noexcept {
  FreeLibrary(static_cast<HMODULE>(module));
}

/// A bare name is looked for where the system looks for modules, and not made a path.
Module load_module(const char* path) {
  const std::wstring name = wide(path);
  const bool is_bare = name.find_first_of(L"\\/:") == name.npos;
  return Module(LoadLibraryW(is_bare ? name.c_str() : system_path(path).c_str()));
}

Function find_function(void* module, const char* name) {
  return reinterpret_cast<Function>(GetProcAddress(static_cast<HMODULE>(module), name));
}

void own_file_name(char* buffer, std::uint32_t size_bytes) {
  if (size_bytes == 0) return;
  const auto module = static_cast<HMODULE>(module_entry().module);
  const DWORD length = GetModuleFileNameA(module, buffer, size_bytes);
  buffer[std::min<DWORD>(length, size_bytes - 1)] = '\0';  // not every system ends a name it cuts
}

std::uint32_t registered_message(const char* name) { return RegisterWindowMessageA(name); }

void post(const zelk_notification& notification) {
  const WPARAM sender = notification.sender;
  const auto name = reinterpret_cast<LPARAM>(notification.database_name);
  switch (notification.target) {
    case ZELK_NOTIFY_ALL_WINDOWS:
      PostMessageA(HWND_BROADCAST, notification.message, sender, name);
      break;
    case ZELK_NOTIFY_WINDOW:
      if (!notification.handle) break;  // the system takes no window for the calling thread
      PostMessageA(static_cast<HWND>(notification.handle), notification.message, sender, name);
      break;
    case ZELK_NOTIFY_THREAD: {
      const auto thread_id =
          static_cast<DWORD>(reinterpret_cast<std::uintptr_t>(notification.handle));
      PostThreadMessageA(thread_id, notification.message, sender, name);
      break;
    }
  }
}

void show_message_box(const char* text, const char* title, std::uint32_t style) {
  MessageBoxA(nullptr, text, title, style);
}

}  // namespace zelk::platform

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID) {
  if (reason == DLL_PROCESS_ATTACH) zelk::platform::attach(module);
  if (reason == DLL_PROCESS_DETACH) zelk::platform::detach();
  return TRUE;
}
