// What only POSIX file systems have: owners, permissions, links, pipes, limits; and processes that
// are killed while they save.

#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <functional>

#include "database/own_database.hpp"
#include "files/files.hpp"
#include "support/failing_calls_posix.hpp"
#include "support/failing_sync_posix.hpp"
#include "zelk/exception.hpp"

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kNodes = "BS_:\nBU_: A B\n";
constexpr uid_t kNobody = 65534;
constexpr const char* kAccessList = "system.posix_acl_access";

/// Owner and others read and write, user 1234 and the group read.
constexpr std::string_view kList(
    "\2\0\0\0\1\0\6\0\xFF\xFF\xFF\xFF\2\0\4\0\xD2\4\0\0\4\0\4\0\xFF\xFF\xFF\xFF"
    "\x10\0\6\0\xFF\xFF\xFF\xFF\x20\0\6\0\xFF\xFF\xFF\xFF",
    44);

class SavePosix : public DatabaseTest {
 protected:
  SavePosix() { database_.SetComment("saved"); }

  /// What `Write` answers and adds to the error text.
  std::pair<int, std::string> save() {
    zelk_clear_error_text();
    const int result = database_.Write(nullptr);
    return {result, zelk_get_error_text()};
  }
  std::pair<int, std::string> refusal(const std::string& reason) const {
    return {9, "database: could not write, " + path_ + ": " + reason + "\n"};
  }
  bool is_saved() const { return content_of(path_).find("CM_ \"saved\"") != std::string::npos; }

  const std::string path_ = folder_.write("a.dbc", kNodes);
  OwnDatabase database_{path_};
};

struct stat status_of(const std::string& file) {
  struct stat status = {};
  EXPECT_EQ(stat(file.c_str(), &status), 0) << file;
  return status;
}

std::string attribute(const std::string& file, const char* name) {
  char value[100];
  return {value, static_cast<std::size_t>(
                     std::max<ssize_t>(getxattr(file.c_str(), name, value, sizeof value), 0))};
}

bool set_attribute(const std::string& file, const char* name, std::string_view value) {
  return setxattr(file.c_str(), name, value.data(), value.size(), 0) == 0;
}

TEST_F(SavePosix, KeepsWhatIsBesideTheContent) {
  for (const mode_t mode : {0600u, 0640u, 0664u, 0755u, 0200u}) {
    ASSERT_EQ(chmod(path_.c_str(), mode), 0);
    EXPECT_EQ(save().first, 0);
    EXPECT_EQ(status_of(path_).st_mode & 07777, mode);
  }
  const std::string fresh = folder_.path("new.dbc");
  const mode_t mask = umask(027);
  EXPECT_EQ(OwnDatabase(database_).Write(fresh.c_str()), 0);
  umask(mask);
  EXPECT_EQ(status_of(fresh).st_mode & 07777, 0640u) << "as any new file";
  if (geteuid() != 0) GTEST_SKIP() << "only root can change owners";
  ASSERT_EQ(chown(path_.c_str(), kNobody, 65533), 0);
  ASSERT_EQ(chmod(path_.c_str(), 02666), 0);
  if (!set_attribute(path_, "user.zelk", "x") || !set_attribute(path_, kAccessList, kList)) {
    GTEST_SKIP() << "the file system has no attributes";
  }
  EXPECT_EQ(save().first, 0);
  EXPECT_EQ(status_of(path_).st_uid, kNobody);
  EXPECT_EQ(status_of(path_).st_gid, 65533u);
  EXPECT_EQ(status_of(path_).st_mode & 07777, 02666u);
  EXPECT_EQ(attribute(path_, "user.zelk"), "x");
  EXPECT_EQ(attribute(path_, kAccessList), kList);
  ASSERT_EQ(removexattr(path_.c_str(), kAccessList), 0);
  ASSERT_TRUE(set_attribute(folder_.path(""), "system.posix_acl_default", kList));
  EXPECT_EQ(save().first, 0);
  EXPECT_EQ(attribute(path_, kAccessList), "") << "that of new files";
}

