/// What a fuzzer tries, as a file.
#ifndef ZELK_FUZZ_MEMORY_FILE_HPP
#define ZELK_FUZZ_MEMORY_FILE_HPP

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

/// A file in memory with the given content, under a name that can be opened.
class MemoryFile {
 public:
  MemoryFile(const std::uint8_t* data, std::size_t size) : descriptor_(memfd_create("fuzz", 0)) {
    if (descriptor_ < 0 || write(descriptor_, data, size) != static_cast<ssize_t>(size))
      std::abort();
  }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;
  ~MemoryFile() { close(descriptor_); }

  std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

 private:
  int descriptor_;
};

#endif
