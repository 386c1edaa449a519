// Processes that are killed, and power that is lost, ahead of each call by which a save changes the
// disk. What the disk has behind a loss of power is not known: of each name what it meant at any
// time since its folder was last put on the disk, and of each file what it had at any time since it
// was put there, or a part of that, or zeros.

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>
#include <map>
#include <set>
#include <vector>

#include "database/own_database.hpp"
#include "files/files.hpp"
#include "support/disk_watch_posix.hpp"

namespace {

namespace fs = std::filesystem;

constexpr const char* kWhole = ".a.dbc.zelk-whole";

/// Paths within a folder, and the contents of the files there.
using State = std::map<std::string, std::string>;

class LostPower : public DiskWatch {
  template <typename Key, typename Value>
  using Choices = std::map<Key, std::set<Value>>;

 public:
  explicit LostPower(const std::string& folder) : folder_(folder) {
    look();
    for (auto& [name, files] : files_) files = {file_of(name)};
    for (auto& [file, contents] : contents_) contents = {content_of(file)};
  }

  void before_change() override {
    look();
    add_states();
  }

  void after_sync(int file) override {
    struct stat status = {};
    fstat(file, &status);
    look();
    if (!S_ISDIR(status.st_mode)) contents_[status.st_ino] = {content_of(status.st_ino)};
    for (auto& [name, files] : files_)
      if (S_ISDIR(status.st_mode) && is_in(name, status.st_ino)) files = {file_of(name)};
  }

  /// Those that the disk may have been in since the beginning.
  const std::set<State>& states() const { return states_; }

  /// Those that it may be in now.
  std::set<State> states_now() {
    states_.clear();
    before_change();
    return states_;
  }

 private:
  static ino_t number_of(const fs::path& path) {
    struct stat status = {};
    return stat(path.c_str(), &status) == 0 ? status.st_ino : 0;
  }
  ino_t file_of(const std::string& name) const { return number_of(folder_ / name); }
  bool is_in(const std::string& name, ino_t folder) const {
    return number_of((folder_ / name).parent_path()) == folder;
  }
  std::string content_of(ino_t file) const {
    for (const auto& [name, files] : files_)
      if (file_of(name) == file) return bytes_of(folder_ / name);
    return {};
  }

  void look() {
    for (const auto& entry : fs::recursive_directory_iterator(folder_))
      if (entry.is_regular_file()) files_.try_emplace(relative(entry, folder_), std::set<ino_t>{0});
    for (auto& [name, files] : files_) {
      const ino_t file = file_of(name);
      files.insert(file);
      if (file != 0) add_content(contents_[file], bytes_of(folder_ / name));
    }
  }

  static void add_content(std::set<std::string>& contents, const std::string& content) {
    if (!contents.insert(content).second) return;
    const std::string half = content.substr(0, content.size() / 2);
    contents.insert({"", half, half + std::string(content.size() - half.size(), '\0')});
  }

  static std::string relative(const fs::path& path, const fs::path& folder) {
    return path.lexically_relative(folder).string();
  }

  /// Each choice with each other one.
  template <typename Key, typename Value>
  static std::vector<std::map<Key, Value>> combined(const Choices<Key, Value>& choices) {
    std::vector<std::map<Key, Value>> done = {{}};
    for (const auto& [key, values] : choices) {
      std::vector<std::map<Key, Value>> longer;
      for (const auto& before : done) {
        for (const Value& value : values) {
          longer.push_back(before);
          longer.back()[key] = value;
        }
      }
      done = std::move(longer);
    }
    return done;
  }

  void add_states() {
    const auto contents = combined(contents_);
    for (const auto& names : combined(files_)) {
      for (const auto& content : contents) {
        State state;
        for (const auto& [name, file] : names)
          if (file != 0) state[name] = content.at(file);
        states_.insert(std::move(state));
      }
    }
  }

  const fs::path folder_;
  Choices<std::string, ino_t> files_;     ///< 0: there is none
  Choices<ino_t, std::string> contents_;  ///< of each file
  std::set<State> states_;
};

class KillBefore : public DiskWatch {
 public:
  explicit KillBefore(int calls) : calls_before_(calls) {}
  void before_change() override {
    if (calls_before_-- == 0) kill(getpid(), SIGKILL);
  }
  void after_sync(int) override {}

 private:
  int calls_before_;
};

/// Saves "a.dbc" with one comment and then with another; its blocks are 16 KiB when it is written
/// in place.
class PowerLoss : public DatabaseTest {
 protected:
  const std::string folder_path_ = folder_.path("disk"), path_ = folder_path_ + "/a.dbc";

  void SetUp() override {
    DatabaseTest::SetUp();
    old_ = content_with('o');
    new_ = content_with('n');
    ASSERT_GT(new_.size(), 32768u);
  }

