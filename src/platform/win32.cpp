#include <windows.h>

#include <algorithm>
#include <atomic>
#include <string>

#include "files/paths_win32.hpp"
#include "platform/module_entry.hpp"
#include "platform/platform.hpp"

namespace zelk::platform {

using files::absolute_path;
using files::Handle;
using files::open_to_ask;
using files::system_path;
using files::wide;

namespace {

/// In the process's code page; none when that lacks a character.
std::optional<std::string> narrow(const std::wstring& text) {
  const auto size = static_cast<int>(text.size());
  const int narrow_size =
      WideCharToMultiByte(CP_ACP, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
  std::string result(static_cast<std::size_t>(narrow_size), '\0');
  WideCharToMultiByte(CP_ACP, 0, text.data(), size, result.data(), narrow_size, nullptr, nullptr);
  if (wide(result.c_str()) != text) return std::nullopt;
  return result;
}

/// Letter by letter, as file systems compare names.
std::wstring upper_case(const std::wstring& text) {
  std::wstring result(text.size(), L'\0');
  const auto size = static_cast<int>(text.size());
  LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_UPPERCASE, text.data(), size, result.data(), size,
                nullptr, nullptr, 0);
  return result;
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

/// The system's index for the threads' own pointers.
struct ThreadIndex {
  ThreadIndex() noexcept
      : index(FlsAlloc(release_of_thread)), is_open(index != FLS_OUT_OF_INDEXES) {}
  static void WINAPI release_of_thread(void* value) { release_thread_value(value); }

  DWORD index;
  std::atomic<bool> is_open;
};

ThreadIndex& thread_index() noexcept {
  static ThreadIndex index;
  return index;
}

/// The library is unloaded: releases the pointers of all threads.
void close_thread_index() noexcept {
  if (thread_index().is_open.exchange(false)) FlsFree(thread_index().index);
}

}  // namespace

std::optional<FileStatus> file_status(const char* path) {
  WIN32_FILE_ATTRIBUTE_DATA data = {};
  if (!GetFileAttributesExW(system_path(path).c_str(), GetFileExInfoStandard, &data)) {
    return std::nullopt;
  }
  const std::int64_t high = data.ftLastWriteTime.dwHighDateTime;
  const bool is_read_only = (data.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0;
  return FileStatus{{(high << 32) | data.ftLastWriteTime.dwLowDateTime}, !is_read_only};
}

FilePath::FilePath(const char* path) : text(path), absolute(text) {
  const std::wstring whole = absolute_path(path);
  if (whole.empty()) return;
  absolute = narrow(whole).value_or(text);
  const std::wstring folded = upper_case(whole);
  key.assign(reinterpret_cast<const char*>(folded.data()), folded.size() * sizeof(wchar_t));
}

bool is_same_path(const FilePath& a, const FilePath& b) {
  if (a.key.empty() || a.key != b.key) return false;
  return a.absolute == b.absolute || !are_different_files(a.absolute.c_str(), b.absolute.c_str());
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

void* thread_value() noexcept {
  const ThreadIndex& index = thread_index();
  return index.is_open ? FlsGetValue(index.index) : nullptr;
}

bool set_thread_value(void* value) noexcept {
  const ThreadIndex& index = thread_index();
  return index.is_open && FlsSetValue(index.index, value) != 0;
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

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID process_ends) {
  if (reason == DLL_PROCESS_ATTACH) zelk::platform::attach(module);
  if (reason == DLL_PROCESS_DETACH) {
    // With the process the system takes everything; a thread that it ended may hold the heap's
    // lock.
    if (!process_ends) {
      zelk::platform::close_thread_index();
      zelk::platform::release_notes();
    }
    zelk::platform::detach();
  }
  return TRUE;
}