TEST_F(SavePosix, WithoutTheRights) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can change its user";
  const struct {
    const char* name;
    mode_t folder, file;
    const char* reason;  // null: the file is saved, and another's
  } cases[] = {
      {"another's file", 0777, 0644, "Permission denied"},
      {"another's folder", 0755, 0666, "no file can be created beside it: Permission denied"},
      {"sticky folder", 01777, 0666,
       "its sticky folder lets only the owner replace it: Operation not permitted"},
      {"group with fewer rights", 0777, 0646, "its group cannot be kept: Operation not permitted"},
      {"everybody's", 0777, 0666, nullptr},
  };
  for (const auto& c : cases) {
    ASSERT_EQ(chmod(folder_.path("").c_str(), c.folder), 0);
    ASSERT_EQ(chmod(path_.c_str(), c.file), 0);
    ASSERT_TRUE(setegid(kNobody) == 0 && seteuid(kNobody) == 0);
    const auto result = save();
    ASSERT_TRUE(seteuid(0) == 0 && setegid(0) == 0);
    EXPECT_EQ(result, c.reason ? refusal(c.reason) : std::pair(0, std::string())) << c.name;
    EXPECT_EQ(is_saved(), !c.reason) << c.name;
    EXPECT_EQ(status_of(path_).st_uid, c.reason ? 0 : kNobody) << c.name;
    EXPECT_EQ(status_of(path_).st_mode & 07777, c.file) << c.name;
    EXPECT_EQ(names_in(folder_), "a.dbc ") << c.name;
  }
}

TEST_F(SavePosix, GoesThroughLinks) {
  const std::string file = folder_.write("sub/a.dbc", kNodes);
  fs::remove(path_);
  fs::create_symlink("sub/a.dbc", path_);
  for (const char* name : {"the file", "where there is none yet"}) {
    EXPECT_EQ(save().first, 0) << name;
    EXPECT_TRUE(fs::is_symlink(path_));
    EXPECT_FALSE(fs::is_symlink(file));
    EXPECT_TRUE(database_.IsPathEqual(path_.c_str()));
    EXPECT_TRUE(is_saved());
    fs::remove(file);
  }
  fs::create_symlink("../a.dbc", file);
  EXPECT_EQ(save(), refusal("Too many levels of symbolic links"));
  EXPECT_EQ(names_in(folder_), "a.dbc sub ");
}

TEST_F(SavePosix, WritesToAPipe) {
  const std::string path = folder_.path("pipe"), link = folder_.path("link");
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  int nameless[2] = {};
  ASSERT_EQ(pipe(nameless), 0);
  fs::create_symlink("/proc/self/fd/" + std::to_string(nameless[1]), link);
  const int reader = open(path.c_str(), O_RDONLY | O_NONBLOCK);
  for (const auto& [target, end] : {std::pair(path, reader), std::pair(link, nameless[0])}) {
    EXPECT_EQ(OwnDatabase(database_).Write(target.c_str()), 0) << target;
    char text[8] = {};
    EXPECT_EQ(read(end, text, 7), 7);
    EXPECT_STREQ(text, "VERSION");
  }
  for (const int end : {reader, nameless[0], nameless[1]}) close(end);
  EXPECT_TRUE(fs::is_fifo(path));
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_EQ(names_in(folder_), "a.dbc link pipe ");
}

TEST_F(SavePosix, BeyondTheLimitOfFiles) {
  rlimit old_limit = {};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old_limit), 0);
  const rlimit limit = {30, old_limit.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
  const auto result = save();  // the signal would end this process
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &old_limit), 0);
  EXPECT_EQ(result, refusal("File too large"));
  EXPECT_EQ(content_of(path_), kNodes);
  EXPECT_EQ(names_in(folder_), "a.dbc ");
}

// The file is on the disk before it takes its place, the folder after it.
TEST_F(SavePosix, OnADiskThatTakesNoMore) {
  const struct {
    std::size_t syncs_before;
    int error;
    bool is_linked;
    const char *order, *reason;  // null: the file is saved
    bool is_new;
    const char* names;
  } cases[] = {
      {9, 0, false, "file rename folder ", nullptr, true, "a.dbc "},
      {0, EIO, false, "file ", "Input/output error", false, "a.dbc "},
      {0, EDQUOT, false, "file ", "Disk quota exceeded", false, "a.dbc "},
      {0, EINTR, false, "file file rename folder ", nullptr, true, "a.dbc "},
      {0, EINVAL, false, "file rename folder ", nullptr, true, "a.dbc "},
      {1, ENOTSUP, false, "file rename folder ", nullptr, true, "a.dbc "},
      {1, EIO, false, "file rename folder ",
       "it has its new content, but may lose it with the power: the folder cannot be put on the "
       "disk: Input/output error",
       true, "a.dbc "},
      {9, 0, true, "file file folder file folder ", nullptr, true, "a.dbc b.dbc "},
      {2, EIO, true, "file file folder folder ",
       "the folder cannot be put on the disk: Input/output error", false, "a.dbc b.dbc "},
      {3, EIO, true, "file file folder file ",
       "Input/output error; its whole content is in .a.dbc.zelk-whole", true,
       ".a.dbc.zelk-whole a.dbc b.dbc "},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::to_string(c.syncs_before) + " " + std::to_string(c.error));
    folder_.write("a.dbc", kNodes);
    if (c.is_linked) fs::create_hard_link(path_, folder_.path("b.dbc"));
    {
      const FailingSync failing(c.syncs_before, c.error);
      EXPECT_EQ(save(), c.reason ? refusal(c.reason) : std::pair(0, std::string()));
      EXPECT_EQ(FailingSync::order(), c.order);
    }
    EXPECT_EQ(is_saved(), c.is_new);
    EXPECT_EQ(names_in(folder_), c.names);
    EXPECT_EQ(save().first, 0) << "the next time";
    fs::remove(folder_.path("b.dbc"));
  }
}

