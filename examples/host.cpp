/// \file
/// A small host of the class interface: two managers, one that reads and one that edits, share the
/// databases of some files, lock them against each other, and notify each other of changes.
///
///     host examples/powertrain.dbc [FILE...] [--copy COPY]
///
/// The first database gets another comment and is written to COPY, or to a temporary file.

#include <cstdio>
#include <filesystem>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "zelk/errors.h"
#include "zelk/write_manager.hpp"

namespace {

/// A notification, as far as this host needs it: its texts are only borrowed.
struct News {
  std::string database_name;
  const void* receiver;
};

/// A sink must not call the library. So it stores the notifications, and the host handles them
/// later, as a program with windows does in its message loop.
///
/// On Windows no sink is needed: without one the library posts each notification to the manager's
/// own window (a manager made with its HWND) or thread (made with its identifier), as the message
/// of the number RegisterWindowMessageA(ZelkNotificationMessageString), whose LPARAM is the name.
void store_news(const zelk_notification* notification, void* context) {
  if (notification->target == ZELK_NOTIFY_ALL_WINDOWS) return;
  static_cast<std::vector<News>*>(context)->push_back(
      {notification->database_name, notification->handle});
}

/// Replaces the message box that would show the user a refusal.
void print_message(const char* text, const char* title, std::uint32_t, void*) {
  std::printf("[%s] %s\n", title, text);
}

/// Opens a file; false, with a line on standard error, when it cannot be opened.
bool open(ZelkManager& manager, const char* path, unsigned priority) {
  const ZelkError error = manager.OpenDatabase(path, nullptr, priority);
  if (error == ZelkErrorOk) return true;
  std::fprintf(stderr, "%s: %s\n", path, ZelkErrorText(error));
  if (error == ZelkErrorNoDatabase) std::fputs(manager.GetLastOpenError(), stderr);
  return false;
}

unsigned count_messages(const ZelkDatabase& database) {
  unsigned count = 0;
  for (const msgblk* message = database.messages; message; message = message->next) ++count;
  return count;
}

void describe(ZelkManager& manager, const char* name) {
  char default_name[33];  // one more than the longest name
  manager.GetDefaultDatabaseName(name, default_name, sizeof default_name);
  std::printf("%s (by itself %s), priority %u: %u messages\n", name, default_name,
              manager.GetPriority(name), count_messages(*manager.GetConstDatabase(name)));
}

/// Changes the comment and writes the database to `copy`, which is its file from then on, for all
/// managers that share it.
bool edit(ZelkWriteManager& editor, const char* name, const char* copy) {
  if (!editor.LockDatabase(name, "The editor is writing.")) {
    std::puts("The write lock is refused.");
    return false;
  }
  editor.SetDatabaseComment(name, "Edited by an example.");
  const ZelkError error = editor.WriteDatabase(name, copy);  // announces it too
  editor.UnlockDatabase(name);
  if (error == ZelkErrorOk) return true;
  std::fprintf(stderr, "%s: %s\n%s", copy, ZelkErrorText(error), zelk_get_error_text());
  return false;
}

void print_news(const std::vector<News>& news, const void* reader_id) {
  for (const News& piece : news) {
    std::printf("The %s hears that %s has changed.\n",
                piece.receiver == reader_id ? "reader" : "editor", piece.database_name.c_str());
  }
}

/// Closes the database and opens its file again: from the cache, as long as the file is unchanged
/// and the cache has not been flushed.
bool reopen_from_cache(ZelkManager& manager, const char* name, const char* path) {
  manager.CloseDatabase(name, true);  // `name` is no handle any more
  if (!open(manager, path, 0)) return false;
  const ZelkDatabase& database = *manager.GetConstDatabase(manager.GetDatabaseName(path));
  std::printf("Opened again: %u messages, \"%s\"\n", count_messages(database), database.comment);
  return true;
}

/// @param news  where the sink puts the notifications
bool run(const std::vector<const char*>& paths, const char* copy, const std::vector<News>& news) {
  // Without windows, any two addresses tell the managers apart.
  int reader_id = 0;
  int editor_id = 0;
  ZelkManager reader(&reader_id);
  ZelkWriteManager editor(&editor_id);
  unsigned priority = static_cast<unsigned>(paths.size());
  for (const char* const path : paths) {
    // A database of higher priority answers first when several know an object of one name.
    if (!open(reader, path, priority) || !open(editor, path, priority)) return false;
    describe(reader, reader.GetDatabaseName(path));
    --priority;
  }

  // A name is a handle: each manager has its own.
  const char* const read = reader.GetDatabaseName(paths[0]);
  const char* const edited = editor.GetDatabaseName(paths[0]);
  reader.LockDatabase(read, "The reader is counting messages.");
  edit(editor, edited, copy);  // refused
  reader.UnlockDatabase(read);
  if (!edit(editor, edited, copy)) return false;
  print_news(news, &reader_id);

  reader.CloseDatabase(read, false);  // from now on only the editor holds it
  return reopen_from_cache(editor, edited, copy);
}  // the managers close what they have open

std::string temporary_path() {
  const std::string name = "zelk_host_" + std::to_string(std::random_device()()) + ".dbc";
  return (std::filesystem::temp_directory_path() / name).string();
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<const char*> paths(argv + 1, argv + argc);
  std::string copy;
  if (paths.size() >= 2 && std::string_view("--copy") == paths[paths.size() - 2]) {
    copy = paths.back();
    paths.resize(paths.size() - 2);
  }
  if (paths.empty()) {
    std::fputs("usage: host FILE... [--copy COPY]\n", stderr);
    return 2;
  }
  const bool is_temporary = copy.empty();
  if (is_temporary) copy = temporary_path();
  std::vector<News> news;
  zelk_set_notification_sink(store_news, &news);
  zelk_set_message_box(print_message, nullptr);
  const bool is_done = run(paths, copy.c_str(), news);
  if (is_temporary) std::filesystem::remove(copy);
  return is_done ? 0 : 1;
}
