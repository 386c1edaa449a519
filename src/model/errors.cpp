#include "model/errors.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <mutex>
#include <new>

#include "model/thread_state.hpp"
#include "platform/immortal.hpp"
#include "platform/module_entry.hpp"
#include "zelk/exception.hpp"

namespace zelk {
namespace {

constexpr std::array<const char*, 32> kTexts = {
    "",
    "",
    "error ",
    "fatal error ",
    "mdf error ",
    "mdf fatal error ",
    "commandline: use option -h for help",
    "commandline: illegal option -",
    "commandline: outputfile must be different to inputfile",
    "commandline: filename missing",
    "commandline: parameter for  missing\n",
    "database: illegal mode",
    "database: illegal segmentation description",
    "database: could not write",
    "database: syntax error",
    "database: format error",
    "database: not found",
    "database: format error in converted file",
    "database: could not generate converted file",
    "database: mumltiple definition of symbol ignored",
    "database: unknown symbol newly defined",
    "undefined attribute",
    "logfile: is not a log-file",
    "logfile: not found",
    "not enough memory",
    "type of environment variable not allowed",
    "new symbol not supported",
    "database: invalid char in symbol",
    "unknown category",
    "database: unknown environment variable of type data, type ignored",
    "Can't save database.\nSymbols e.g. object names will be shortend while writing the "
    "database.\nThis will lead to loss of data.",
    "Not allowed: Message contains cyclic dependencies for multiplexor signal (error-linenumber "
    "may ignored)",
};

const char* text_of(std::uint32_t number) {
  return number < kTexts.size() ? kTexts[number] : "Unknown error";
}

/// Formats behind the `used` characters of the message line, bounded by the room left; returns the
/// new length.
template <typename... Arguments>
std::size_t append_part(char (&line)[ZELK_ERROR_LINE_SIZE], std::size_t used, const char* format,
                        Arguments... arguments) {
  const int wanted = std::snprintf(line + used, sizeof line - used, format, arguments...);
  const std::size_t written = wanted > 0 ? static_cast<std::size_t>(wanted) : 0;
  return std::min(used + written, sizeof line - 1);
}

/// The message lines of all threads.
struct ProcessText {
  std::mutex mutex;
  std::string text;
};

ProcessText& process_text() {
  static Immortal<ProcessText> text;
  return text.get();
}

/// A line that finds no memory is dropped: the report itself must not fail.
void append_line(std::string& text, const char* line) noexcept {
  try {
    text.append(line).append("\n");
  } catch (const std::bad_alloc&) {
  }
}

void append_to_error_texts(const char* line) noexcept {
  ThreadState& thread = thread_state();
  if (!thread.is_shared) append_line(thread.errors.text, line);
  auto& [mutex, text] = process_text();
  const std::lock_guard lock(mutex);
  append_line(text, line);
}

}  // namespace

void platform::release_notes() noexcept {
  auto& [mutex, text] = process_text();
  const std::lock_guard lock(mutex);
  std::string().swap(text);
}

ErrorState& error_state() { return thread_state().errors; }

void zelk_read_error(std::uint32_t number, std::int32_t line, const char* text) {
  ErrorState& state = error_state();
  if (state.read_error_reported) return;
  state.read_error_reported = true;
  zelk_report(number, line, text, 1);
}

}  // namespace zelk

ZelkException::ZelkException(const char* message_line) noexcept : message_line_() {
  static_cast<void>(
      std::snprintf(message_line_, sizeof message_line_, "%s", message_line ? message_line : ""));
}

ZelkException::~ZelkException() = default;

const char* ZelkException::what() const noexcept { return message_line_; }

extern "C" {

const char* zelk_format_error(uint32_t number, int32_t line, const char* text) {
  auto& message_line = zelk::error_state().line;
  std::size_t used = zelk::append_part(message_line, 0, "%s", zelk::text_of(number));
  if (line > 0) used = zelk::append_part(message_line, used, ", line %d", static_cast<int>(line));
  if (text && *text) zelk::append_part(message_line, used, ", %s", text);
  return message_line;
}

void zelk_report(uint32_t number, int32_t line, const char* text, int raise) {
  const char* message_line = zelk_format_error(number, line, text);
  zelk::append_to_error_texts(message_line);
  zelk::error_state().last_number = number;
  if (raise) throw ZelkException(message_line);
}

void zelk_note(uint32_t number, int32_t line, const char* text) {
  zelk_report(number, line, text, 0);
}

const char* zelk_get_error_text(void) {
  zelk::ThreadState& thread = zelk::thread_state();
  if (thread.is_shared) return "";
  auto& [mutex, text] = zelk::process_text();
  const std::lock_guard lock(mutex);
  try {
    return (thread.errors.process_text = text).c_str();
  } catch (const std::bad_alloc&) {
    return thread.errors.text.c_str();
  }
}

const char* zelk_get_thread_error_text(void) { return zelk::error_state().text.c_str(); }

void zelk_clear_error_text(void) {
  zelk::error_state().text.clear();
  auto& [mutex, text] = zelk::process_text();
  const std::lock_guard lock(mutex);
  text.clear();
}

}  // extern "C"
