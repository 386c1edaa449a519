#include "check/repair/judge.hpp"

#include <charconv>
#include <new>

#include "check/records/strict_reading.hpp"
#include "zelk/errors.h"

namespace zelk::check {

namespace {

/// The number in ", line N"; 0 when there is none.
std::uint32_t line_of(std::string_view message) {
  constexpr std::string_view kLine = ", line ";
  const std::size_t at = message.find(kLine);
  std::uint32_t line = 0;
  if (at != std::string_view::npos)
    std::from_chars(message.data() + at + kLine.size(), message.data() + message.size(), line);
  return line;
}

}  // namespace

Verdict judge(std::string_view text) {
  const std::size_t size_before = std::string_view(zelk_get_thread_error_text()).size();
  const StrictReading reading(text);
  const std::uint32_t number = reading.error();
  if (number == ZELK_ERR_MEMORY) throw std::bad_alloc();
  std::string_view lines = zelk_get_thread_error_text();
  lines.remove_prefix(size_before < lines.size() ? size_before : lines.size());
  while (!lines.empty() && lines.back() == '\n') lines.remove_suffix(1);
  const bool is_accepted = number == ZELK_OK;
  // Only where memory runs out does the reader refuse without a line.
  if (!is_accepted && lines.empty()) throw std::bad_alloc();
  // The refusal is the last line, the first note the first one.
  const std::size_t line_end = lines.find('\n');
  const std::size_t last = lines.rfind('\n');
  if (is_accepted) lines = lines.substr(0, line_end);
  if (!is_accepted && last != std::string_view::npos) lines.remove_prefix(last + 1);
  return {is_accepted, line_of(lines), std::string(lines), contents_of(reading.view())};
}

}  // namespace zelk::check
