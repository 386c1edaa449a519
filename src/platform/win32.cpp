#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <algorithm>
#include <atomic>
#include <string>
#include <utility>

#include "platform/module_entry.hpp"
#include "platform/platform.hpp"

namespace zelk::platform {
namespace {

/// In UTF-16; empty when `text` is no text of the process's code page.
std::wstring wide(const char* text) {
  const int size = MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, text, -1, nullptr, 0);
  if (size <= 0) return {};
  std::wstring result(static_cast<std::size_t>(size), L'\0');
  MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, text, -1, result.data(), size);
  result.pop_back();
  return result;
}

/// Without "." and ".."; empty when there is no such path.
std::wstring absolute_path(const char* path) {
  const std::wstring relative = wide(path);
  if (relative.empty()) return {};
  std::wstring absolute(GetFullPathNameW(relative.c_str(), 0, nullptr, nullptr), L'\0');
  const auto size = static_cast<DWORD>(absolute.size());
  absolute.resize(GetFullPathNameW(relative.c_str(), size, absolute.data(), nullptr));
  return absolute;
}

/// The longest path that is used as it is written: it leaves room for another name in its folder.
constexpr std::size_t kPlainPathMax = MAX_PATH - 60;

/// The path as the system takes it at any length. A short one stays as it is written, since the
/// prefix would take the meaning from names such as "NUL".
std::wstring system_path(const char* path) {
  const std::wstring absolute = absolute_path(path);
  if (absolute.size() < kPlainPathMax) return wide(path);
  if (absolute.starts_with(L"\\\\?\\") || absolute.starts_with(L"\\\\.\\")) return absolute;
  if (absolute.starts_with(L"\\\\")) return L"\\\\?\\UNC" + absolute.substr(1);
  return L"\\\\?\\" + absolute;
}

/// Null for a path that does not exist: an empty one must not become the working folder.
File open_file(const char* path, const wchar_t* mode) {
  const std::wstring name = system_path(path);
  File file(name.empty() ? nullptr : _wfopen(name.c_str(), mode));
  if (file) std::setvbuf(file.get(), nullptr, _IONBF, 0);
  return file;
}

struct HandleCloser {
  void operator()(HANDLE handle) const noexcept { CloseHandle(handle); }
};

using Handle = std::unique_ptr<void, HandleCloser>;

/// Opens a file or folder only to be asked what it is, beside whoever uses it; null when it does
/// not exist.
Handle open_to_ask(const std::filesystem::path& path) {
  constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const HANDLE handle = CreateFileW(path.c_str(), 0, kShareAll, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  return Handle(handle == INVALID_HANDLE_VALUE ? nullptr : handle);
}

/// Whether a path names a device, such as "NUL" or a pipe, and no place on a disk.
bool is_device(const std::filesystem::path& path) {
  const Handle handle = open_to_ask(path);
  return handle && GetFileType(handle.get()) != FILE_TYPE_DISK;
}

/// A name that no other replacement of this process or another running one has.
std::wstring replacement_name() {
  static unsigned counter = 0;
  return L".zelk-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++counter);
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

File open_for_reading(const char* path) { return open_file(path, L"rbN"); }

File open_for_writing(const char* path) { return open_file(path, L"wtN"); }

Replacement::Replacement(const char* path) : target_(system_path(path)) {
  std::error_code error;
  const std::filesystem::path linked = std::filesystem::canonical(target_, error);
  if (!error && std::filesystem::is_symlink(target_, error)) target_ = linked;
  if (is_device(target_)) {
    file_ = open_for_writing(path);
  } else {
    create();
  }
}

void Replacement::create() {
  if (target_.empty()) return;
  std::wstring path = (target_.parent_path() / replacement_name()).wstring();
  const HANDLE handle = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) return;
  path_ = std::move(path);
  const int descriptor = _open_osfhandle(reinterpret_cast<intptr_t>(handle), _O_TEXT);
  if (descriptor < 0) {
    CloseHandle(handle);
    return;
  }
  file_.reset(_fdopen(descriptor, "wt"));
  if (file_) {
    std::setvbuf(file_.get(), nullptr, _IONBF, 0);
  } else {
    _close(descriptor);
  }
}

bool Replacement::take_place() {
  if (path_.empty()) return std::fclose(file_.release()) == 0;
  const bool is_on_disk = _commit(_fileno(file_.get())) == 0;
  const bool is_closed = std::fclose(file_.release()) == 0;
  if (!is_on_disk || !is_closed) return false;
  const auto is_there = [this] {
    return GetFileAttributesW(target_.c_str()) != INVALID_FILE_ATTRIBUTES;
  };
  const bool was_there = is_there();
  // The first way keeps what Windows knows about the old file, such as who may use it; it wants one
  // to be there, and a file system that can do it.
  const bool is_in_place = ReplaceFileW(target_.c_str(), path_.c_str(), nullptr,
                                        REPLACEFILE_IGNORE_MERGE_ERRORS, nullptr, nullptr) != 0 ||
                           MoveFileExW(path_.c_str(), target_.c_str(),
                                       MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
  // The first way can fail after it has removed the old file: the new one is all there is then.
  if (is_in_place || (was_there && !is_there())) path_.clear();
  return is_in_place;
}

Replacement::~Replacement() {
  file_.reset();
  if (!path_.empty()) DeleteFileW(path_.c_str());
}

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

Module load_module(const char* path) { return Module(LoadLibraryW(system_path(path).c_str())); }

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
