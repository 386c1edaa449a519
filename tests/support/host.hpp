/// What a host of the class interface hears from the library.
#ifndef ZELK_TESTS_SUPPORT_HOST_HPP
#define ZELK_TESTS_SUPPORT_HOST_HPP

#include <sstream>
#include <string>
#include <vector>

#include "zelk/manager.hpp"

/// A made-up window or thread; it is never dereferenced.
template <typename Handle>
Handle handle(std::uintptr_t number) {
  return reinterpret_cast<Handle>(number);
}

/// Takes all notifications and messages while it lives.
class Host {
 public:
  Host() {
    zelk_set_notification_sink(
        [](const zelk_notification* n, void* host) { static_cast<Host*>(host)->take(*n); }, this);
    zelk_set_message_box(
        [](const char* text, const char* title, std::uint32_t style, void* host) {
          static_cast<Host*>(host)->messages.push_back(std::string(title) + "|" + text + "|" +
                                                       std::to_string(style));
        },
        this);
  }
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;
  ~Host() {
    zelk_set_notification_sink(nullptr, nullptr);
    zelk_set_message_box(nullptr, nullptr);
  }

  std::vector<std::string> notifications;  ///< "window 10 from 20: name", handles in hexadecimal
  std::vector<std::string> messages;       ///< title|text|style
  std::uint32_t number = 0;                ///< of the last notification's message

 private:
  void take(const zelk_notification& notification) {
    const char* const targets[] = {"all", "window", "thread"};
    std::ostringstream line;
    line << targets[notification.target] << std::hex << " "
         << reinterpret_cast<std::uintptr_t>(notification.handle) << " from " << notification.sender
         << ": " << (notification.database_name ? notification.database_name : "-");
    notifications.push_back(line.str());
    number = notification.message;
  }
};

#endif
