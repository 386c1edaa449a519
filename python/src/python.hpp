/// \file
/// What all bindings need: the binding library, and texts on their way to Python.

#ifndef ZELK_PYTHON_PYTHON_HPP
#define ZELK_PYTHON_PYTHON_HPP

#include <nanobind/nanobind.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "base/encoding.hpp"
#include "failure.hpp"

namespace nb = nanobind;

namespace zelk::python {

/// A text in UTF-8; what is broken in it becomes U+FFFD.
nb::str text_to_python(std::string_view text);
/// A text of a record.
nb::str text_to_python(std::string_view text, Encoding encoding);
/// A path in the system's encoding, as the module `os` gives it.
nb::str path_to_python(std::string_view path);
/// The path that a `str` or `os.PathLike` means, in the system's encoding.
///
/// @throws nb::python_error TypeError, and ValueError for a NUL character
std::string path_from_python(nb::handle path);
/// Texts of Python in UTF-8.
///
/// @throws nb::python_error for what is no `str`, or has half of a surrogate pair
std::string_view text_from_python(nb::handle text);
/// "'Speed'": how Python shows an object, for messages.
std::string shown(nb::handle object);
std::string shown(std::string_view text);
/// A tuple of `zelk.Finding`.
nb::object findings_to_python(const std::vector<PlacedFinding>& findings);

/// An object that a function of Python's interface returned, with one reference.
///
/// @throws nb::python_error for null
template <typename Object = nb::object>
Object checked(PyObject* object) {
  if (!object) nb::raise_python_error();
  return nb::steal<Object>(object);
}

/// Whether the last conversion to a number failed because there is none; forgets the error then.
///
/// @throws nb::python_error for what code of the value's own has raised
bool has_no_number();

/// The contiguous bytes of an object of Python, held as long as this lives.
class ByteView {
 public:
  /// @param what  for messages: what the bytes are for
  /// @throws Failure for what has no contiguous bytes
  ByteView(nb::handle object, const std::string& what);
  ~ByteView() { PyBuffer_Release(&view_); }
  ByteView(const ByteView&) = delete;
  ByteView& operator=(const ByteView&) = delete;

  const unsigned char* data() const { return static_cast<const unsigned char*>(view_.buf); }
  std::size_t size() const { return static_cast<std::size_t>(view_.len); }

 private:
  Py_buffer view_{};
};

// Each source binds its subject.

void bind_database(nb::module_& module);
void bind_edit(nb::module_& module);
void bind_messages(nb::module_& module);
void bind_nodes(nb::module_& module);
void bind_signals(nb::module_& module);
void bind_findings(nb::module_& module);
void bind_files(nb::module_& module);

}  // namespace zelk::python

#endif
