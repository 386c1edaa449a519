// What only POSIX file systems have: owners, permissions, links, pipes, and folders and disks that
// refuse a file.

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>

#include "manager/own_database.hpp"

namespace {

using SavePosix = DatabaseTest;

constexpr std::string_view kNodes = "BS_:\nBU_: A B\n";

mode_t mode_of(const std::string& file) {
  struct stat status = {};
  EXPECT_EQ(stat(file.c_str(), &status), 0);
  return status.st_mode & 07777;
}

TEST_F(SavePosix, KeepsPermissions) {
  const std::string path = folder_.write("a.dbc", kNodes), fresh = folder_.path("new.dbc");
  OwnDatabase database(path);
  for (const mode_t mode : {0600u, 0640u, 0664u, 0755u, 0200u}) {
    ASSERT_EQ(chmod(path.c_str(), mode), 0);
    EXPECT_EQ(database.Write(nullptr), 0);
    EXPECT_EQ(mode_of(path), mode);
  }
  const mode_t mask = umask(027);
  EXPECT_EQ(database.Write(fresh.c_str()), 0);
  umask(mask);
  EXPECT_EQ(mode_of(fresh), 0640u) << "as any new file";
}

TEST_F(SavePosix, KeepsTheOwner) {
  if (geteuid() != 0) GTEST_SKIP() << "only root gives files away";
  const std::string path = folder_.write("a.dbc", kNodes);
  OwnDatabase database(path);
  ASSERT_EQ(chown(path.c_str(), 65534, 65533), 0);
  ASSERT_EQ(chmod(path.c_str(), 02664), 0);
  EXPECT_EQ(database.Write(nullptr), 0);
  struct stat status = {};
  ASSERT_EQ(stat(path.c_str(), &status), 0);
  EXPECT_EQ(status.st_uid, 65534u);
  EXPECT_EQ(status.st_gid, 65533u);
  EXPECT_EQ(mode_of(path), 02664u);
}

TEST_F(SavePosix, GoesThroughLinks) {
  const std::string path = folder_.write("sub/a.dbc", kNodes), link = folder_.path("link.dbc");
  std::filesystem::create_symlink("sub/a.dbc", link);
  OwnDatabase database(link);
  database.SetComment("saved");
  EXPECT_EQ(database.Write(nullptr), 0);
  EXPECT_TRUE(std::filesystem::is_symlink(link));
  EXPECT_FALSE(std::filesystem::is_symlink(path));
  EXPECT_EQ(describe(OwnDatabase(path)), "comment \"saved\"\nnode A\nnode B\n");
  EXPECT_TRUE(database.IsPathEqual(link.c_str()));
  std::filesystem::remove(path);
  EXPECT_EQ(database.Write(nullptr), 0) << "to where there is no file yet";
  EXPECT_EQ(describe(OwnDatabase(path)), "comment \"saved\"\nnode A\nnode B\n");
  EXPECT_EQ(names_in(folder_), "link.dbc sub ");
}

TEST_F(SavePosix, WritesToAPipe) {
  const std::string path = folder_.path("pipe");
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  const int reader = open(path.c_str(), O_RDONLY | O_NONBLOCK);
  ASSERT_GE(reader, 0);
  OwnDatabase database(folder_.write("a.dbc", kNodes));
  EXPECT_EQ(database.Write(path.c_str()), 0);
  char text[8] = {};
  EXPECT_EQ(read(reader, text, 7), 7);
  EXPECT_STREQ(text, "VERSION");
  close(reader);
  int nameless[2] = {};
  ASSERT_EQ(pipe(nameless), 0);
  const std::string link = folder_.path("link");
  std::filesystem::create_symlink("/proc/self/fd/" + std::to_string(nameless[1]), link);
  EXPECT_EQ(database.Write(link.c_str()), 0);
  EXPECT_EQ(read(nameless[0], text, 7), 7);
  EXPECT_STREQ(text, "VERSION");
  for (const int end : nameless) close(end);
  EXPECT_TRUE(std::filesystem::is_fifo(path));
  EXPECT_TRUE(std::filesystem::is_symlink(link));
  EXPECT_EQ(names_in(folder_), "a.dbc link pipe ");
}

TEST_F(SavePosix, RefusedByTheFolder) {
  const std::string path = folder_.write("sub/a.dbc", kNodes);
  OwnDatabase database(path);
  database.SetComment("lost");
  ASSERT_EQ(chmod(path.c_str(), 0666), 0);
  ASSERT_EQ(chmod(folder_.path("sub").c_str(), 0555), 0);
  const uid_t user = geteuid();
  constexpr uid_t kNobody = 65534;  // root may write anywhere
  ASSERT_TRUE(user != 0 || seteuid(kNobody) == 0);
  EXPECT_EQ(database.Write(nullptr), 9);
  ASSERT_TRUE(user != 0 || seteuid(0) == 0);
  ASSERT_EQ(chmod(folder_.path("sub").c_str(), 0755), 0);
  EXPECT_EQ(content_of(path), kNodes);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_.path("sub")), {}), 1);
}

// A limit on the size of files refuses what is behind it, as a full disk does.
TEST_F(SavePosix, RefusedByTheSystem) {
  const std::string path = folder_.write("a.dbc", kNodes);
  OwnDatabase database(path);
  const auto old_action = std::signal(SIGXFSZ, SIG_IGN);
  rlimit old_limit = {};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old_limit), 0);
  for (const rlim_t size_bytes : {0u, 1u, 30u}) {
    const rlimit limit = {size_bytes, old_limit.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    const int result = database.Write(nullptr);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &old_limit), 0);
    EXPECT_EQ(result, 9) << size_bytes;
    EXPECT_EQ(content_of(path), kNodes) << size_bytes;
    EXPECT_EQ(names_in(folder_), "a.dbc ") << size_bytes;
  }
  std::signal(SIGXFSZ, old_action);
  EXPECT_EQ(database.Write(nullptr), 0);
}

}  // namespace
