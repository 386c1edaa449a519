/// \file
/// Error numbers, their texts, and the library's error texts.
///
/// A report becomes one message line: the number's text, ", line N" when the line is above 0, and
/// ", " with a detail when there is one. Each line is appended, followed by a line feed, to two
/// *error texts*: that of the process and that of the reporting thread. Aborting errors also raise
/// `ZelkException` (exception.hpp); warnings are only noted.
///
/// A line is the number of line feeds that were read before the fault was noticed: a fault in the
/// first line of a file has none.

#ifndef ZELK_ERRORS_H
#define ZELK_ERRORS_H

#include <stdint.h>

#include "zelk/export.h"

ZELK_EXTERN_C_BEGIN

/// Numbers of the errors that the C interface reports; any other number reads "Unknown error".
enum zelk_error_number {
  ZELK_OK = 0,
  ZELK_ERR_SYNTAX = 1,  ///< syntax error or overlong token; the detail says which
  ZELK_ERR_ERROR = 2,
  ZELK_ERR_FATAL = 3,
  ZELK_ERR_MDF = 4,
  ZELK_ERR_MDF_FATAL = 5,
  ZELK_ERR_CL_HELP = 6,
  ZELK_ERR_CL_OPTION = 7,
  ZELK_ERR_CL_SAME_FILE = 8,
  ZELK_ERR_CL_NO_FILE = 9,
  ZELK_ERR_CL_NO_PARAMETER = 10,
  ZELK_ERR_MODE = 11,          ///< illegal multiplexer indicator
  ZELK_ERR_SEGMENTATION = 12,  ///< illegal segmentation of a signal
  ZELK_ERR_WRITE = 13,         ///< the output file cannot be opened
  ZELK_ERR_MEANING = 14,       ///< well-formed, but without meaning at its place
  ZELK_ERR_FORMAT = 15,        ///< a text that the format cannot hold
  ZELK_ERR_NOT_FOUND = 16,     ///< the input file cannot be opened or read
  ZELK_ERR_CONVERTED_FORMAT = 17,
  ZELK_ERR_CONVERT = 18,
  ZELK_ERR_MULTIPLE = 19,
  ZELK_ERR_UNKNOWN_SYMBOL = 20,  ///< a message, node, signal, ... that nothing defines
  ZELK_ERR_UNDEFINED_ATTRIBUTE = 21,
  ZELK_ERR_LOG_FORMAT = 22,
  ZELK_ERR_LOG_NOT_FOUND = 23,
  ZELK_ERR_MEMORY = 24,
  ZELK_ERR_ENVVAR_TYPE = 25,
  ZELK_ERR_NEW_SYMBOL = 26,    ///< warning: a statement of an unknown kind was skipped
  ZELK_ERR_INVALID_CHAR = 27,  ///< a byte outside ASCII, or the end of the file, ends a name
  ZELK_ERR_UNKNOWN_CATEGORY = 28,
  ZELK_ERR_ENVVAR_DATA = 29,  ///< warning: data size for an unknown environment variable
  ZELK_ERR_SHORTENED = 30,    ///< saving refused, because names would be cut
  ZELK_ERR_CYCLIC_MULTIPLEXOR = 31
};

/// Capacity of a message line in bytes, terminating NUL included; longer lines are cut.
#define ZELK_ERROR_LINE_SIZE 1000

/// Formats one message line.
///
/// @param number  error number
/// @param line    line of the fault; 0 or less leaves the line part out
/// @param text    detail; null or empty leaves it out. Not a line that this function returned
/// @return the line without a line feed, in a buffer of the calling thread that its next report or
///         call overwrites
ZELK_API const char* zelk_format_error(uint32_t number, int32_t line, const char* text);

/// Formats a message line and appends it to the error texts. When `raise` is not 0, raises
/// `ZelkException` (a C++ exception: C hosts pass 0). Arguments as for `zelk_format_error`. An
/// error text that finds no memory for the line stays without it.
ZELK_API void zelk_report(uint32_t number, int32_t line, const char* text, int raise);

/// `zelk_report` without raising: a warning.
ZELK_API void zelk_note(uint32_t number, int32_t line, const char* text);

/// The message lines of all threads since the process's error text was last cleared, each ended by
/// a line feed.
///
/// @return never null; a copy, owned by the library and valid until the calling thread calls this
///         function again or ends. Without memory for the copy: what
///         `zelk_get_thread_error_text` returns
ZELK_API const char* zelk_get_error_text(void);

/// The message lines that the calling thread has reported since it last cleared the error text,
/// each ended by a line feed.
///
/// @return never null; owned by the library and valid until the calling thread reports or clears
///         again, or ends
ZELK_API const char* zelk_get_thread_error_text(void);

/// Empties the error texts of the process and of the calling thread. Those of other threads stay.
ZELK_API void zelk_clear_error_text(void);

ZELK_EXTERN_C_END

#endif
