#include <fcntl.h>
#include <sys/stat.h>

#include <csignal>
#include <memory>
#include <new>
#include <optional>

#include "base/check_memory.hpp"
#include "files/attributes_posix.hpp"
#include "files/in_place_posix.hpp"
#include "files/save.hpp"
#include "files/sync_posix.hpp"
#include "files/temporary_file_posix.hpp"

namespace zelk::files {
namespace {

namespace fs = std::filesystem;

/// While it lives, a write beyond the limit on the size of files fails in this thread, as on a full
/// disk: the signal that would end the process is held back, and taken in the end.
class HeldSizeSignal {
 public:
  HeldSizeSignal() {
    sigaddset(&signals_, SIGXFSZ);
    pthread_sigmask(SIG_BLOCK, &signals_, &before_);
    sigset_t pending = {};
    sigpending(&pending);
    was_pending_ = sigismember(&pending, SIGXFSZ) == 1;
  }
  HeldSizeSignal(const HeldSizeSignal&) = delete;
  HeldSizeSignal& operator=(const HeldSizeSignal&) = delete;
  ~HeldSizeSignal() {
    constexpr timespec kNow = {};
    if (!was_pending_) sigtimedwait(&signals_, nullptr, &kNow);
    if (sigismember(&before_, SIGXFSZ) == 0) pthread_sigmask(SIG_UNBLOCK, &signals_, nullptr);
  }

 private:
  sigset_t signals_ = {};
  sigset_t before_ = {};
  bool was_pending_ = false;
};

/// A stream for the file of a descriptor that stays open.
File stream_of(const Descriptor& file) {
  Descriptor own(fcntl(file.get(), F_DUPFD_CLOEXEC, 0));
  File stream(own ? fdopen(own.get(), "w") : nullptr);
  if (!stream) check_memory(errno);
  if (!stream) fail_save();
  own.release();
  static_cast<void>(std::setvbuf(stream.get(), nullptr, _IONBF, 0));
  return stream;
}

bool is_in_sticky_folder(const fs::path& target) {
  struct stat folder = {};
  return stat((target.parent_path() / ".").c_str(), &folder) == 0 && (folder.st_mode & S_ISVTX);
}

/// Of a file that has taken its place: nothing may fail any more but for the disk.
void sync_folder_of_new(const fs::path& folder) try {
  sync_folder(folder);
} catch (const SaveFailure& failure) {
  throw SaveFailure("it has its new content, but may lose it with the power: " +
                    std::string(failure.what()));
}

class PosixSave : public Save {
 public:
  void open(const char* name, std::string& notice);
  std::FILE* file() const override { return stream_.get(); }
  void take_place() override;

 private:
  void open_target();
  bool has_other_names() const { return target_ && status_of(target_).st_nlink > 1; }

  const HeldSizeSignal held_;
  fs::path path_;                       ///< of the target itself, behind all links
  Descriptor target_;                   ///< open for writing; none when nothing is there yet
  std::optional<TemporaryFile> fresh_;  ///< none when the target is no regular file
  File stream_;                         ///< into `fresh_`, or else into the target
};

void PosixSave::open(const char* name, std::string& notice) {
  // Asked of the path as it is: "/dev/stdout" may link to a pipe, which has no other name.
  struct stat status = {};
  const bool is_there = stat(name, &status) == 0;
  if (!is_there && errno != ENOENT) fail_save();
  if (is_there && !S_ISREG(status.st_mode)) {
    stream_ = open_for_writing(name);
    if (!stream_) fail_save();
    return;
  }
  path_ = behind_links(name);
  if (is_there) open_target();
  if (end_write_in_place(path_, target_)) notice = kEarlierWriteEnded;
  clear_leftovers(path_);
  constexpr mode_t kOwnerAlone = 0600;
  constexpr mode_t kEverybody = 0666;
  fresh_.emplace(path_, is_there ? kOwnerAlone : kEverybody);
  stream_ = stream_of(fresh_->descriptor());
}

/// To open it asks all at once: the permissions, the access list, the file's own flags and the file
/// system.
void PosixSave::open_target() {
  constexpr int kFlags = O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
  target_ = Descriptor(::open(path_.c_str(), kFlags));
  if (!target_) fail_save();
}

void PosixSave::take_place() {
  if (!fresh_) {
    if (std::fclose(stream_.release()) != 0) fail_save();
    return;
  }
  const bool is_in_place = has_other_names();
  if (target_ && !is_in_place) copy_attributes(target_, fresh_->descriptor());
  if (!sync(fresh_->descriptor()) || std::fclose(stream_.release()) != 0) fail_save();
  if (is_in_place) {
    write_in_place(path_, target_, *fresh_);
  } else if (const fs::path folder = path_.parent_path(); !fresh_->move_to(path_)) {
    fail_save(is_in_sticky_folder(path_) ? "its sticky folder lets only the owner replace it"
                                         : "it cannot be replaced");
  } else {
    sync_folder_of_new(folder);
  }
}

}  // namespace

void make_ready(const fs::path& fresh, const fs::path& place) {
  const Descriptor file(::open(fresh.c_str(), O_RDWR | O_CLOEXEC));
  if (!file) fail_save();
  const Descriptor other(::open(place.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  if (!other && errno != ENOENT) fail_save();
  if (other) copy_attributes(other, file);
  if (!sync(file)) fail_save();
}

void move_over(const fs::path& fresh, const fs::path& place) {
  if (rename(fresh.c_str(), place.c_str()) != 0) fail_save();
}

std::unique_ptr<Save> start_save(const char* path, Content /*line ends are line feeds*/,
                                 std::string& notice) {
  auto save = std::make_unique<PosixSave>();
  save->open(path, notice);
  return save;
}

}  // namespace zelk::files
