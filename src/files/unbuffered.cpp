#include "files/unbuffered.hpp"

#include <cerrno>

#include "base/check_memory.hpp"

namespace zelk::files {

File unbuffered(std::FILE* stream) {
  File file(stream);
  if (!file) check_memory(errno);
  if (file) static_cast<void>(std::setvbuf(file.get(), nullptr, _IONBF, 0));
  return file;
}

}  // namespace zelk::files
