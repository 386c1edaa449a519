/// \file
/// Fields of records as values of Python, and back.

#ifndef ZELK_PYTHON_VALUES_HPP
#define ZELK_PYTHON_VALUES_HPP

#include <cstdint>
#include <string>

#include "model.hpp"
#include "python.hpp"

namespace zelk::python {

/// An `int` for a whole number, else a `float`.
nb::object number_to_python(double number);
/// None for no text and an empty one.
nb::object text_or_none(std::string_view text, Encoding encoding);
/// The names of linked nodes, as a list; null links are left out.
nb::object node_names(const rxblk* links, Encoding encoding);
/// A dictionary from raw values to `Choice`; None without any.
///
/// @param is_signed  whether the raw values are; else they are those of 32 bits without sign
nb::object choices_to_python(const val* values, bool is_signed, Encoding encoding);

// What is no such value is refused with the name of the property.

/// A text in the encoding of the records; None is the empty one.
/// @throws Failure
std::string text_to_record(nb::handle text, const char* what, Encoding encoding);
/// A text of at most `ZELK_INLINE_NAME_MAX` characters.
/// @throws Failure
std::string inline_text_to_record(nb::handle text, const char* what, Encoding encoding);
/// A name that an object of a file can have.
/// @throws Failure
std::string name_to_record(nb::handle name, bool is_node = false);
/// @throws Failure
std::int64_t whole_from_python(nb::handle number, const char* what, std::int64_t low,
                               std::int64_t high);
/// A finite number.
/// @throws Failure
double real_from_python(nb::handle number, const char* what);

// --- Objects with attributes ---

/// What has attribute values: `attrs` is the list, `type` the kind of object.
struct AttributeHolder {
  std::shared_ptr<Model> model;
  const attr* values;
  zelk_obj_t type;
};

/// A dictionary of all attributes that are defined for the kind of object: each with the object's
/// own value, or else the default.
nb::object attributes_to_python(const AttributeHolder& holder);
/// The number that the object has for an attribute, its own or the default; none when it has no
/// such attribute, or that is no number.
std::optional<double> attribute_number(const AttributeHolder& holder, std::string_view name);
/// The definition for this kind of objects.
/// @throws Failure when there is none
const attr_def& attribute_definition(const Model& model, zelk_obj_t type, nb::handle name);
/// A value for an attribute; `text` receives the text of a STRING, to which the value may point.
/// @throws Failure when the attribute cannot have the value
zelk_attr_value_t attribute_from_python(const Model& model, const attr_def& definition,
                                        nb::handle value, std::string& text);

}  // namespace zelk::python

#endif
