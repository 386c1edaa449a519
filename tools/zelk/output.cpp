#include "output.hpp"

#include <cerrno>
#include <system_error>

namespace zelk::tool {

void Output::flush() {
  const std::string pending = std::move(buffer_);
  buffer_.clear();
  errno = 0;
  const bool taken = std::fwrite(pending.data(), 1, pending.size(), file_) == pending.size();
  if (!taken || std::fflush(file_) != 0)
    throw std::system_error(errno, std::generic_category(), "cannot write the output");
}

void print_error(std::string_view line) {
  const std::string text = fmt::format("{}\n", line);
  std::fputs(text.c_str(), stderr);
}

}  // namespace zelk::tool
