/// \file
/// State of error reporting, and the reader's way of reporting.

#ifndef ZELK_MODEL_ERRORS_HPP
#define ZELK_MODEL_ERRORS_HPP

#include <cstdint>
#include <string>

#include "zelk/errors.h"

namespace zelk {

/// The state of one thread.
struct ErrorState {
  std::string text;                      ///< the thread's message lines, each ended by a line feed
  std::string process_text;              ///< the lines of all threads, as this one saw them last
  char line[ZELK_ERROR_LINE_SIZE] = "";  ///< the last message line
  std::uint32_t last_number =
      ZELK_OK;                       ///< number of the last report, for callers that cannot catch
  bool read_error_reported = false;  ///< an error of the current (or last) read has been reported
};

/// The state of the calling thread.
ErrorState& error_state();

/// Reports an aborting error of the reader. Raises `ZelkException`, unless an error of this read
/// was reported before. Arguments as for `zelk_format_error`.
void zelk_read_error(std::uint32_t number, std::int32_t line, const char* text);

/// The line argument of a report that has no line.
inline constexpr std::int32_t kNoLine = -1;

}  // namespace zelk

#endif