TEST_F(SavePosix, SeveralFilesAtOnce) {
  const fs::path folder = folder_.path("new"), other = folder_.write("other", "old");
  const auto moves = [&] {
    fs::create_directory(folder);
    return std::vector<zelk::files::Move>{{folder_.write("1", "one"), folder / "a"},
                                          {folder_.write("2", "two"), other}};
  };
  const struct {
    std::size_t syncs_before;
    int error;
    const char *order, *place, *other;
  } cases[] = {
      {1, EIO, "file file ", "other", "old"},
      {9, 0, "file file rename rename folder folder ", "", "two"},
      {2, EIO, "file file rename rename folder ", "SavePosix.SeveralFilesAtOnce", "two"},
  };
  for (const auto& c : cases) {
    ASSERT_EQ(chmod(folder_.write("other", "old").c_str(), 0640), 0);
    const auto wanted = moves();
    const FailingSync failing(c.syncs_before, c.error);
    const auto failed = zelk::files::take_places(wanted, {folder});
    EXPECT_EQ(failed ? failed->place.filename().string() : "", c.place);
    EXPECT_EQ(FailingSync::order(), c.order);
    EXPECT_EQ(content_of(other), c.other);
    EXPECT_EQ(status_of(other).st_mode & 0777, 0640u);
    EXPECT_EQ(fs::exists(folder / "a"), c.other != std::string("old"));
  }
  fs::create_directory(folder_.path("d"));
  const auto failed = zelk::files::take_places(
      {{folder_.write("1", "x"), folder / "a"}, {folder_.write("2", "x"), folder_.path("d")}}, {});
  EXPECT_EQ(failed ? failed->reason : "", "Is a directory");
  EXPECT_EQ(content_of(folder / "a"), "one") << "no place is taken";
}

TEST_F(SavePosix, ToAFileThatIsAnotherMeanwhile) {
  const std::string other = folder_.path("other");
  const struct {
    const char* name;
    bool is_linked;
    std::function<void()> change;
    const char *failure, *content, *names;
  } cases[] = {
      {"removed", false, [&] { fs::remove(path_); }, "", "new", "a.dbc "},
      {"replaced", false, [&] { fs::rename(folder_.write("x", "x"), path_); }, "", "new", "a.dbc "},
      {"a folder", false, [&] { fs::remove(path_), fs::create_directory(path_); },
       "it cannot be replaced: Is a directory", "", "a.dbc "},
      {"a second name", false, [&] { fs::create_hard_link(path_, other); }, "", "new",
       "a.dbc other "},
      {"a second name, replaced", true, [&] { fs::rename(folder_.write("x", "x"), path_); }, "",
       "new", "a.dbc other "},
      {"a second name, one left", true, [&] { fs::remove(other); }, "", "new", "a.dbc "},
  };
  for (const auto& c : cases) {
    fs::remove_all(path_), fs::remove(other);
    folder_.write("a.dbc", "old");
    if (c.is_linked) fs::create_hard_link(path_, other);
    {
      zelk::files::Replacement file(path_.c_str());
      c.change();
      ASSERT_EQ(std::fputs("new", file.file()), 1) << c.name;
      EXPECT_EQ(file.take_place(), c.failure == std::string()) << c.name;
      EXPECT_EQ(file.failure(), c.failure) << c.name;
    }
    EXPECT_EQ(fs::is_directory(path_) ? "" : content_of(path_), c.content) << c.name;
    EXPECT_TRUE(!fs::exists(other) || content_of(other) == (c.is_linked ? "old" : "new")) << c.name;
    EXPECT_EQ(names_in(folder_), c.names) << c.name;
  }
}

