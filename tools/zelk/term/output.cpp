#include "term/output.hpp"

#include <cerrno>
#include <system_error>

namespace zelk::tool {

void Output::hand_over(std::string_view text) {
  errno = 0;
  const bool taken = text.empty() || std::fwrite(text.data(), 1, text.size(), file_) == text.size();
  if (!taken || std::fflush(file_) != 0)
    throw std::system_error(errno, std::generic_category(), "cannot write the output");
}

void Output::flush() {
  const std::string pending = std::move(buffer_);
  buffer_.clear();
  hand_over(pending);
}

void Output::write_through(std::string_view text) {
  if (!buffer_.empty()) flush();
  hand_over(text);
}

void print_error(std::string_view line) {
  static_cast<void>(std::fwrite(line.data(), 1, line.size(), stderr));
  static_cast<void>(std::fputc('\n', stderr));
}

}  // namespace zelk::tool
