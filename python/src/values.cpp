#include "values.hpp"

#include <cmath>

#include "base/list.hpp"
#include "zelk/dbc.h"

namespace zelk::python {
namespace {

constexpr double kLargestWhole = 9007199254740992.0;  // 2^53

[[noreturn]] void refuse(FailureKind kind, const char* what, nb::handle value,
                         const std::string& reason) {
  throw Failure(kind, std::string(what) + " = " + shown(value) + ": " + reason);
}

}  // namespace

nb::object number_to_python(double number) {
  const bool is_whole = std::abs(number) <= kLargestWhole && number == std::floor(number);
  return checked(is_whole ? PyLong_FromDouble(number) : PyFloat_FromDouble(number));
}

nb::object text_or_none(std::string_view text, Encoding encoding) {
  return text.empty() ? nb::none() : nb::object(text_to_python(text, encoding));
}

nb::object node_names(const rxblk* links, Encoding encoding) {
  nb::list names;
  for (const rxblk& link : each(links))
    if (link.node) names.append(text_to_python(view(link.node->name), encoding));
  return names;
}

nb::object choices_to_python(const val* values, bool is_signed, Encoding encoding) {
  if (!values) return nb::none();
  const nb::object type = nb::module_::import_("zelk._choice").attr("Choice");
  nb::dict choices;
  for (const val& value : each(values)) {
    const nb::int_ number(is_signed ? std::int64_t{value.value}
                                    : std::int64_t{static_cast<std::uint32_t>(value.value)});
    if (!choices.contains(number))
      choices[number] = type(text_to_python(view(value.text), encoding), number);
  }
  return choices;
}

std::string text_to_record(nb::handle text, const char* what, Encoding encoding) {
  if (text.is_none()) return "";
  if (!PyUnicode_Check(text.ptr())) refuse(FailureKind::kArgument, what, text, "not a text");
  const std::string_view given = text_from_python(text);
  if (given.find('\0') != std::string_view::npos)
    refuse(FailureKind::kEdit, what, text, "a text of a database has no NUL characters");
  const std::optional<std::string> stored = from_utf8(given, encoding);
  if (!stored) {
    refuse(FailureKind::kEdit, what, text,
           "the database is in Windows-1252, which lacks some of the characters");
  }
  return *stored;
}

std::string inline_text_to_record(nb::handle text, const char* what, Encoding encoding) {
  std::string stored = text_to_record(text, what, encoding);
  if (stored.size() > ZELK_INLINE_NAME_MAX) {
    refuse(FailureKind::kEdit, what, text,
           "longer than " + std::to_string(ZELK_INLINE_NAME_MAX) + " bytes");
  }
  return stored;
}

std::string name_to_record(nb::handle name, bool is_node) {
  std::string stored = text_to_record(name, "name", Encoding::kUtf8);
  if (zelk_can_name_object(stored.c_str(), is_node ? 1 : 0) != 0) return stored;
  refuse(FailureKind::kEdit, "name", name,
         "a name has letters of ASCII, digits and _, no digit in front, and is no keyword");
}

std::int64_t whole_from_python(nb::handle number, const char* what, std::int64_t low,
                               std::int64_t high) {
  if (!PyIndex_Check(number.ptr()))
    refuse(FailureKind::kArgument, what, number, "not a whole number");
  const nb::object index = checked(PyNumber_Index(number.ptr()));
  int overflow = 0;
  const std::int64_t whole = PyLong_AsLongLongAndOverflow(index.ptr(), &overflow);
  if (overflow != 0 || whole < low || whole > high) {
    refuse(FailureKind::kEdit, what, number,
           "not from " + std::to_string(low) + " to " + std::to_string(high));
  }
  return whole;
}

double real_from_python(nb::handle number, const char* what) {
  const double real = PyUnicode_Check(number.ptr()) ? NAN : PyFloat_AsDouble(number.ptr());
  if (has_no_number() || PyUnicode_Check(number.ptr()))
    refuse(FailureKind::kArgument, what, number, "not a number");
  if (!std::isfinite(real)) refuse(FailureKind::kEdit, what, number, "not a finite number");
  return real;
}

}  // namespace zelk::python
