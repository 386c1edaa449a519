// Managers of several threads at once: for the thread sanitizer too.

#include <atomic>

#include "manager/manager_test.hpp"
#include "support/files.hpp"
#include "support/threads.hpp"
#include "zelk/frame_decoder.hpp"
#include "zelk/lock.hpp"
#include "zelk/write_manager.hpp"

namespace {

class ManagerThreads : public ManagerTest {
 protected:
  ManagerThreads() {
    zelk_set_notification_sink(
        [](const zelk_notification*, void* count) { ++*static_cast<std::atomic<int>*>(count); },
        &notifications);
    zelk_set_message_box([](const char*, const char*, std::uint32_t,
                            void* count) { ++*static_cast<std::atomic<int>*>(count); },
                         &refusals);
  }

  std::atomic<int> notifications = 0;
  std::atomic<int> refusals = 0;
};

TEST_F(ManagerThreads, ShareWhatTheyRead) {
  const std::string shared = folder.write(
      "shared.dbc", "BS_:\nBU_: A\nBO_ 1 M: 8 A\n SG_ S : 0|8@1+ (2,1) [0|0] \"\" A\n");
  const std::string faulty = folder.write("faulty.dbc", kFaulty);
  Manager holder;
  EXPECT_EQ(holder.OpenDatabase(faulty.c_str(), nullptr, 0), ZelkErrorNoDatabase);
  const std::string told = holder.GetLastOpenError();
  EXPECT_NE(told, "");
  const ZelkDatabase* const held = holder.GetConstDatabase(open(holder, shared));
  const ZelkFrameDecoderTable decoders(held->messages);
  run_in_threads([&](int thread, int round) {
    Manager manager;
    const std::string own = "own" + std::to_string(thread);
    const char* const a = open(manager, shared, own.c_str());
    const char* const b = open(manager, folder.write(own + ".dbc", kDatabase), "b");
    EXPECT_EQ(manager.GetConstDatabase(a), held);
    EXPECT_EQ(manager.GetMessage("M", a), held->messages);
    EXPECT_EQ(manager.GetMessage(1UL, static_cast<const char*>(nullptr)), held->messages);
    EXPECT_EQ(held->GetJ1939Message(1, 0), held->messages);
    const unsigned char frame[] = {static_cast<unsigned char>(round)};
    double value = 0;
    std::uint64_t present = 0;
    decoders.Find(1)->Decode(frame, sizeof frame, &value, &present);
    EXPECT_EQ(value, 2 * round + 1);
    EXPECT_TRUE(manager.LockAllDatabases("reading"));
    EXPECT_EQ(manager.OpenDatabase(faulty.c_str(), nullptr, 0), ZelkErrorNoDatabase);
    EXPECT_EQ(manager.GetLastOpenError(), told);
    EXPECT_STREQ(manager.GetDatabaseName(shared.c_str()), own.c_str());
    manager.CloseDatabase(b, round % 2 == 0);
    EXPECT_EQ(manager.SetDatabaseName(a, nullptr, "renamed"), ZelkErrorOk);
  });
  EXPECT_EQ(held->ref_count, 1U);
  EXPECT_EQ(refusals, 0);
}

TEST_F(ManagerThreads, KeepEachOtherFromWriting) {
  const std::string contested = folder.write("contested.dbc", kDatabase);
  std::atomic<int> writers = 0, written = 0;
  run_in_threads([&](int thread, int) {
    ZelkWriteManager manager(handle<HWND>(0x10));
    const char* name = nullptr;
    if (manager.OpenDatabase(contested.c_str(), &name, 0) == ZelkErrorOk) {
      EXPECT_EQ(++writers, 1) << "a file has one writer";
      manager.SetDatabaseComment(name, "edited");
      EXPECT_EQ(manager.WriteDatabase(name, nullptr), ZelkErrorOk);
      ++written;
      --writers;
    }
    const std::string own = folder.path("new" + std::to_string(thread) + ".dbc");
    std::filesystem::remove(own);
    EXPECT_EQ(manager.CreateDatabase("fresh", &name, own.c_str()), ZelkErrorOk);
    EXPECT_EQ(manager.WriteDatabase(name, nullptr), ZelkErrorOk);
  });
  EXPECT_GT(written, 0);
  EXPECT_EQ(notifications, 2 * (written + kThreads * kRounds)) << "all windows, and its own";
}

TEST_F(ManagerThreads, LockOutEachOther) {
  const std::string path = folder.write("a.dbc", kDatabase);
  std::atomic<int> holders = 0, refused = 0;
  run_in_threads([&](int thread, int) {
    Manager manager;
    const char* const name = open(manager, path, nullptr, static_cast<unsigned>(thread));
    if (ZelkWriteLock::Create(manager, name, "writing")) {
      EXPECT_EQ(++holders, 1);
      --holders;
      manager.UnlockDatabase(name);
    } else {
      ++refused;
    }
  });
  EXPECT_EQ(refusals, refused);
}

}  // namespace
