/// \file
/// The exception by which the C interface abandons an operation.

#ifndef ZELK_EXCEPTION_HPP
#define ZELK_EXCEPTION_HPP

#include <exception>

#include "zelk/errors.h"
#include "zelk/export.h"

/// Raised by every aborting error of the C interface, after its message line has entered the error
/// text.
///
/// It does not carry the error number; `zelk_try_read` (dbc.h) returns it. Copying never fails.
class ZELK_API ZelkException : public std::exception {
 public:
  /// @param message_line  the formatted line; copied, cut to `ZELK_ERROR_LINE_SIZE` - 1 characters;
  /// null reads as empty
  explicit ZelkException(const char* message_line) noexcept;
  ZelkException(const ZelkException&) noexcept = default;
  ZelkException& operator=(const ZelkException&) noexcept = default;
  ~ZelkException() override;

  /// The message line, without a line feed.
  const char* what() const noexcept override;

 private:
  char message_line_[ZELK_ERROR_LINE_SIZE];
};

#endif
