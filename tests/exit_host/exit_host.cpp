// A host that uses the library at the end of its process: the C interface in an `atexit` handler
// registered before the first call into the library, and in the destructor of a global object older
// than that; managers in global objects that are destroyed before the library's own and after them.
// Exits with 0 when all of it worked.

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <memory>

#include "support/lists.hpp"
#include "zelk/write_manager.hpp"

namespace {

const char* source = nullptr;

/// What hosts do with a database; it also touches all that the library keeps for the process.
bool works() {
  Lists lists;
  zelk_clear_error_text();
  const bool is_read =
      lists.try_read(source) == ZELK_OK && lists.try_read("missing.dbc") == ZELK_ERR_NOT_FOUND;
  const bool is_reported =
      std::strstr(zelk_get_error_text(), "database: not found, missing.dbc\n") &&
      std::strcmp(zelk_get_thread_error_text(), zelk_get_error_text()) == 0;
  zelk_set_message_box(nullptr, nullptr);
  const uint32_t written = lists.write_by(zelk_try_write, "exit_host.dbc");
  return is_read && is_reported && written == ZELK_OK && std::remove("exit_host.dbc") == 0;
}

void save() {
  if (!works()) std::_Exit(2);
}

struct Owner {
  ~Owner() {
    if (!works()) std::_Exit(3);
  }
} owner;

/// Makes a database, and writes it in the destructor.
class Saver {
 public:
  ~Saver() {
    if (!manager_) return;
    const bool is_saved = manager_->WriteDatabase(name_, nullptr) == ZelkErrorOk;
    if (!is_saved || std::remove(path_) != 0) std::_Exit(4);
  }

  bool make(const char* path) {
    path_ = path;
    manager_ = std::make_unique<ZelkWriteManager>(static_cast<void*>(nullptr));
    return manager_->CreateDatabase("made", &name_, path) == ZelkErrorOk &&
           manager_->LockDatabase(name_, "until the end");
  }

 private:
  std::unique_ptr<ZelkWriteManager> manager_;
  const char* path_ = nullptr;
  const char* name_ = nullptr;
};

Saver first;

}  // namespace

int main(int, char** arguments) {
  source = arguments[1];
  std::atexit(save);
  const bool is_made = first.make("exit_host_first.dbc");
  static Saver last;
  return is_made && last.make("exit_host_last.dbc") && works() ? 0 : 1;
}
