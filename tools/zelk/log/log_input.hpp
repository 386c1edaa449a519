/// \file
/// Logs, block by block.

#ifndef ZELK_TOOL_LOG_LOG_INPUT_HPP
#define ZELK_TOOL_LOG_LOG_INPUT_HPP

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

namespace zelk::tool {

/// Reads a log as blocks of whole lines. The lines of a pipe are given out as they come.
class LogInput {
 public:
  /// @param path  none: standard input
  /// @throws std::system_error when the file cannot be opened
  explicit LogInput(const std::optional<std::string>& path);

  /// The next lines. Only the last line of the log may lack its line feed. Of a line that is
  /// longer than any frame takes, only the beginning is given out. After a `NotedStop` what has
  /// been read of a line is no line.
  ///
  /// @return false at the end
  /// @throws std::system_error when the log cannot be read
  bool next(std::string& block);

  /// Bytes of a log in a regular file.
  const std::optional<std::uint64_t>& size() const { return size_; }
  /// May be asked while another thread reads.
  std::uint64_t bytes_read() const { return bytes_read_; }
  /// What to call the log in a report.
  const std::string& name() const { return name_; }

 private:
  struct Closer {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
  };

  bool read_more(std::string& block);
  std::size_t read_into(char* buffer, std::size_t size) const;
  void drop_skipped(std::string& block, std::size_t from);

  std::string name_;
  std::unique_ptr<std::FILE, Closer> opened_;
  std::FILE* file_;
  std::optional<std::uint64_t> size_;
  std::atomic<std::uint64_t> bytes_read_ = 0;
  std::string rest_;       // the beginning of a line whose end has not been read
  bool skipping_ = false;  // inside a line that was too long
};

/// Looks for a frame among the first lines of the regular file `path`.
///
/// Anything else than a regular file is not touched: what is taken from a pipe cannot be read
/// again.
///
/// @return why the file is no log, for standard error; nothing when there is a frame
/// @throws std::system_error when the file cannot be read
std::optional<std::string> why_no_log(const std::string& path);

}  // namespace zelk::tool

#endif
