#include "calls/files.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <system_error>

#include "expect.hpp"
#include "zelk/export.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kJson = "x.json";
constexpr std::string_view kFolder = "zelk_fuzz_calls_";  // and the number of the process
constexpr std::array<std::string_view, Files::kCount> kNames = {"a.dbc", "b.dbc", "A.dbc", "x.DBC",
                                                                "none/d.dbc"};

fs::path place() {
  std::error_code error;
  const fs::path memory = "/dev/shm";
  return fs::is_directory(memory, error) ? memory : fs::temp_directory_path();
}

/// Of runs that have ended: libFuzzer ends without destructors.
void remove_old_folders() {
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator(place(), error)) {
    const std::string name = entry.path().filename().string();
    if (!name.starts_with(kFolder)) continue;
    const int process = std::atoi(name.c_str() + kFolder.size());
    if (process > 0 && kill(process, 0) != 0 && errno == ESRCH) fs::remove_all(entry.path(), error);
  }
}

/// Each call gives a file a time that no other has: databases know their files by them, and the
/// system's clock may stand still for thousands of calls.
void set_next_time(int descriptor) {
  static std::int64_t seconds = 1'600'000'000;
  const timespec time = {++seconds, 0};
  const timespec times[] = {time, time};
  futimens(descriptor, times);
}

}  // namespace

/// In place of the system's: files in memory outlast no loss of power, and need a time of their
/// own.
extern "C" ZELK_MODULE_EXPORT int fsync(int descriptor) {
  set_next_time(descriptor);
  return 0;
}

Files::Files()
    : folder_(place() / (std::string(kFolder) + std::to_string(getpid()))),
      json_((folder_ / kJson).string()) {
  remove_old_folders();
  fs::create_directories(folder_);
  names_ = opendir(folder_.c_str());
  expect(names_ != nullptr, "no folder");
  for (unsigned i = 0; i < kCount; ++i) paths_[i] = (folder_ / kNames[i]).string();
}

Files::~Files() {
  closedir(names_);
  std::error_code error;
  fs::remove_all(folder_, error);
}

unsigned Files::index_of(const char* path) const {
  const auto found = std::find(paths_.begin(), paths_.end(), path ? path : "");
  return static_cast<unsigned>(found - paths_.begin());
}

Files::Stamp Files::stamp(unsigned index) const {
  struct stat status = {};
  if (stat(path(index).c_str(), &status) != 0) return {};
  return {true, status.st_mtim.tv_sec, static_cast<std::uint64_t>(status.st_size)};
}

Files::Stamps Files::stamps() const {
  Stamps all;
  rewinddir(names_);
  while (const dirent* const entry = readdir(names_)) {
    const std::string_view name = entry->d_name;
    const auto known = std::ranges::find(kNames, name);
    const auto index = static_cast<unsigned>(known - kNames.begin());
    if (index < kCount) all[index] = stamp(index);
    const bool is_other = name == "." || name == ".." || name == kJson;
    expect(index < kCount || is_other, "something is left beside the files", name);
  }
  return all;
}

void Files::put(unsigned index, std::string_view content) const {
  const int descriptor = open(path(index).c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  if (descriptor < 0) return;
  const bool is_whole =
      write(descriptor, content.data(), content.size()) == static_cast<ssize_t>(content.size());
  if (is_whole) set_next_time(descriptor);
  close(descriptor);
}

void Files::remove(unsigned index) const { std::remove(path(index).c_str()); }

void Files::set_read_only(unsigned index, bool on) const {
  chmod(path(index).c_str(), on ? 0444 : 0644);
}

void Files::clear() const {
  const Stamps there = stamps();
  for (unsigned i = 0; i < kCount; ++i) {
    if (there[i].exists) remove(i);
  }
}
