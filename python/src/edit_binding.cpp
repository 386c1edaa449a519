// Changes of a database in Python.

#include "base/frame_id.hpp"
#include "base/list.hpp"
#include "edit.hpp"
#include "objects.hpp"

namespace zelk::python {
namespace {

constexpr std::int64_t kLongestMessage = 32767;

/// The model of an edit.
Model& changing(const Database& database) {
  Model& model = *database.members().front().model;
  if (!model.is_editable()) {
    throw Failure(FailureKind::kReadOnly,
                  "databases are changed within an edit alone: with db.edit() as edit: ...");
  }
  return model;
}

Node add_node(const Database& database, nb::handle name) {
  constexpr bool kIsNode = true;
  Model& model = changing(database);
  const std::string stored = name_to_record(name, kIsNode);
  if (find_name(model.nodes, stored.c_str()))
    throw Failure(FailureKind::kEdit, "another node is named " + shown(name));
  EditManager& editor = editor_of(model);
  symblk* const node = editor.CreateNode(editor.db(), UINT32_MAX);
  if (!node) throw std::bad_alloc();
  model.enter(node);
  editor.SetName(*node, stored.c_str());
  return {model.shared_from_this(), *node};
}

Message add_message(const Database& database, nb::handle name, nb::handle frame_id,
                    nb::handle length, bool is_extended_frame) {
  Model& model = changing(database);
  const std::string stored = name_to_record(name);
  if (find_name(model.messages, stored.c_str()))
    throw Failure(FailureKind::kEdit, "another message is named " + shown(name));
  const std::int64_t largest = is_extended_frame ? kLargestExtendedId : kLargestStandardId;
  const auto number =
      static_cast<std::uint32_t>(whole_from_python(frame_id, "frame_id", 0, largest));
  const std::uint32_t id = number | (is_extended_frame ? ZELK_ID_EXTENDED : 0);
  if (find_first(model.messages, [id](const msgblk& other) { return other.id == id; }))
    throw Failure(FailureKind::kEdit, "another message has the identifier " + shown_id(id));
  const std::int64_t bytes = whole_from_python(length, "length", 0, kLongestMessage);
  EditManager& editor = editor_of(model);
  msgblk* const message = editor.CreateMessage(editor.db(), UINT32_MAX);
  if (!message) throw std::bad_alloc();
  model.enter(message);
  editor.SetName(*message, stored.c_str());
  message->id = id;
  message->dlc = static_cast<std::uint16_t>(bytes);
  return {model.shared_from_this(), *message};
}

template <typename Record>
Record* own_record(Model& model, nb::handle object) {
  if (!nb::isinstance<Ref<Record>>(object)) return nullptr;
  const auto& wanted = nb::cast<const Ref<Record>&>(object);
  if (wanted.model().get() != &model) {
    throw Failure(FailureKind::kEdit,
                  shown(object) + " is not of this edit: take it from the database of the edit");
  }
  return &wanted.change().record;
}

void remove(const Database& database, nb::handle object) {
  Model& model = changing(database);
  model.check_unused();
  EditManager& editor = editor_of(model);
  if (msgblk* const message = own_record<msgblk>(model, object)) {
    for (const sigblk& signal : each(message->signals)) model.forget(&signal);
    model.forget(message);
    return editor.DeleteMessage(*message, editor.db());
  }
  if (sigblk* const signal = own_record<sigblk>(model, object)) {
    model.forget(signal);
    return editor.DeleteSignal(*signal, editor.db());
  }
  if (symblk* const node = own_record<symblk>(model, object)) {
    model.forget(node);
    return editor.DeleteNode(*node, editor.db());
  }
  if (env_var_blk* const variable = own_record<env_var_blk>(model, object)) {
    model.forget(variable);
    return editor.DeleteEnvvar(*variable, editor.db());
  }
  throw Failure(FailureKind::kArgument, shown(object) + " is no object that can be deleted");
}

void set_database_comment(const Database& database, nb::handle text) {
  const Model& model = changing(database);
  const std::string stored = text_to_record(text, "comment", model.encoding);
  EditManager& editor = editor_of(model);
  editor.SetDatabaseComment(editor.db(), stored.empty() ? nullptr : stored.c_str());
}

void set_version(const Database& database, nb::handle text) {
  const Model& model = changing(database);
  const std::string stored = text_to_record(text, "version", model.encoding);
  EditManager& editor = editor_of(model);
  editor.SetUserData(editor.db(), stored.c_str());
}

void set_network_attribute(const Database& database, nb::handle name, nb::handle value) {
  const Model& model = changing(database);
  const attr_def& definition = attribute_definition(model, ZELK_OBJ_NETWORK, name);
  std::string text;
  const zelk_attr_value_t stored = attribute_from_python(model, definition, value, text);
  EditManager& editor = editor_of(model);
  editor.SetAttrValue(editor.db(), definition.name, stored);
}

void reset_network_attribute(const Database& database, nb::handle name) {
  const Model& model = changing(database);
  EditManager& editor = editor_of(model);
  editor.ResetAttrValue(editor.db(), attribute_definition(model, ZELK_OBJ_NETWORK, name).name);
}

Edit edit(nb::handle_t<Database> self, nb::handle path) {
  return {nb::borrow(self), path.is_none() ? std::string() : path_from_python(path)};
}

}  // namespace

void bind_edit(nb::module_& module) {
  nb::class_<Edit>(module, "Edit", "An edit of a database, as a context manager.")
      .def("__enter__", &Edit::enter, nb::sig("def __enter__(self) -> Database"))
      .def(
          "__exit__", [](Edit& self, nb::handle type, nb::handle, nb::handle) { self.exit(type); },
          nb::arg("type").none(), nb::arg("value").none(), nb::arg("traceback").none(),
          nb::sig("def __exit__(self, type: object, value: object, traceback: object, /) -> None"));
}

void bind_changes(nb::class_<Database>& database) {
  database
      .def_prop_rw(
          "comment",
          [](const Database& d) {
            const Model& model = *d.members().front().model;
            return text_or_none(view(model.comment), model.encoding);
          },
          set_database_comment, nb::arg("text").none(),
          nb::for_getter(nb::sig("def comment(self) -> str | None")),
          nb::for_setter(nb::sig("def comment(self, text: str | None, /) -> None")),
          "Text for people about the first file, or None.")
      .def_prop_rw(
          "version",
          [](const Database& d) {
            const Model& model = *d.members().front().model;
            return text_to_python(view(model.user_data), model.encoding);
          },
          set_version, nb::arg("text").none(), nb::for_getter(nb::sig("def version(self) -> str")),
          nb::for_setter(nb::sig("def version(self, text: str, /) -> None")),
          "Version of the first file, as it says.")
      .def("set_attribute", set_network_attribute, nb::arg("name").none(), nb::arg("value").none(),
           nb::sig("def set_attribute(self, name: str, value: int | float | str) -> None"),
           "Give the network a value of its own, within an edit.")
      .def("reset_attribute", reset_network_attribute, nb::arg("name").none(),
           nb::sig("def reset_attribute(self, name: str) -> None"),
           "Take the network's own value away, within an edit: the default applies again.")
      .def("edit", edit, nb::arg("path") = nb::none(),
           nb::sig("def edit(self, path: str | os.PathLike[str] | None = None) -> Edit"),
           R"(Change the database, and write it as a DBC file.

Within ``with db.edit() as edit:`` the properties of the objects of ``edit``, which is a database
like this one, can be assigned. At the end of the block all is written in one step, and this database
is the changed one. When an exception ends the block, or the file cannot be written, file and
database stay as they were. Objects that were taken before keep showing what they were taken from.

Parameters
----------
path : str or os.PathLike, optional
    File to write; the one that was read when it is left out.

Raises
------
LockedError
    Another edit of the file is going on in this process.
EditError
    The file was changed since it was read, or was no DBC file, or was mended.
WriteError
    At the end of the block: the file could not be written, and is as it was.)")
      .def("add_node", add_node, nb::arg("name").none(),
           nb::sig("def add_node(self, name: str) -> Node"), "Add a node, within an edit.")
      .def("add_message", add_message, nb::arg("name").none(), nb::arg("frame_id").none(),
           nb::arg("length").none(), nb::arg("is_extended_frame") = false,
           nb::sig("def add_message(self, name: str, frame_id: int, length: int, "
                   "is_extended_frame: bool = False) -> Message"),
           "Add a message of some bytes, within an edit.")
      .def("delete", remove, nb::arg("object").none(),
           nb::sig("def delete(self, object: Message | Signal | Node | EnvironmentVariable) -> "
                   "None"),
           "Delete an object and all references to it, within an edit.");
}

}  // namespace zelk::python