  std::string content_with(char letter) const {
    const std::string file = folder_.path("content");
    EXPECT_EQ(save(file, letter), 0);
    return bytes_of(file);
  }
  static int save(const std::string& file, char letter) {
    OwnDatabase database;
    database.SetComment(std::string(40000, letter).c_str());
    return database.Write(file.c_str());
  }

  /// As a disk has it behind the loss: only what has not been changed has its old time.
  void make(const State& state) const {
    fs::remove_all(folder_path_);
    fs::create_directories(folder_path_);
    for (const auto& [name, content] : state)
      folder_.write("disk/" + name, content, content == old_ || name == kWhole ? 0 : 2);
    if (!state.contains("b.dbc")) return;
    fs::remove(folder_path_ + "/b.dbc");
    fs::create_hard_link(path_, folder_path_ + "/b.dbc");
  }

  std::string content_in(const State& state, const std::string& name) const {
    const auto found = state.find(name);
    return found == state.end() ? "" : found->second;
  }

  /// Reading gives the old database or the new one, and the next save leaves nothing beside it.
  void check_next_save(const std::string& names) const {
    if (fs::exists(path_)) {
      const std::string comment = OwnDatabase(path_).comment;
      EXPECT_TRUE(comment == std::string(40000, 'o') || comment == std::string(40000, 'n'));
    }
    EXPECT_EQ(save(path_, 'x'), 0) << zelk_get_error_text();
    EXPECT_EQ(OwnDatabase(path_).comment, std::string(40000, 'x'));
    std::string left;
    for (const char* name : {"a.dbc", "b.dbc", kWhole, ".a.dbc.zelk-0", ".a.dbc.zelk-1"})
      if (fs::exists(folder_path_ + "/" + name)) left += std::string(name) + " ";
    EXPECT_EQ(left, names);
  }

  std::string old_, new_;
};

struct PowerCase {
  const char* name;
  bool is_there, is_linked;
};
constexpr PowerCase kPowerCases[] = {
    {"new", false, false}, {"replaced", true, false}, {"with two names", true, true}};

State state_before(const PowerCase& c, const std::string& content) {
  State state;
  if (c.is_there) state["a.dbc"] = content;
  if (c.is_linked) state["b.dbc"] = content;
  return state;
}

TEST_F(PowerLoss, LeavesTheOldFileOrTheNew) {
  for (const PowerCase& c : kPowerCases) {
    SCOPED_TRACE(c.name);
    make(state_before(c, old_));
    std::set<State> states;
    {
      LostPower power(folder_path_);
      ASSERT_EQ(save(path_, 'n'), 0);
      states = power.states();
      for (const State& state : power.states_now()) EXPECT_EQ(content_in(state, "a.dbc"), new_);
    }
    EXPECT_GT(states.size(), c.is_linked ? 9u : 5u);
    for (const State& state : states) {
      const std::string content = content_in(state, "a.dbc");
      const bool is_old =
          state.contains("a.dbc") == c.is_there && content == (c.is_there ? old_ : "");
      EXPECT_TRUE(is_old || content == new_ || (c.is_linked && content_in(state, kWhole) == new_));
      make(state);
      check_next_save(c.is_linked ? "a.dbc b.dbc " : "a.dbc ");
    }
  }
}

TEST_F(PowerLoss, LeavesEachOfSeveralFiles) {
  const State before = {{"a", "old a"}, {"b", "old b"}, {"fresh/a", "new a"}, {"fresh/b", "new b"}};
  make(before);
  const fs::path folder = folder_path_;
  LostPower power(folder_path_);
  ASSERT_FALSE(zelk::files::take_places(
      {{folder / "fresh/a", folder / "a"}, {folder / "fresh/b", folder / "b"}}, {}));
  for (const State& state : power.states())
    for (const char* name : {"a", "b"})
      EXPECT_TRUE(content_in(state, name).ends_with(name) && state.at(name).size() == 5) << name;
  for (const State& state : power.states_now())
    EXPECT_TRUE(state.at("a") == "new a" && state.at("b") == "new b");
}

TEST_F(PowerLoss, KilledBeforeEachCall) {
  for (const PowerCase& c : kPowerCases) {
    SCOPED_TRACE(c.name);
    int status = SIGKILL;
    for (int calls = 0; status != 0; ++calls) {
      ASSERT_LT(calls, 50);
      make(state_before(c, old_));
      const pid_t child = fork();
      if (child == 0) {
        const KillBefore watch(calls);
        _exit(save(path_, 'n'));
      }
      ASSERT_EQ(waitpid(child, &status, 0), child);
      ASSERT_TRUE(status == 0 || WIFSIGNALED(status));
      const std::string content = bytes_of(path_), copy = bytes_of(folder_path_ + "/" + kWhole);
      EXPECT_TRUE(content == (c.is_there ? old_ : "") || content == new_ ||
                  (c.is_linked && copy == new_))
          << calls;
      check_next_save(c.is_linked ? "a.dbc b.dbc " : "a.dbc ");
    }
  }
}

}  // namespace
