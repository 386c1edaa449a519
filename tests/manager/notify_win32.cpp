// Notifications and refusals on Windows without registered functions: real windows, threads, boxes.

#include <windows.h>

#include <future>
#include <thread>

#include "manager/manager_test.hpp"
#include "zelk/lock.hpp"

namespace {

constexpr DWORD kPatienceMs = 30000;

class WindowsTest : public ManagerTest {
 protected:
  WindowsTest() {
    zelk_set_notification_sink(nullptr, nullptr);
    zelk_set_message_box(nullptr, nullptr);
  }

  const UINT number = RegisterWindowMessageA("ZelkMessageNotification");
};

using Windows = WindowsTest;

struct Parameters {
  WPARAM sender;
  LPARAM name;
  bool operator==(const Parameters&) const = default;
};

constexpr Parameters kBroadcast = {0, 0};

Parameters named(const void* sender, const char* name) {
  return {reinterpret_cast<std::uintptr_t>(sender) & 0xFFFFFFFF, reinterpret_cast<LPARAM>(name)};
}

/// A top-level window, never shown, of the calling thread.
class Window {
 public:
  Window()
      : handle_(CreateWindowA("STATIC", "", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr,
                              nullptr)) {}
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;
  ~Window() { DestroyWindow(handle_); }

  operator HWND() const { return handle_; }

  /// The next message of this number to this window alone. Broadcasts reach all windows of the
  /// session, also those of programs that run at the same time.
  Parameters next_own(UINT number) const {
    Parameters received = next(number);
    while (received == kBroadcast) received = next(number);
    return received;
  }

  /// The next message of this number; both parameters are -1 when none comes.
  Parameters next(UINT number) const {
    MSG message;
    while (!PeekMessageA(&message, handle_, number, number, PM_REMOVE)) {
      if (MsgWaitForMultipleObjects(0, nullptr, FALSE, kPatienceMs, QS_ALLINPUT) != WAIT_OBJECT_0) {
        return {~WPARAM{0}, -1};
      }
      while (PeekMessageA(&message, nullptr, 0, number - 1, PM_REMOVE)) DispatchMessageA(&message);
    }
    return {message.wParam, message.lParam};
  }

 private:
  HWND handle_;
};

TEST_F(Windows, AreTold) {
  const std::string path = folder.write("a.dbc", kDatabase);
  const Window bystander;
  const Window window;
  ZelkManager sender(static_cast<HWND>(bystander));
  ZelkManager receiver(static_cast<HWND>(window));
  const ZelkDatabase& changed = *sender.GetDatabase(open(sender, path, "sent"));
  const char* const name = open(receiver, path, "received");
  ZelkManager::NotifyChanges(sender, changed);
  EXPECT_EQ(window.next(number), kBroadcast);
  EXPECT_EQ(window.next_own(number), named(bystander, name));
  EXPECT_EQ(bystander.next(number), kBroadcast);
  EXPECT_EQ(bystander.next_own(number), named(bystander, sender.GetUniqueDatabaseName("sent")));
  sender.SetHandle(handle<HWND>(0xFFFFFFFF80001234));
  receiver.NotifyChanges(changed, sender);
  const Parameters of_low_word = {0x80001234, reinterpret_cast<LPARAM>(name)};
  EXPECT_EQ(window.next_own(number), of_low_word) << "not extended with its sign";
}

TEST_F(Windows, OrThreads) {
  const std::string path = folder.write("a.dbc", kDatabase);
  std::promise<DWORD> started;
  Parameters received = {};
  std::thread thread([&] {
    MSG message;
    PeekMessageA(&message, nullptr, WM_USER, WM_USER, PM_NOREMOVE);  // makes the message queue
    started.set_value(GetCurrentThreadId());
    while (GetMessageA(&message, nullptr, 0, 0) > 0) {
      if (message.message == number) received = {message.wParam, message.lParam};
    }
  });
  const DWORD id = started.get_future().get();
  {
    // The identifier stands in the low 32 bits of the handle, whatever is above.
    const auto thread_handle = handle<void*>(id | 0x12345'0000'0000);
    ZelkManager manager(thread_handle);
    const char* const name = open(manager, path);
    ZelkManager::NotifyChanges(manager, *manager.GetDatabase(name));
    PostThreadMessageA(id, WM_QUIT, 0, 0);
    thread.join();
    EXPECT_EQ(received, named(thread_handle, name));
  }
  ZelkManager gone(handle<void*>(id));
  ZelkManager::NotifyChanges(gone, *gone.GetDatabase(open(gone, path)));
}

/// Waits for the box, reads it and presses its button; gives up by ending the asking thread's
/// wait.
std::string answer_box(DWORD asking_thread) {
  HWND box = nullptr;
  for (DWORD waited_ms = 0; !box && waited_ms < kPatienceMs; waited_ms += 20) {
    Sleep(20);
    box = FindWindowA(nullptr, "ZELKMS.DLL");
    if (box && !IsWindowVisible(box)) box = nullptr;  // its parts are still being made
  }
  if (!box) {
    PostThreadMessageA(asking_thread, WM_QUIT, 0, 0);
    return "there is no box";
  }
  std::string text;
  EnumChildWindows(
      box,
      [](HWND child, LPARAM result) -> BOOL {
        char content[256] = "";
        SendMessageA(child, WM_GETTEXT, sizeof content, reinterpret_cast<LPARAM>(content));
        *reinterpret_cast<std::string*>(result) += content + std::string("|");
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&text));
  const HWND button = FindWindowExA(box, nullptr, "Button", nullptr);
  PostMessageA(box, WM_COMMAND, static_cast<WPARAM>(GetDlgCtrlID(button)), 0);
  return text;
}

TEST_F(Windows, ShowRefusals) {
  const std::string path = folder.write("a.dbc", kDatabase);
  Manager reader;
  Manager writer;
  const char* const read = open(reader, path);
  const char* const written = open(writer, path);
  ASSERT_TRUE(reader.LockDatabase(read, "somebody reads"));
  auto told = std::async(std::launch::async, answer_box, GetCurrentThreadId());
  EXPECT_EQ(ZelkWriteLock::Create(writer, written, "somebody writes"), nullptr);
  const std::string text = told.get();
  for (const char* part : {"Database access refused!\nsomebody reads|", "OK|"}) {
    EXPECT_NE(text.find(part), std::string::npos) << text;
  }
}

}  // namespace
