// The classes Node and EnvironmentVariable of Python.

#include "base/list.hpp"
#include "check/objects/record_words.hpp"
#include "collection.hpp"
#include "objects.hpp"

namespace zelk::python {
namespace {

template <typename Record, bool kIsNode>
void set_name(const Ref<Record>& object, nb::handle name) {
  const auto changing = object.change();
  Record& record = changing.record;
  const std::string stored = name_to_record(name, kIsNode);
  const Record* head = nullptr;
  if constexpr (kIsNode) {
    head = object.model()->nodes;
  } else {
    head = object.model()->env_vars;
  }
  const Record* const other = find_name(head, stored.c_str());
  if (other && other != &record)
    throw Failure(FailureKind::kEdit, "another object is named " + shown(name));
  editor_of(*object.model()).SetName(record, stored.c_str());
}

template <double env_var_blk::*kMember>
nb::object number_of(const Variable& variable) {
  return number_to_python(variable.get().*kMember);
}

template <typename Record, bool kIsNode>
void bind_named(nb::class_<Ref<Record>>& bound, const char* type) {
  bound
      .def_prop_rw("name", name_of<Record>, set_name<Record, kIsNode>, nb::arg("name").none(),
                   nb::for_getter(nb::sig("def name(self) -> str")),
                   nb::for_setter(nb::sig("def name(self, name: str, /) -> None")), "Its name.")
      .def("__repr__", [type](const Ref<Record>& object) {
        return text_to_python(std::string("<zelk.") + type + " " +
                              to_utf8(view(object.get().name), object.model()->encoding) + ">");
      });
  bind_object<Record>(bound);
}

}  // namespace

void bind_nodes(nb::module_& module) {
  nb::class_<Node> node(module, "Node", "A control unit.");
  bind_named<symblk, true>(node, "Node");
  bind_collection<symblk>(module, "Nodes", "Node", "Nodes in their order, also by name.");
  nb::class_<Variable> variable(module, "EnvironmentVariable",
                                "A value outside the frames, for simulations.");
  bind_named<env_var_blk, false>(variable, "EnvironmentVariable");
  variable
      .def_prop_ro(
          "type",
          [](const Variable& v) { return text_to_python(check::env_var_type(v.get().type)); },
          "\"integer\", \"float\", \"string\" or \"data\".")
      .def_prop_ro("minimum", number_of<&env_var_blk::minimum>,
                   nb::sig("def minimum(self) -> int | float"), "Smallest value.")
      .def_prop_ro("maximum", number_of<&env_var_blk::maximum>,
                   nb::sig("def maximum(self) -> int | float"), "Largest value.")
      .def_prop_ro("initial", number_of<&env_var_blk::initial>,
                   nb::sig("def initial(self) -> int | float"), "Value at the start.")
      .def_prop_ro(
          "unit",
          [](const Variable& v) { return text_or_none(view(v.get().unit), v.model()->encoding); },
          nb::sig("def unit(self) -> str | None"), "Unit, or None.");
  bind_collection<env_var_blk>(module, "EnvironmentVariables", "EnvironmentVariable",
                               "Environment variables in their order, also by name.");
}

}  // namespace zelk::python