TEST_F(SavePosix, RefusesWhileAnotherSaveWritesInPlace) {
  const std::string copy = folder_.write(".a.dbc.zelk-whole", kNodes);
  const int writer = open(copy.c_str(), O_RDWR);
  ASSERT_EQ(flock(writer, LOCK_EX | LOCK_NB), 0);
  EXPECT_EQ(save(), refusal("another save is writing to it"));
  close(writer);
  if (chown(copy.c_str(), kNobody, 0) != 0) GTEST_SKIP() << "only root can change owners";
  EXPECT_EQ(save(), refusal(".a.dbc.zelk-whole beside it is somebody else's"));
  EXPECT_EQ(content_of(path_), kNodes);
}

// Whichever call the system refuses, and for whatever reason: what can be read is the old content
// or the new, whole, and the next save gets done and leaves nothing beside the file.
TEST_F(SavePosix, WhateverCallIsRefused) {
  const std::string whole = std::string(kNodes) + "CM_ \"old\";\n";
  const struct {
    const char* name;
    std::string_view content;
    bool is_linked, has_copy;
  } cases[] = {
      {"one name", whole, false, false},
      {"two names", whole, true, false},
      {"a write that did not end", kNodes, true, true},
  };
  const std::string copy = ".a.dbc.zelk-whole", other = folder_.path("b.dbc");
  for (const auto& c : cases) {
    for (const int error : {EIO, EINTR, EACCES, EEXIST, EWOULDBLOCK, ENOTSUP, ENOENT}) {
      if (c.has_copy && (error == ENOENT || error == EACCES)) continue;  // these would be lies
      std::size_t n = 0;
      for (bool has_failed = true; has_failed; ++n) {
        SCOPED_TRACE(c.name + (": " + std::to_string(error)) + " at " + std::to_string(n));
        folder_.write("a.dbc", c.content);
        set_attribute(path_, "user.zelk", "x");
        if (c.is_linked) fs::create_hard_link(path_, other);
        if (c.has_copy) folder_.write(copy, whole, 1);
        const auto read = [&] {
          try {
            const OwnDatabase database(path_);
            return database.comment ? "whole" : "a part";
          } catch (const ZelkException&) {
            return "none";
          }
        };
        if (c.has_copy) {
          const FailingCall failing(n, error);
          EXPECT_STRNE(read(), "a part");
        }
        std::pair<int, std::string> result;
        {
          const FailingCall failing(n, error);
          result = save();
          has_failed = FailingCall::has_failed();
        }
        EXPECT_TRUE(!result.second.empty() || result.first == 0);
        EXPECT_TRUE(is_saved() || result.first == 9);
        const FailingCall none(1000, 0);
        EXPECT_STREQ(read(), "whole") << result.second;
        EXPECT_EQ(save().first, 0) << "the next time";
        EXPECT_TRUE(is_saved());
        EXPECT_EQ(names_in(folder_), c.is_linked ? "a.dbc b.dbc " : "a.dbc ") << result.second;
        fs::remove(path_), fs::remove(other);
      }
      EXPECT_GT(n, 8u) << "calls pass through here";
    }
  }
}

/// Whether the file is a database with a million times "a" or "b" in its comment.
bool is_whole(const std::string& file) {
  const std::string content = content_of(file);
  const auto count = std::max(std::ranges::count(content, 'a'), std::ranges::count(content, 'b'));
  return count == 1'000'000 && content.find("\";\n") != std::string::npos;
}

TEST_F(SavePosix, KilledAtAnyTime) {
  for (int n = 0; n < 40; ++n) {
    const bool is_linked = n >= 20;
    if (n == 20) fs::create_hard_link(path_, folder_.path("b"));
    database_.SetComment(std::string(1'000'000, 'a').c_str());
    ASSERT_EQ(save().first, 0) << n;
    const std::string names = names_in(folder_);
    const pid_t child = fork();
    while (child == 0) {
      for (const char letter : {'b', 'a'}) {
        database_.SetComment(std::string(1'000'000, letter).c_str());
        if (database_.Write(nullptr) != 0) _exit(1);
      }
    }
    usleep(static_cast<useconds_t>(n % 20) * 500);
    kill(child, SIGKILL);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status)) << n;
    EXPECT_TRUE(is_whole(path_) || (is_linked && is_whole(folder_.path(".a.dbc.zelk-whole")))) << n;
    EXPECT_EQ(save().first, 0) << n << zelk_get_error_text();
    EXPECT_TRUE(is_whole(path_)) << n;
    EXPECT_EQ(names_in(folder_), names) << n;
  }
}

}  // namespace
