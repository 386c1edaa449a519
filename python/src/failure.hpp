/// \file
/// What goes wrong, on its way to an exception of Python.

#ifndef ZELK_PYTHON_FAILURE_HPP
#define ZELK_PYTHON_FAILURE_HPP

#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <vector>

#include "check/findings/finding.hpp"

namespace zelk::python {

/// The exceptions, in the order of their names in failure.cpp.
enum class FailureKind : std::uint8_t {
  kRead,
  kWrite,
  kLocked,
  kUnknownName,
  kDecode,
  kEncode,
  kEdit,
  kReadOnly,
  kDeleted,
  kArgument,
  kSystem,  ///< OSError or one of its subclasses, by `Failure::code`
};

/// A finding of a check, with its place as people count. Texts are in UTF-8.
struct PlacedFinding {
  std::string severity;
  std::string rule;
  std::string message;
  std::string path;
  std::uint32_t line = 1;
  std::uint32_t column = 1;
};

std::vector<PlacedFinding> placed(const check::Source& source, const check::Findings& findings);

/// Becomes an exception of Python. It refers to nothing of Python itself: what throws it need not
/// hold the lock of the interpreter.
struct Failure : std::exception {
  Failure(FailureKind failure, std::string text) : kind(failure), message(std::move(text)) {}
  /// About a file, and what is wrong with it.
  Failure(FailureKind failure, std::string text, std::string file,
          std::optional<std::uint32_t> in_line = {}, std::vector<PlacedFinding> found = {})
      : kind(failure),
        message(std::move(text)),
        path(std::move(file)),
        line(in_line),
        findings(std::move(found)) {}
  /// For `errno`, in an operation on a file.
  static Failure of_system(int code, const std::string& path);

  const char* what() const noexcept override { return message.c_str(); }

  FailureKind kind;
  std::string message;  ///< in UTF-8
  std::string path{};   ///< empty for none
  std::optional<std::uint32_t> line{};
  std::optional<std::uint32_t> column{};
  std::vector<PlacedFinding> findings{};
  int code = 0;
};

/// Lets Python see failures that C++ throws.
void register_failures();

}  // namespace zelk::python

#endif
