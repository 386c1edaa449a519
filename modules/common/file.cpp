#include "common/file.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <system_error>

#include "base/check_memory.hpp"
#include "common/records.hpp"
#include "files/files.hpp"

namespace zelk::modules {
namespace {

constexpr std::size_t kBytesMax = std::size_t{1} << 31;
constexpr std::size_t kFirstBlock = std::size_t{1} << 12;  // many files are small
constexpr std::size_t kMostBlock = std::size_t{1} << 16;

[[noreturn]] void fail(const char* what, int code) {
  check_memory(code);
  throw Fault(what + (": " + std::generic_category().message(code)));
}

}  // namespace

std::string read_file(const char* path) {
  errno = 0;
  const files::File file = files::open_for_reading(path);
  if (!file) fail("the file cannot be opened", errno);
  std::string content;
  bool is_end = false;
  for (std::size_t block = kFirstBlock; !is_end; block = std::min(2 * block, kMostBlock)) {
    const std::size_t size = content.size();
    content.resize(size + block);
    const std::size_t count = std::fread(content.data() + size, 1, block, file.get());
    content.resize(size + count);
    is_end = count < block;
    if (content.size() > kBytesMax) throw Fault("the file has more than 2 GiB");
  }
  if (std::ferror(file.get()) != 0) fail("the file cannot be read", errno);
  return content;
}

void write_new_file(const char* path, std::string_view content) {
  errno = 0;
  if (files::open_for_reading(path)) throw Fault("the file exists already");
  if (errno != ENOENT) fail("the file cannot be created", errno);
  files::Replacement file(path, files::Content::kBytes);
  if (!file.file()) throw Fault("the file cannot be created: " + file.failure());
  const bool is_whole =
      std::fwrite(content.data(), 1, content.size(), file.file()) == content.size();
  if (!is_whole) fail("the file cannot be written", errno);
  if (!file.take_place()) throw Fault("the file cannot be written: " + file.failure());
}

}  // namespace zelk::modules
