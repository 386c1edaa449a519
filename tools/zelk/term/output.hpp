/// \file
/// Checked standard output.

#ifndef ZELK_TOOL_TERM_OUTPUT_HPP
#define ZELK_TOOL_TERM_OUTPUT_HPP

#include <fmt/format.h>

#include <cstddef>
#include <cstdio>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

namespace zelk::tool {

/// In the place of a path: standard input, or standard output.
inline constexpr const char* kStandardStream = "-";

/// Standard output, line by line, buffered and checked: a full disk or a closed pipe must not pass
/// for success.
class Output {
 public:
  /// `file` stays open and must outlive the object.
  explicit Output(std::FILE* file) : file_(file) {}
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  /// One line at the current indentation; the line feed is added.
  /// @throws std::system_error when the text cannot be written
  template <typename... T>
  void line(fmt::format_string<T...> format, T&&... args) {
    buffer_.append(level_ * kIndentColumns, ' ');
    fmt::format_to(std::back_inserter(buffer_), format, std::forward<T>(args)...);
    end_line();
  }

  /// An empty line.
  void blank() { end_line(); }

  /// A text as it stands, without indentation.
  void raw(std::string_view text) { buffer_ += text; }

  /// A long text as it stands, handed to the system behind all that came before.
  /// @throws std::system_error as `flush`
  void write_through(std::string_view text);

  /// Hands everything to the system.
  /// @throws std::system_error when it does not take it; what is buffered is dropped
  void flush();

  /// Indents the lines written during its life by one step.
  class Indent {
   public:
    explicit Indent(Output& out) : out_(out) { ++out_.level_; }
    ~Indent() { --out_.level_; }
    Indent(const Indent&) = delete;
    Indent& operator=(const Indent&) = delete;

   private:
    Output& out_;
  };

 private:
  static constexpr std::size_t kIndentColumns = 2;
  static constexpr std::size_t kFlushBytes = 1 << 16;

  void hand_over(std::string_view text);

  void end_line() {
    buffer_ += '\n';
    if (buffer_.size() >= kFlushBytes) flush();
  }

  std::FILE* file_;
  std::string buffer_;
  std::size_t level_ = 0;
};

/// One line on standard error; a failure to write it is ignored, because nothing is left to
/// report it to. Takes no memory.
void print_error(std::string_view line);

}  // namespace zelk::tool

#endif
