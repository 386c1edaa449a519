#include <gtest/gtest.h>
#include <windows.h>

#include <future>
#include <optional>
#include <string>

#include "platform/hooks.hpp"
#include "platform/platform.hpp"

namespace {

using namespace zelk::platform;

constexpr int kTries = 1000;
constexpr DWORD kPauseMilliseconds = 10;

/// The next message of this number to a window, or to the thread itself when `window` is -1. None
/// when it does not come.
std::optional<MSG> next_message(HWND window, UINT number, int tries = kTries) {
  MSG message = {};
  for (; tries > 0; --tries) {
    if (PeekMessageA(&message, window, number, number, PM_REMOVE)) return message;
    Sleep(kPauseMilliseconds);
  }
  return std::nullopt;
}

const HWND kThread = reinterpret_cast<HWND>(-1);

/// A top-level window that is never shown.
struct Window {
  Window() {
    WNDCLASSA type = {};
    type.lpfnWndProc = DefWindowProcA;
    type.lpszClassName = "ZelkTestWindow";
    RegisterClassA(&type);
    handle = CreateWindowA("ZelkTestWindow", "", WS_OVERLAPPED, 0, 0, 1, 1, nullptr, nullptr,
                           nullptr, nullptr);
  }
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;
  ~Window() { DestroyWindow(handle); }

  HWND handle;
};

TEST(NotificationsOfWindows, ReachAWindow) {
  const Window window;
  const std::uint32_t number = registered_message("ZelkTestMessage");
  EXPECT_EQ(number, RegisterWindowMessageA("ZelkTestMessage"));
  const char name[] = "Db";
  notify({ZELK_NOTIFY_WINDOW, window.handle, number, 0xFFFF1234, name});
  const auto message = next_message(window.handle, number);
  ASSERT_TRUE(message);
  EXPECT_EQ(message->hwnd, window.handle);
  EXPECT_EQ(message->wParam, 0xFFFF1234U) << "not extended with its sign";
  EXPECT_EQ(message->lParam, reinterpret_cast<LPARAM>(name));
}

TEST(NotificationsOfWindows, ReachAllWindows) {
  const Window windows[2];
  const std::uint32_t number = registered_message("ZelkTestMessageToAll");
  notify({ZELK_NOTIFY_ALL_WINDOWS, nullptr, number, 0, nullptr});
  for (const Window& window : windows) EXPECT_TRUE(next_message(window.handle, number));
}

// The identifier stands in the low 32 bits of the handle, whatever is above.
TEST(NotificationsOfWindows, ReachAThread) {
  const std::uint32_t number = registered_message("ZelkTestMessage");
  std::promise<DWORD> id;
  auto received = std::async(std::launch::async, [&] {
    next_message(kThread, number, 1);  // makes the thread's queue
    id.set_value(GetCurrentThreadId());
    return next_message(kThread, number);
  });
  const std::uintptr_t handle = id.get_future().get() | 0x12345'0000'0000;
  const char name[] = "Db";
  notify({ZELK_NOTIFY_THREAD, reinterpret_cast<void*>(handle), number, 0x80000001, name});
  const auto message = received.get();
  ASSERT_TRUE(message);
  EXPECT_EQ(message->hwnd, nullptr);
  EXPECT_EQ(message->wParam, 0x80000001U);
  EXPECT_EQ(message->lParam, reinterpret_cast<LPARAM>(name));
}

TEST(NotificationsOfWindows, ToNobody) {
  const std::uint32_t number = registered_message("ZelkTestMessage");
  const HWND destroyed = Window().handle;
  notify({ZELK_NOTIFY_WINDOW, destroyed, number, 1, "Db"});
  notify({ZELK_NOTIFY_WINDOW, nullptr, number, 1, "Db"});
  notify({ZELK_NOTIFY_THREAD, nullptr, number, 1, "Db"});
  EXPECT_FALSE(next_message(nullptr, number, 1)) << "of any window, or of this thread";
}

struct Box {
  std::string title, text, buttons;
};

std::string text_of(HWND window) {
  char text[100] = {};
  GetWindowTextA(window, text, sizeof text);
  return text;
}

HWND visible_dialog_of(DWORD thread_id) {
  HWND dialog = nullptr;
  const auto look = [](HWND window, LPARAM found) -> BOOL {
    char type[10] = {};
    GetClassNameA(window, type, sizeof type);
    const bool is_dialog = IsWindowVisible(window) && std::string(type) == "#32770";
    if (is_dialog) *reinterpret_cast<HWND*>(found) = window;
    return !is_dialog;
  };
  EnumThreadWindows(thread_id, look, reinterpret_cast<LPARAM>(&dialog));
  return dialog;
}

/// Reads the message box that a thread shows, and closes it.
Box take_note(DWORD thread_id) {
  HWND dialog = nullptr;
  for (int i = 0; i < kTries && !dialog; ++i) {
    dialog = visible_dialog_of(thread_id);
    Sleep(kPauseMilliseconds);
  }
  Box box = {text_of(dialog), "", ""};
  for (HWND child = GetWindow(dialog, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
    char type[10] = {};
    GetClassNameA(child, type, sizeof type);
    (std::string(type) == "Button" ? box.buttons : box.text) += text_of(child);
  }
  PostMessageA(dialog, WM_CLOSE, 0, 0);
  return box;
}

TEST(MessageBoxOfWindows, IsShownUntilTheUserTakesNote) {
  auto shown = std::async(std::launch::async, take_note, GetCurrentThreadId());
  tell_user("Database access refused!\nWhy", "ZelkTestTitle", 0x2010);
  const Box box = shown.get();
  EXPECT_EQ(box.title, "ZelkTestTitle");
  EXPECT_EQ(box.text, "Database access refused!\nWhy");
  EXPECT_EQ(box.buttons, "OK");
}

}  // namespace
