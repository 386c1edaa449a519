#include "failure.hpp"

#include <array>
#include <cerrno>
#include <utility>

#include "base/encoding.hpp"
#include "python.hpp"

namespace zelk::python {
namespace {

constexpr std::array kNames = {"ReadError",    "WriteError",   "LockedError", "UnknownNameError",
                               "DecodeError",  "EncodeError",  "EditError",   "ReadOnlyError",
                               "DeletedError", "ArgumentError"};

template <typename Value>
nb::object or_none(const std::optional<Value>& value) {
  return value ? nb::object(nb::int_(*value)) : nb::none();
}

void raise_system(const Failure& failure) {
  errno = failure.code;
  PyErr_SetFromErrnoWithFilenameObject(PyExc_OSError, path_to_python(failure.path).ptr());
}

void raise(const Failure& failure) {
  if (failure.kind == FailureKind::kSystem) return raise_system(failure);
  const nb::object type =
      nb::module_::import_("zelk._errors").attr(kNames.at(static_cast<std::size_t>(failure.kind)));
  const nb::object path =
      failure.path.empty() ? nb::none() : nb::object(path_to_python(failure.path));
  const nb::object error = type(text_to_python(failure.message), path, or_none(failure.line),
                                or_none(failure.column), findings_to_python(failure.findings));
  PyErr_SetObject(type.ptr(), error.ptr());
}

}  // namespace

std::vector<PlacedFinding> placed(const check::Source& source, const check::Findings& findings) {
  std::vector<PlacedFinding> result;
  for (const check::Finding& finding : findings.list) {
    const auto [line, column] = source.position(finding.span.begin);
    std::string text = to_utf8(finding.message, encoding_of(finding.message));
    if (!finding.cause.empty()) text += "; " + to_utf8(finding.cause, encoding_of(finding.cause));
    result.push_back({std::string(name_of(finding.severity)), std::string(finding.rule),
                      std::move(text), source.path_at(finding.span.begin), line, column});
  }
  return result;
}

Failure Failure::of_system(int code, const std::string& path) {
  Failure failure(FailureKind::kSystem, "");
  failure.code = code != 0 ? code : EIO;
  failure.path = path;
  return failure;
}

void register_failures() {
  nb::register_exception_translator([](const std::exception_ptr& caught, void*) {
    try {
      std::rethrow_exception(caught);
    } catch (const Failure& failure) {
      try {
        raise(failure);
      } catch (nb::python_error& error) {
        error.restore();
      }
    }
  });
}

}  // namespace zelk::python
