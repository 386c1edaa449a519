/// \file
/// Where the bytes of a read come from: an open file, or memory.

#ifndef ZELK_READER_BYTE_SOURCE_HPP
#define ZELK_READER_BYTE_SOURCE_HPP

#include <cstddef>
#include <cstdio>
#include <string_view>
#include <utility>

#include "files/files.hpp"

namespace zelk {

class ByteSource {
 public:
  // NOLINTNEXTLINE(google-explicit-constructor): a file is a source
  ByteSource(files::File file) : file_(std::move(file)) {}
  /// @param bytes  outlive the source
  explicit ByteSource(std::string_view bytes) : bytes_(bytes) {}

  /// Moves up to `room` bytes to `into`; returns how many, 0 at the end only.
  std::size_t read(char* into, std::size_t room) {
    if (file_) return std::fread(into, 1, room, file_.get());
    const std::size_t count = bytes_.copy(into, room);
    bytes_.remove_prefix(count);
    return count;
  }

  /// Whether reading stopped because of a fault of the file and not at its end.
  bool failed() const { return file_ && std::ferror(file_.get()) != 0; }

 private:
  files::File file_;  ///< null for memory
  std::string_view bytes_;
};

}  // namespace zelk

#endif
