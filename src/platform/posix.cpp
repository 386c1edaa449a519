#include <dlfcn.h>
#include <langinfo.h>
#include <limits.h>
#include <pthread.h>
#include <stdlib.h>
#include <strings.h>
#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <cwchar>
#include <filesystem>
#include <mutex>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "base/check_memory.hpp"
#include "base/compiler.hpp"
#include "platform/immortal.hpp"
#include "platform/module_entry.hpp"
#include "platform/platform.hpp"

namespace zelk::platform {
namespace {

constexpr std::uint64_t kNanosecondsPerSecond = 1'000'000'000;
constexpr std::uint32_t kFirstMessage = 0xC000;
constexpr std::uint32_t kLastMessage = 0xFFFF;

/// Whether the C library takes `byte`, alone, for the beginning of a longer character.
bool begins_character(char byte) {
  std::mbstate_t state = {};
  return std::mbrlen(&byte, 1, &state) == static_cast<std::size_t>(-2);
}

/// Empty when the working folder is gone.
///
/// @throws std::bad_alloc: a file that has no absolute path is found by nobody
std::filesystem::path absolute_path(const char* path) {
  std::error_code error;
  std::filesystem::path absolute = std::filesystem::absolute(path, error);
  check_memory(error);
  return error ? std::filesystem::path() : absolute;
}

/// Whether a path is absolute and has nothing to be taken out: no "." or "..", and no two slashes
/// in a row. Only what looks like it is taken for one of these.
bool is_normal(std::string_view path) {
  return path.starts_with('/') && path.find("//") == path.npos && path.find("/.") == path.npos;
}

/// Case is that of ASCII letters, in whatever locale the process is.
char lower_case(char character) {
  const bool is_upper = character >= 'A' && character <= 'Z';
  return is_upper ? static_cast<char>(character - 'A' + 'a') : character;
}

/// Whether both files exist and are not the same one.
bool are_different_files(const char* a, const char* b) {
  struct stat status_a = {};
  struct stat status_b = {};
  return stat(a, &status_a) == 0 && stat(b, &status_b) == 0 &&
         (status_a.st_dev != status_b.st_dev || status_a.st_ino != status_b.st_ino);
}

/// Since 1970, modulo 2^64: a file may say that it is of any year.
std::int64_t nanoseconds(const timespec& time) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(time.tv_sec) * kNanosecondsPerSecond +
                                   static_cast<std::uint64_t>(time.tv_nsec));
}

/// The file that holds this code, as it was found when the library was loaded: a relative name
/// means nothing any more once the host has changed its working folder.
struct OwnFile {
  void* base = nullptr;
  char path[PATH_MAX] = {};
};

OwnFile& own_file() {
  static OwnFile file;
  return file;
}

ZELK_AT_LOAD void attach_shared_object() {
  Dl_info info = {};
  OwnFile& file = own_file();
  if (dladdr(&file, &info) == 0) return attach(&file);
  file.base = info.dli_fbase;
  if (!realpath(info.dli_fname, file.path)) file.path[0] = '\0';
  attach(file.base);
}

/// The names of all messages asked for so far, in the order of their numbers.
struct MessageNames {
  std::mutex mutex;
  std::vector<std::string> names;
};

MessageNames& message_names() {
  static Immortal<MessageNames> names;
  return names.get();
}

/// The system's key for the threads' own pointers.
struct ThreadKey {
  ThreadKey() noexcept : is_open(pthread_key_create(&key, release_thread_value) == 0) {}

  pthread_key_t key = 0;
  std::atomic<bool> is_open;
};

ThreadKey& thread_key() noexcept {
  static ThreadKey key;
  return key;
}

/// The library may be unloaded now: no thread that ends later may call into it.
void close_thread_key() noexcept {
  void* const own = thread_value();
  if (own && set_thread_value(nullptr)) release_thread_value(own);
  if (thread_key().is_open.exchange(false)) pthread_key_delete(thread_key().key);
}

ZELK_AT_UNLOAD void detach_shared_object() {
  close_thread_key();
  release_notes();
  detach();
}

}  // namespace

std::optional<FileStatus> file_status(const char* path) {
  struct stat status = {};
  if (stat(path, &status) != 0) return std::nullopt;
  return FileStatus{{nanoseconds(status.st_mtim)}, (status.st_mode & S_IWUSR) != 0};
}

FilePath::FilePath(const char* path) : text(path), absolute(text) {
  if (is_normal(text)) {
    key = text;
  } else {
    const std::filesystem::path whole = absolute_path(path);
    if (whole.empty()) return;
    absolute = whole.string();
    key = whole.lexically_normal().string();
  }
  std::transform(key.begin(), key.end(), key.begin(), lower_case);
}

bool is_same_path(const FilePath& a, const FilePath& b) {
  if (a.key.empty() || a.key != b.key) return false;
  // Equal keys, too, may lead to two files: behind a link to a folder ".." is another place.
  return a.absolute == b.absolute || !are_different_files(a.absolute.c_str(), b.absolute.c_str());
}

std::array<bool, 256> lead_bytes() {
  std::array<bool, 256> leads = {};
  if (MB_CUR_MAX == 1 || std::strcmp(nl_langinfo(CODESET), "UTF-8") == 0) return leads;
  for (unsigned byte = 0x80; byte < leads.size(); ++byte) {
    leads[byte] = begins_character(static_cast<char>(byte));
  }
  return leads;
}

void ModuleUnloader::operator()(void* module) const noexcept { dlclose(module); }

Module load_module(const char* path) {
  if (*path == '\0') return nullptr;  // the system takes it for the program itself
  return Module(dlopen(path, RTLD_NOW | RTLD_LOCAL));
}

Function find_function(void* module, const char* name) {
  return reinterpret_cast<Function>(dlsym(module, name));
}

void own_file_name(char* buffer, std::uint32_t size_bytes) {
  if (size_bytes == 0) return;
  const std::string_view path = own_file().path;
  buffer[path.copy(buffer, size_bytes - 1)] = '\0';
}

void* thread_value() noexcept {
  const ThreadKey& key = thread_key();
  return key.is_open ? pthread_getspecific(key.key) : nullptr;
}

bool set_thread_value(void* value) noexcept {
  const ThreadKey& key = thread_key();
  return key.is_open && pthread_setspecific(key.key, value) == 0;
}

std::uint32_t registered_message(const char* name) {
  auto& [mutex, names] = message_names();
  const std::lock_guard lock(mutex);
  std::uint32_t number = kFirstMessage;
  for (const std::string& known : names) {
    if (strcasecmp(known.c_str(), name) == 0) return number;
    ++number;
  }
  if (number > kLastMessage) return 0;
  names.emplace_back(name);
  return number;
}

void post(const zelk_notification&) {}

void show_message_box(const char* text, const char* title, std::uint32_t) {
  static_cast<void>(std::fprintf(stderr, "%s: %s\n", title, text));
}

}  // namespace zelk::platform
