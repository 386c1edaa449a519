#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <system_error>

#include "system.hpp"

namespace zelk::tool {

const char* const kModuleExtension = ".dll";

void prepare_process() {
  _setmode(_fileno(stdin), _O_BINARY);
  _setmode(_fileno(stdout), _O_BINARY);
}

// What Windows ends a program for comes on a thread of its own and leaves no time to hold it back.
HeldSignals::HeldSignals() = default;
HeldSignals::~HeldSignals() = default;

std::size_t read_some(std::FILE* file, char* buffer, std::size_t size) {
  const auto most = static_cast<unsigned>(std::min<std::size_t>(size, INT_MAX));
  const int count = _read(_fileno(file), buffer, most);
  if (count < 0) throw std::system_error(errno, std::generic_category(), "cannot read");
  return static_cast<std::size_t>(count);
}

std::optional<std::uint64_t> size_of_regular_file(std::FILE* file) {
  struct _stat64 status;
  if (_fstat64(_fileno(file), &status) != 0 || !(status.st_mode & _S_IFREG)) return std::nullopt;
  return static_cast<std::uint64_t>(status.st_size);
}

bool is_terminal(std::FILE* file) { return _isatty(_fileno(file)); }

}  // namespace zelk::tool
