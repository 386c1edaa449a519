#include <fcntl.h>
#include <sys/stat.h>

#include <csignal>
#include <memory>
#include <optional>

#include "platform/beside_posix.hpp"
#include "platform/in_place_posix.hpp"
#include "platform/platform.hpp"
#include "platform/rights_posix.hpp"

namespace zelk::platform {
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

/// What a path names in the end, there or not.
fs::path behind_links(fs::path path) {
  constexpr int kMostLinks = 40;  // no more than the system follows
  std::error_code error;
  for (int links = 0; is_symlink(path, error); ++links) {
    if (links == kMostLinks) fail_save({ELOOP, std::generic_category()});
    path = path.parent_path() / read_symlink(path, error);
  }
  return path;
}

/// A stream for the file of a descriptor that stays open.
File stream_of(const Descriptor& file) {
  Descriptor own(fcntl(file.get(), F_DUPFD_CLOEXEC, 0));
  File stream(own ? fdopen(own.get(), "w") : nullptr);
  if (!stream) fail_save();
  own.release();
  std::setvbuf(stream.get(), nullptr, _IONBF, 0);
  return stream;
}

bool is_in_sticky_folder(const fs::path& target) {
  struct stat folder = {};
  return stat((target.parent_path() / ".").c_str(), &folder) == 0 && (folder.st_mode & S_ISVTX);
}

}  // namespace

struct Replacement::State {
  void open(const char* name, std::string& notice);
  void take_place();
  void open_target();
  bool has_other_names() const { return target && status_of(target).st_nlink > 1; }

  const HeldSizeSignal held;
  fs::path path;                    ///< of the target itself, behind all links
  Descriptor target;                ///< open for writing; none when nothing is there yet
  std::optional<FileBeside> fresh;  ///< none when the target is no regular file
  File stream;                      ///< into `fresh`, or else into the target
};

void Replacement::State::open(const char* name, std::string& notice) {
  // Asked of the path as it is: "/dev/stdout" may link to a pipe, which has no other name.
  struct stat status = {};
  const bool is_there = stat(name, &status) == 0;
  if (!is_there && errno != ENOENT) fail_save();
  if (is_there && !S_ISREG(status.st_mode)) {
    stream = open_for_writing(name);
    if (!stream) fail_save();
    return;
  }
  path = behind_links(name);
  if (is_there) open_target();
  if (end_write_in_place(path, target)) {
    notice = "an earlier write did not end, and was ended now";
  }
  clear_leftovers(path);
  constexpr mode_t kOwnerAlone = 0600;
  constexpr mode_t kEverybody = 0666;
  fresh.emplace(path, is_there ? kOwnerAlone : kEverybody);
  stream = stream_of(fresh->descriptor());
}

/// To open it asks all at once: the permissions, the access list, the file's own flags and the file
/// system.
void Replacement::State::open_target() {
  constexpr int kFlags = O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
  target = Descriptor(::open(path.c_str(), kFlags));
  if (!target) fail_save();
}

void Replacement::State::take_place() {
  if (!fresh) {
    if (std::fclose(stream.release()) != 0) fail_save();
    return;
  }
  const bool is_in_place = has_other_names();
  if (target && !is_in_place) keep_rights(target, fresh->descriptor());
  if (fsync(fresh->descriptor().get()) != 0 || std::fclose(stream.release()) != 0) fail_save();
  if (is_in_place) {
    write_in_place(path, target, *fresh);
  } else if (!fresh->move_to(path)) {
    fail_save(is_in_sticky_folder(path) ? "its sticky folder lets only the owner replace it"
                                        : "it cannot be replaced");
  }
}

Replacement::Replacement(const char* path) : state_(std::make_unique<State>()) {
  try {
    state_->open(path, notice_);
  } catch (const SaveFailure& failure) {
    failure_ = failure.what();
  }
}

Replacement::~Replacement() = default;

std::FILE* Replacement::file() const { return state_->stream.get(); }

bool Replacement::take_place() try {
  state_->take_place();
  return true;
} catch (const SaveFailure& failure) {
  failure_ = failure.what();
  return false;
}

}  // namespace zelk::platform
