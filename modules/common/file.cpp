#include "common/file.hpp"

#include <cerrno>
#include <cstdio>
#include <memory>
#include <new>
#include <system_error>

#include "common/records.hpp"

namespace zelk::modules {
namespace {

constexpr std::size_t kBytesMax = std::size_t{1} << 31;
constexpr std::size_t kBlock = std::size_t{1} << 20;

struct Closer {
  void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, Closer>;

[[noreturn]] void fail(const char* what, int code) {
  if (code == ENOMEM) throw std::bad_alloc();
  throw Fault(what + (": " + std::generic_category().message(code)));
}

}  // namespace

std::string read_file(const char* path) {
  errno = 0;
  const File file(std::fopen(path, "rb"));
  if (!file) fail("the file cannot be opened", errno);
  std::string content;
  std::size_t count = kBlock;
  while (count == kBlock) {
    const std::size_t size = content.size();
    content.resize(size + kBlock);
    count = std::fread(content.data() + size, 1, kBlock, file.get());
    content.resize(size + count);
    if (content.size() > kBytesMax) throw Fault("the file has more than 2 GiB");
  }
  if (std::ferror(file.get()) != 0) fail("the file cannot be read", errno);
  return content;
}

void write_new_file(const char* path, std::string_view content) {
  errno = 0;
  if (File(std::fopen(path, "rb"))) throw Fault("the file exists already");
  if (errno != ENOENT) fail("the file cannot be created", errno);
  File file(std::fopen(path, "wb"));
  if (!file) fail("the file cannot be created", errno);
  bool is_whole = std::fwrite(content.data(), 1, content.size(), file.get()) == content.size();
  is_whole = is_whole && std::fflush(file.get()) == 0;
  int code = errno;
  const bool is_closed = std::fclose(file.release()) == 0;
  if (is_whole) code = errno;
  if (is_whole && is_closed) return;
  std::remove(path);
  fail("the file cannot be written", code);
}

}  // namespace zelk::modules
