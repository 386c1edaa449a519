#include "python.hpp"

namespace zelk::python {

nb::str text_to_python(std::string_view text) {
  return checked<nb::str>(
      PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), "replace"));
}

nb::str text_to_python(std::string_view text, Encoding encoding) {
  return text_to_python(to_utf8(text, encoding));
}

nb::str path_to_python(std::string_view path) {
  return checked<nb::str>(
      PyUnicode_DecodeFSDefaultAndSize(path.data(), static_cast<Py_ssize_t>(path.size())));
}

std::string path_from_python(nb::handle path) {
  PyObject* bytes = nullptr;
  if (PyUnicode_FSConverter(path.ptr(), &bytes) == 0) nb::raise_python_error();
  const nb::object owner = nb::steal(bytes);
  return {PyBytes_AS_STRING(bytes), static_cast<std::size_t>(PyBytes_GET_SIZE(bytes))};
}

std::string_view text_from_python(nb::handle text) {
  Py_ssize_t size = 0;
  const char* const data = PyUnicode_AsUTF8AndSize(text.ptr(), &size);
  if (!data) nb::raise_python_error();
  return {data, static_cast<std::size_t>(size)};
}

std::string shown(nb::handle object) {
  constexpr std::size_t kLongest = 200;
  const nb::object text = checked(PyObject_ASCII(object.ptr()));
  std::string result(text_from_python(text));
  if (result.size() > kLongest) result.replace(kLongest, std::string::npos, "...");
  return result;
}

std::string shown(std::string_view text) { return shown(text_to_python(text)); }

bool has_no_number() {
  if (!PyErr_Occurred()) return false;
  if (PyErr_ExceptionMatches(PyExc_TypeError) == 0 &&
      PyErr_ExceptionMatches(PyExc_OverflowError) == 0) {
    nb::raise_python_error();
  }
  PyErr_Clear();
  return true;
}

nb::object findings_to_python(const std::vector<PlacedFinding>& findings) {
  nb::list list;
  if (!findings.empty()) {
    const nb::object type = nb::module_::import_("zelk._findings").attr("Finding");
    for (const PlacedFinding& finding : findings) {
      list.append(type(text_to_python(finding.severity), text_to_python(finding.rule),
                       text_to_python(finding.message), path_to_python(finding.path), finding.line,
                       finding.column));
    }
  }
  return nb::tuple(list);
}

ByteView::ByteView(nb::handle object, const std::string& what) {
  if (PyObject_GetBuffer(object.ptr(), &view_, PyBUF_CONTIG_RO) != 0) {
    PyErr_Clear();
    throw Failure(FailureKind::kArgument,
                  what + ": the data must be bytes, and is " + shown(object));
  }
  if (view_.itemsize == 1 && view_.ndim <= 1) return;
  PyBuffer_Release(&view_);
  throw Failure(FailureKind::kArgument,
                what + ": the data must be one row of bytes, and is " + shown(object));
}

}  // namespace zelk::python
