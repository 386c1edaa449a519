#include <cerrno>
#include <system_error>

#include "base/check_memory.hpp"
#include "files/files.hpp"

namespace zelk::files {

namespace {

[[noreturn]] void fail() {
  check_memory(errno);
  throw std::system_error(errno, std::generic_category());
}

}  // namespace

std::string read_all(const char* path) {
  constexpr std::size_t kBlock = std::size_t{1} << 20;
  errno = ENOENT;
  const File file = open_for_reading(path);
  if (!file) fail();
  std::string content;
  std::size_t count = kBlock;
  while (count == kBlock) {
    const std::size_t size = content.size();
    content.resize(size + kBlock);
    count = std::fread(content.data() + size, 1, kBlock, file.get());
    content.resize(size + count);
  }
  if (std::ferror(file.get()) != 0) fail();
  return content;
}

}  // namespace zelk::files
