// A host that uses the C interface at the end of its process: in an `atexit` handler registered
// before the first call into the library, and in the destructor of a global object older than that.
// Exits with 0 when all of it worked.

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "support/lists.hpp"

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

}  // namespace

int main(int, char** arguments) {
  source = arguments[1];
  std::atexit(save);
  return works() ? 0 : 1;
}
