/// \file
/// What the classes of objects have in common.

#ifndef ZELK_PYTHON_OBJECTS_HPP
#define ZELK_PYTHON_OBJECTS_HPP

#include <string>

#include "base/text_view.hpp"
#include "edit.hpp"
#include "model.hpp"
#include "python.hpp"
#include "values.hpp"

namespace zelk::python {

template <typename Record>
inline constexpr zelk_obj_t kObjectType = ZELK_OBJ_NETWORK;
template <>
inline constexpr zelk_obj_t kObjectType<symblk> = ZELK_OBJ_NODE;
template <>
inline constexpr zelk_obj_t kObjectType<msgblk> = ZELK_OBJ_MESSAGE;
template <>
inline constexpr zelk_obj_t kObjectType<sigblk> = ZELK_OBJ_SIGNAL;
template <>
inline constexpr zelk_obj_t kObjectType<env_var_blk> = ZELK_OBJ_ENVVAR;

template <typename Record>
AttributeHolder holder_of(const Ref<Record>& object) {
  return {object.model(), object.get().attrs, kObjectType<Record>};
}

template <typename Record>
nb::str name_of(const Ref<Record>& object) {
  return text_to_python(view(object.get().name), object.model()->encoding);
}

template <typename Record>
nb::object comment_of(const Ref<Record>& object) {
  return text_or_none(view(object.get().comment), object.model()->encoding);
}

template <typename Record>
nb::object attributes_of(nb::handle_t<Ref<Record>> self) {
  return nb::module_::import_("zelk._attributes").attr("Attributes")(self);
}

template <typename Record>
void set_comment(const Ref<Record>& object, nb::handle text) {
  const auto changing = object.change();
  Record& record = changing.record;
  const std::string stored = text_to_record(text, "comment", object.model()->encoding);
  editor_of(*object.model()).SetComment(record, stored.empty() ? nullptr : stored.c_str());
}

template <typename Record>
void set_attribute(const Ref<Record>& object, nb::handle name, nb::handle value) {
  const auto changing = object.change();
  Record& record = changing.record;
  const Model& model = *object.model();
  const attr_def& definition = attribute_definition(model, kObjectType<Record>, name);
  std::string text;
  const zelk_attr_value_t stored = attribute_from_python(model, definition, value, text);
  EditManager& editor = editor_of(model);
  editor.SetAttrValue(record, definition.name, stored, editor.db());
}

template <typename Record>
void reset_attribute(const Ref<Record>& object, nb::handle name) {
  const auto changing = object.change();
  Record& record = changing.record;
  const Model& model = *object.model();
  editor_of(model).ResetAttrValue(record,
                                  attribute_definition(model, kObjectType<Record>, name).name);
}

/// The nodes with these names.
/// @throws Failure, nb::python_error
std::vector<symblk*> nodes_of(const Model& model, nb::handle names);

/// Binds what changes a database.
void bind_changes(nb::class_<Database>& database);

/// What all classes of objects have: equality, name, comment and attributes.
template <typename Record, typename Class>
void bind_object(Class& bound) {
  using Object = Ref<Record>;
  bound
      .def(
          "__eq__",
          [](const Object& object, nb::handle other) {
            return nb::isinstance<Object>(other) && object == nb::cast<const Object&>(other);
          },
          nb::arg("other").none())
      .def("__hash__", [](const Object& object) { return object.hash(); })
      .def_prop_rw("comment", comment_of<Record>, set_comment<Record>, nb::arg("text").none(),
                   nb::for_getter(nb::sig("def comment(self) -> str | None")),
                   nb::for_setter(nb::sig("def comment(self, text: str | None, /) -> None")),
                   "Text for people, or None.")
      .def_prop_ro("attributes", attributes_of<Record>,
                   nb::sig("def attributes(self) -> Attributes"),
                   "Values of all attributes that are defined for this kind of objects: the "
                   "object's own, or else the defaults.")
      .def(
          "get_attributes",
          [](const Object& object) { return attributes_to_python(holder_of(object)); },
          nb::sig("def get_attributes(self) -> dict[str, int | float | str]"),
          "The attributes as a dictionary of its own.")
      .def("set_attribute", set_attribute<Record>, nb::arg("name").none(), nb::arg("value").none(),
           nb::sig("def set_attribute(self, name: str, value: int | float | str) -> None"),
           "Give the object a value of its own, within an edit.")
      .def("reset_attribute", reset_attribute<Record>, nb::arg("name").none(),
           nb::sig("def reset_attribute(self, name: str) -> None"),
           "Take the object's own value away, within an edit: the default applies again.");
}

}  // namespace zelk::python

#endif
