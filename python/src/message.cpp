// The class Message of Python.

#include <set>

#include "base/frame_id.hpp"
#include "base/j1939.hpp"
#include "base/list.hpp"
#include "base/multiplexing.hpp"
#include "check/objects/attribute_words.hpp"
#include "check/objects/record_words.hpp"
#include "check/picture/message_picture.hpp"
#include "codec.hpp"
#include "collection.hpp"
#include "objects.hpp"

namespace zelk::python {
namespace {

constexpr std::int64_t kLongestMessage = 32767;

nb::object signals_of(const Message& message) {
  Collection<sigblk> signals("signal");
  signals.add_all(message.model(), message.get().signals);
  return nb::cast(std::move(signals));
}

bool is_extended(const Message& message) { return (message.get().id & ZELK_ID_EXTENDED) != 0; }

/// The parameter group that the identifier has, if the message is one of J1939.
nb::object pgn_of(const Message& message) {
  const msgblk& record = message.get();
  const Model& model = *message.model();
  if (!is_extended(message)) return nb::none();
  if (model.HasJ1939GroupNumbers()) return nb::int_(record.id & j1939::kLargestGroupNumber);
  return nb::int_(j1939::frame_of_id(record.id).group.key);
}

/// The text that the message has for an attribute, its own or the default.
std::string_view attribute_text_of(const Message& message, std::string_view name) {
  const attr_def* const definition =
      find_first(message.model()->attr_defs, [&](const attr_def& candidate) {
        return candidate.object_type == ZELK_OBJ_MESSAGE && view(candidate.name) == name;
      });
  return check::effective_text(message.get().attrs, definition);
}

bool is_fd(const Message& message) {
  return message.get().dlc > 8 ||
         attribute_text_of(message, j1939::kFrameFormatAttribute).ends_with("FD");
}

nb::object cycle_time_of(const Message& message) {
  const std::optional<double> time = attribute_number(holder_of(message), "GenMsgCycleTime");
  return time && *time != 0 ? number_to_python(*time) : nb::none();
}

nb::object senders_of(const Message& message) {
  const msgblk& record = message.get();
  nb::list names;
  if (record.transmitter)
    names.append(text_to_python(view(record.transmitter->name), message.model()->encoding));
  for (const rxblk& link : each(record.tx_nodes)) {
    if (link.node && link.node != record.transmitter)
      names.append(text_to_python(view(link.node->name), message.model()->encoding));
  }
  return nb::tuple(names);
}

nb::object receivers_of(const Message& message) {
  nb::dict names;  // keeps the order
  for (const sigblk& signal : each(message.get().signals)) {
    for (const rxblk& link : each(signal.receivers)) {
      if (link.node)
        names[text_to_python(view(link.node->name), message.model()->encoding)] = nb::none();
    }
  }
  return nb::tuple(names.keys());
}

nb::object groups_of(const Message& message) {
  nb::dict groups;
  const Encoding encoding = message.model()->encoding;
  for (const siggroupblk& group : each(message.get().siggroups)) {
    nb::list names;
    for (const siglistblk& member : each(group.signals))
      names.append(text_to_python(view(member.signal->name), encoding));
    groups[text_to_python(view(group.name), encoding)] = nb::tuple(names);
  }
  return groups;
}

nb::object decode(const Message& message, nb::handle data, bool decode_choices, bool scaling,
                  bool allow_truncated) {
  return codec_of(message.model(), message.get())
      ->decode(data, {decode_choices, scaling, allow_truncated});
}

nb::object encode(const Message& message, nb::handle values, bool scaling, bool padding,
                  bool strict) {
  return codec_of(message.model(), message.get())->encode(values, {scaling, padding, strict});
}

std::string svg(const Message& message) {
  return check::message_picture(message.get(), message.model()->encoding);
}

/// A picture of its own document: neither its style nor any text in it can touch the page.
nb::object repr_html(const Message& message) {
  const std::string picture = svg(message);
  const nb::object bytes =
      checked(PyBytes_FromStringAndSize(picture.data(), static_cast<Py_ssize_t>(picture.size())));
  const nb::object encoded = nb::module_::import_("base64").attr("b64encode")(bytes);
  const nb::object name = nb::module_::import_("html").attr("escape")(name_of(message));
  return nb::str(
             "<img alt=\"Bit layout of {}\" style=\"max-width: 100%\" "
             "src=\"data:image/svg+xml;base64,{}\">")
      .format(name, encoded.attr("decode")("ascii"));
}

nb::str repr(const Message& message) {
  const msgblk& record = message.get();
  const std::size_t signals = each(record.signals).size();
  return text_to_python("<zelk.Message " + to_utf8(view(record.name), message.model()->encoding) +
                        " " + check::padded_id(record.id) + ", " + std::to_string(record.dlc) +
                        " bytes, " + std::to_string(signals) +
                        (signals == 1 ? " signal>" : " signals>"));
}

// --- Changes ---

void set_name(const Message& message, nb::handle name) {
  const auto changing = message.change();
  msgblk& record = changing.record;
  const std::string stored = name_to_record(name);
  const msgblk* const other = find_name(message.model()->messages, stored.c_str());
  if (other && other != &record)
    throw Failure(FailureKind::kEdit, "another message is named " + shown(name));
  editor_of(*message.model()).SetName(record, stored.c_str());
}

void set_frame_id(const Message& message, nb::handle id) {
  const auto changing = message.change();
  msgblk& record = changing.record;
  const std::uint32_t format = record.id & ZELK_ID_EXTENDED;
  const std::int64_t largest = format != 0 ? kLargestExtendedId : kLargestStandardId;
  record.id = static_cast<std::uint32_t>(whole_from_python(id, "frame_id", 0, largest)) | format;
}

void set_length(const Message& message, nb::handle length) {
  const auto changing = message.change();
  msgblk& record = changing.record;
  record.dlc = static_cast<std::uint16_t>(whole_from_python(length, "length", 0, kLongestMessage));
}

symblk& node_named(const Model& model, nb::handle name) {
  const std::string wanted = text_to_record(name, "node", model.encoding);
  symblk* const node = find_name(model.nodes, wanted.c_str());
  if (!node) throw Failure(FailureKind::kUnknownName, "no node is named " + shown(name));
  return *node;
}

std::vector<symblk*> nodes_named(const Model& model, nb::handle names) {
  if (PyUnicode_Check(names.ptr())) return {&node_named(model, names)};
  std::vector<symblk*> nodes;
  const nb::object iterator = checked(PyObject_GetIter(names.ptr()));
  while (PyObject* const item = PyIter_Next(iterator.ptr()))
    nodes.push_back(&node_named(model, nb::steal(item)));
  if (PyErr_Occurred()) nb::raise_python_error();
  return nodes;
}

void set_senders(const Message& message, nb::handle names) {
  const auto changing = message.change();
  msgblk& record = changing.record;
  EditManager& editor = editor_of(*message.model());
  const std::vector<symblk*> nodes = nodes_named(*message.model(), names);
  while (record.tx_nodes && record.tx_nodes->node)
    editor.RemoveTransmitter(record, *record.tx_nodes->node);
  record.transmitter = nullptr;
  for (const symblk* const node : nodes) editor.AddTransmitter(record, *node);
}

Signal add_signal(const Message& message, nb::handle name, nb::handle start, nb::handle length) {
  const auto changing = message.change();
  msgblk& record = changing.record;
  const std::string stored = name_to_record(name);
  if (find_name(record.signals, stored.c_str()))
    throw Failure(FailureKind::kEdit, "another signal of the message is named " + shown(name));
  const std::int64_t bits = whole_from_python(length, "length", 1, kLongestMessage);
  const std::int64_t first = whole_from_python(start, "start", 0, kLongestMessage);
  EditManager& editor = editor_of(*message.model());
  sigblk* const signal = editor.CreateSignal(record, UINT32_MAX);
  if (!signal) throw std::bad_alloc();
  message.model()->enter(signal);
  editor.SetName(*signal, stored.c_str());
  signal->length = static_cast<std::uint16_t>(bits);
  signal->start_bit = static_cast<std::uint16_t>(first);
  return message.to(*signal);
}

void bind_properties(nb::class_<Message>& message) {
  message
      .def_prop_rw("name", name_of<msgblk>, set_name, nb::arg("name").none(),
                   nb::for_getter(nb::sig("def name(self) -> str")),
                   nb::for_setter(nb::sig("def name(self, name: str, /) -> None")), "Its name.")
      .def_prop_rw(
          "frame_id", [](const Message& m) { return bare_id(m.get().id); }, set_frame_id,
          nb::arg("id").none(), nb::for_setter(nb::sig("def frame_id(self, id: int, /) -> None")),
          "Identifier of 11 bits, or of 29 bits in an extended frame.")
      .def_prop_ro("is_extended_frame", is_extended, "Whether the identifier has 29 bits.")
      .def_prop_ro("is_fd", is_fd,
                   "Whether it is a frame of CAN FD: by its length, or the attribute VFrameFormat.")
      .def_prop_rw(
          "length", [](const Message& m) { return m.get().dlc; }, set_length,
          nb::arg("length").none(),
          nb::for_setter(nb::sig("def length(self, length: int, /) -> None")), "Bytes of data.")
      .def_prop_ro("pgn", pgn_of, nb::sig("def pgn(self) -> int | None"),
                   "J1939 parameter group number of an extended identifier, else None.")
      .def_prop_ro("cycle_time", cycle_time_of,
                   nb::sig("def cycle_time(self) -> int | float | None"),
                   "Milliseconds between two frames (attribute GenMsgCycleTime); None without.")
      .def_prop_rw("senders", senders_of, set_senders, nb::arg("names").none(),
                   nb::for_getter(nb::sig("def senders(self) -> tuple[str, ...]")),
                   nb::for_setter(nb::sig(
                       "def senders(self, names: collections.abc.Iterable[str], /) -> None")),
                   "Names of the nodes that send it.")
      .def_prop_ro("receivers", receivers_of, nb::sig("def receivers(self) -> tuple[str, ...]"),
                   "Names of the nodes that receive any of its signals.")
      .def_prop_ro("signals", signals_of, nb::sig("def signals(self) -> Signals"),
                   "Its signals, in the order of the file.")
      .def_prop_ro("signal_groups", groups_of,
                   nb::sig("def signal_groups(self) -> dict[str, tuple[str, ...]]"),
                   "Names of signals by the names of their groups.");
}

}  // namespace

void bind_messages(nb::module_& module) {
  nb::class_<Message> message(module, "Message", "A kind of frames, told by its identifier.");
  bind_properties(message);
  bind_object<msgblk>(message);
  message
      .def("decode", decode, nb::arg("data").none(), nb::arg("decode_choices") = true,
           nb::arg("scaling") = true, nb::arg("allow_truncated") = false,
           nb::sig("def decode(self, data: Buffer, decode_choices: bool = True, "
                   "scaling: bool = True, allow_truncated: bool = False) -> dict[str, int | float "
                   "| Choice]"),
           "Values of the signals in a frame, as `Database.decode_message`.")
      .def("encode", encode, nb::arg("values").none(), nb::arg("scaling") = true,
           nb::arg("padding") = false, nb::arg("strict") = true,
           nb::sig("def encode(self, values: collections.abc.Mapping[str, int | float | str], "
                   "scaling: bool = True, padding: bool = False, strict: bool = True) -> bytes"),
           "The frame that has these values, as `Database.encode_message`.")
      .def("add_signal", add_signal, nb::arg("name").none(), nb::arg("start").none(),
           nb::arg("length").none(),
           nb::sig("def add_signal(self, name: str, start: int, length: int) -> Signal"),
           "Add an unsigned Intel signal within an edit; its properties can be set then.")
      .def(
          "svg", [](const Message& m) { return text_to_python(svg(m)); },
          "The bit layout as a picture: an SVG document.")
      .def("_repr_html_", repr_html)
      .def("__repr__", repr);
  bind_collection<msgblk>(module, "Messages", "Message", "Messages in their order, also by name.");
}

std::vector<symblk*> nodes_of(const Model& model, nb::handle names) {
  return nodes_named(model, names);
}

}  // namespace zelk::python
