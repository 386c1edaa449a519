// The classes of objects in a database: Message, Signal, Node, and sequences of them.

#include "base/frame_id.hpp"
#include "base/list.hpp"
#include "base/signal_bits.hpp"
#include "check/objects/record_words.hpp"
#include "collection.hpp"
#include "database.hpp"
#include "model.hpp"
#include "python.hpp"

namespace zelk::python {
namespace {

template <typename Object>
nb::str name_of(const Object& object) {
  return text_to_python(view(object.get().name), object.model()->encoding);
}

nb::object signals_of(const Message& message) {
  Collection<sigblk> signals("signal");
  signals.add_all(message.model(), message.get().signals);
  return nb::cast(std::move(signals));
}

std::uint32_t frame_id_of(const Message& message) { return bare_id(message.get().id); }

template <typename Object, typename Class>
void bind_identity(Class& bound) {
  bound
      .def(
          "__eq__",
          [](const Object& object, nb::handle other) {
            return nb::isinstance<Object>(other) && object == nb::cast<const Object&>(other);
          },
          nb::arg("other").none())
      .def("__hash__", [](const Object& object) { return object.hash(); });
}

}  // namespace

void bind_objects(nb::module_& module) {
  nb::class_<Node> node(module, "Node", "A control unit.");
  node.def_prop_ro("name", name_of<Node>, nb::sig("def name(self) -> str"));
  bind_identity<Node>(node);
  nb::class_<Signal> signal(module, "Signal", "A value in the frames of a message.");
  signal.def_prop_ro("name", name_of<Signal>, nb::sig("def name(self) -> str"));
  bind_identity<Signal>(signal);
  nb::class_<Message> message(module, "Message", "A kind of frames.");
  message.def_prop_ro("name", name_of<Message>, nb::sig("def name(self) -> str"))
      .def_prop_ro("frame_id", frame_id_of)
      .def_prop_ro("length", [](const Message& m) { return m.get().dlc; })
      .def_prop_ro("signals", signals_of, nb::sig("def signals(self) -> Signals"));
  bind_identity<Message>(message);
  bind_collection<msgblk>(module, "Messages", "Messages in their order, also by name.");
  bind_collection<sigblk>(module, "Signals", "Signals in their order, also by name.");
  bind_collection<symblk>(module, "Nodes", "Nodes in their order, also by name.");
}

}  // namespace zelk::python
