/// \file
/// Notifications and messages of the library, and the functions by which a host takes them over.
///
/// The library posts change notifications to the windows and threads that managers were made for,
/// and shows a message box when a lock is refused; nothing else. On Windows the system does both. A
/// host without windows, as every host on Linux, registers functions for them; on Windows, too, a
/// registered function takes the place of the system.

#ifndef ZELK_PLATFORM_H
#define ZELK_PLATFORM_H

#include <stdint.h>

#include "zelk/export.h"

/// A window and a module, by the names that Windows declares; opaque pointers everywhere else.
typedef struct HWND__* HWND;            // NOLINT(bugprone-reserved-identifier)
typedef struct HINSTANCE__* HINSTANCE;  // NOLINT(bugprone-reserved-identifier)

ZELK_EXTERN_C_BEGIN

/// The receiver of a notification.
typedef enum zelk_notification_target {
  ZELK_NOTIFY_ALL_WINDOWS = 0,
  ZELK_NOTIFY_WINDOW = 1,
  ZELK_NOTIFY_THREAD = 2
} zelk_notification_target;

/// One posted notification, in the parts of a window message.
typedef struct zelk_notification {
  zelk_notification_target target;
  /// The window or thread of the receiving manager; null for all windows.
  void* handle;
  /// Number of the registered message (`ZelkNotificationMessageString`), 0xC000 to 0xFFFF.
  uint32_t message;
  /// The message's first parameter: low 32 bits of the sending manager's window or thread handle;
  /// 0 for all windows.
  uint32_t sender;
  /// The message's second parameter: the receiving manager's name of the changed database, valid
  /// while the manager has it open under that name; null for all windows.
  const char* database_name;
} zelk_notification;

/// Takes a notification, in the thread that announces a change. Managers of several threads may
/// announce at once. The managers are still at work: the function must not open, close, rename or
/// destroy anything of theirs, but note what it needs for later.
///
/// @param notification  borrowed for the call
/// @param context       as registered
typedef void (*zelk_notification_sink)(const zelk_notification* notification, void* context);

/// Shows a message and returns when the user has confirmed it. Like a sink of notifications, it
/// must not change the managers.
///
/// @param text     the message, NUL-terminated, with line feeds; borrowed for the call
/// @param title    title of the box; borrowed for the call
/// @param style    bits of a Windows message box (0x2010: task-modal, error icon, OK button)
/// @param context  as registered
typedef void (*zelk_message_box)(const char* text, const char* title, uint32_t style,
                                 void* context);

/// Registers the function that receives every notification of the process. It is called in the
/// thread that notifies, perhaps in several at once (zelk.h, 6). A call that runs while another
/// function is registered ends in the old one.
///
/// @param function  null: notifications are posted on Windows and go nowhere elsewhere (the state
/// at the start)
/// @param context   handed to every call; the host's
ZELK_API void zelk_set_notification_sink(zelk_notification_sink function, void* context);

/// Registers the function that shows every message of the process, called like that for
/// notifications.
///
/// @param function  null: a message box on Windows, a line on standard error elsewhere (the state
/// at the start)
/// @param context   handed to every call; the host's
ZELK_API void zelk_set_message_box(zelk_message_box function, void* context);

ZELK_EXTERN_C_END

#endif
