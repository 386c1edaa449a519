// The class Database of Python: what it is made of, and lookups.

#include "base/list.hpp"
#include "codec.hpp"
#include "collection.hpp"
#include "database.hpp"
#include "objects.hpp"
#include "opening.hpp"

namespace zelk::python {
namespace {

using Paths = nb::typed<nb::list, nb::str>;

std::vector<std::string> paths_of(const Paths& paths) {
  std::vector<std::string> result;
  for (const nb::handle path : paths) result.push_back(path_from_python(path));
  return result;
}

void construct(Database* self, const Paths& files, bool repair) {
  const std::vector<std::string> paths = paths_of(files);
  if (paths.empty()) throw Failure(FailureKind::kArgument, "no file is named");
  std::vector<std::shared_ptr<Model>> models;
  {
    const nb::gil_scoped_release unlocked;
    for (const std::string& path : paths) models.push_back(open_model(path, repair));
  }
  new (self) Database(std::move(models));
}

const Model& first(const Database& database) { return *database.members().front().model; }

// --- What it is made of ---

nb::object files_of(const Database& database) {
  nb::list files;
  for (const Database::Member& member : database.members())
    files.append(path_to_python(member.model->file));
  return nb::tuple(files);
}

nb::object databases_of(const Database& database) {
  nb::dict databases;
  for (const Database::Member& member : database.members()) {
    databases[text_to_python(member.name)] =
        nb::cast(new Database({member.model}), nb::rv_policy::take_ownership);
  }
  return databases;
}

nb::object variables_of(const Database& database) {
  Collection<env_var_blk> variables("environment variable");
  for (const Database::Member& member : database.members())
    variables.add_all(member.model, member.model->env_vars);
  return nb::cast(std::move(variables));
}

nb::object tables_of(const Database& database) {
  constexpr bool kIsSigned = true;
  nb::dict tables;
  for (const Database::Member& member : database.members()) {
    const Use use(member.model);
    for (const valtable& table : each(member.model->value_tables)) {
      const nb::str name = text_to_python(view(table.name), member.model->encoding);
      const nb::object choices = choices_to_python(table.values, kIsSigned, member.model->encoding);
      if (!tables.contains(name)) tables[name] = choices.is_none() ? nb::dict() : choices;
    }
  }
  return tables;
}

nb::object mends_of(const Database& database) {
  nb::list all;
  for (const Database::Member& member : database.members())
    all.extend(findings_to_python(member.model->mends));
  return nb::tuple(all);
}

AttributeHolder holder_of(const Database& database) {
  const std::shared_ptr<Model>& model = database.members().front().model;
  return {model, model->attr_values, ZELK_OBJ_NETWORK};
}

nb::object attributes_of(nb::handle_t<Database> self) {
  return nb::module_::import_("zelk._attributes").attr("Attributes")(self);
}

nb::str repr(const Database& database) {
  std::string text = "<zelk.Database";
  std::size_t messages = 0;
  const char* separator = " ";
  for (const Database::Member& member : database.members()) {
    text += separator + member.name;
    separator = ", ";
    messages += each(member.model->messages).size();
  }
  return text_to_python(text + ": " + std::to_string(messages) +
                        (messages == 1 ? " message>" : " messages>"));
}

// --- Frames ---

nb::object decode_message(Database& database, nb::handle key, nb::handle data, bool decode_choices,
                          bool scaling, bool allow_truncated) {
  return database.codec(key)->decode(data, {decode_choices, scaling, allow_truncated});
}

nb::object encode_message(Database& database, nb::handle key, nb::handle values, bool scaling,
                          bool padding, bool strict) {
  return database.codec(key)->encode(values, {scaling, padding, strict});
}

Message message_of_id(Database& database, nb::handle id) {
  if (PyUnicode_Check(id.ptr()))
    throw Failure(FailureKind::kArgument, "an identifier is a number, not " + shown(id));
  return database.message(id);
}

Message message_of_name(Database& database, nb::handle name) {
  if (!PyUnicode_Check(name.ptr()))
    throw Failure(FailureKind::kArgument, "a name is a text, not " + shown(name));
  return database.message(name);
}

Message message_of_pgn(const Database& database, nb::handle pgn) {
  constexpr std::int64_t kLargest = 0x3FFFF;
  return database.message_of_group(
      static_cast<std::uint32_t>(whole_from_python(pgn, "pgn", 0, kLargest)));
}

constexpr const char* kDecodeDoc = R"(Values of the signals in a frame.

Parameters
----------
id_or_name : int or str
    The message.
data : bytes-like, shape (n,)
    The frame's data, at least as long as the message.
decode_choices : bool
    Give described values as `Choice`, the text of the description.
scaling : bool
    Give physical values, in the units of the signals; else raw ones.
allow_truncated : bool
    Take fewer bytes too, and leave out the signals beyond them.

Returns
-------
dict
    By name, the signals that the frame has: those that its multiplexors select. An ``int`` when
    factor and offset are whole, else a ``float``. Signals of more than 64 bits are left out.

Raises
------
UnknownNameError
    There is no such message.
DecodeError
    There are too few data.)";

constexpr const char* kEncodeDoc = R"(The frame that has these values.

Parameters
----------
id_or_name : int or str
    The message.
values : mapping from str to int, float or str
    By name a number, or the text of a value description, for each signal of the frame.
scaling : bool
    Numbers are physical values, in the units of the signals; else raw ones.
padding : bool
    Set the bits that no signal has to 1.
strict : bool
    Refuse values out of range, signals without a value, and values for what is not in the frame;
    else take the nearest value, 0, and leave them out.

Returns
-------
bytes
    As many as the message has.

Raises
------
UnknownNameError
    There is no such message or signal.
EncodeError
    The frame cannot hold the values.)";

void bind_content(nb::class_<Database>& database) {
  database
      .def_prop_ro("messages", &Database::messages, nb::sig("def messages(self) -> Messages"),
                   "All messages, in the order of the files.")
      .def_prop_ro("nodes", &Database::nodes, nb::sig("def nodes(self) -> Nodes"),
                   "All nodes, in the order of the files.")
      .def_prop_ro("environment_variables", variables_of,
                   nb::sig("def environment_variables(self) -> EnvironmentVariables"),
                   "All environment variables, in the order of the files.")
      .def_prop_ro("value_tables", tables_of,
                   nb::sig("def value_tables(self) -> dict[str, dict[int, Choice]]"),
                   "Texts by raw values (signed, of 32 bits), by the names of the tables.")
      .def_prop_ro("files", files_of, nb::sig("def files(self) -> tuple[str, ...]"),
                   "Paths of the files, as they were given.")
      .def_prop_ro("databases", databases_of, nb::sig("def databases(self) -> dict[str, Database]"),
                   "The database of each file, by its name: that of the file without folder and "
                   "extension.")
      .def_prop_ro("mends", mends_of, nb::sig("def mends(self) -> tuple[Finding, ...]"),
                   "What was mended on reading (`repair=True`).")
      .def_prop_ro("attributes", attributes_of, nb::sig("def attributes(self) -> Attributes"),
                   "Attributes of the network, of the first file.")
      .def(
          "get_attributes", [](const Database& d) { return attributes_to_python(holder_of(d)); },
          nb::sig("def get_attributes(self) -> dict[str, int | float | str]"),
          "The attributes as a dictionary of its own.")
      .def("__repr__", repr);
}

void bind_lookups(nb::class_<Database>& database) {
  database
      .def("message", &Database::message, nb::arg("id_or_name").none(),
           nb::sig("def message(self, id_or_name: int | str | Message) -> Message"),
           "The first message with a name (also \"database::message\") or identifier (that of an "
           "extended frame with or without bit 31).")
      .def("get_message_by_name", message_of_name, nb::arg("name").none(),
           nb::sig("def get_message_by_name(self, name: str) -> Message"),
           "The first message with a name.")
      .def("get_message_by_frame_id", message_of_id, nb::arg("frame_id").none(),
           nb::sig("def get_message_by_frame_id(self, frame_id: int) -> Message"),
           "The first message with an identifier.")
      .def("get_message_by_pgn", message_of_pgn, nb::arg("pgn").none(),
           nb::sig("def get_message_by_pgn(self, pgn: int) -> Message"),
           "The first message of a J1939 parameter group.");
}

void bind_frames(nb::class_<Database>& database) {
  database
      .def("decode_message", decode_message, nb::arg("id_or_name").none(), nb::arg("data").none(),
           nb::arg("decode_choices") = true, nb::arg("scaling") = true,
           nb::arg("allow_truncated") = false,
           nb::sig("def decode_message(self, id_or_name: int | str | Message, data: "
                   "Buffer, decode_choices: bool = True, scaling: bool = True, "
                   "allow_truncated: bool = False) -> dict[str, int | float | "
                   "Choice]"),
           kDecodeDoc)
      .def("encode_message", encode_message, nb::arg("id_or_name").none(), nb::arg("values").none(),
           nb::arg("scaling") = true, nb::arg("padding") = false, nb::arg("strict") = true,
           nb::sig("def encode_message(self, id_or_name: int | str | Message, values: "
                   "collections.abc.Mapping[str, int | float | str], scaling: bool = True, "
                   "padding: bool = False, strict: bool = True) -> bytes"),
           kEncodeDoc);
}

}  // namespace

void bind_database(nb::module_& module) {
  nb::class_<Database> database(module, "Database", nb::is_weak_referenceable(),
                                "The databases of one or more files; `zelk.load` makes it. Lookups "
                                "look in the files in their order.");
  database.def("__init__", construct, nb::arg("paths"), nb::arg("repair") = false)
      .def(
          "__reduce__",
          [](const Database& d) {
            const nb::object load = nb::module_::import_("zelk._loading").attr("_load_all");
            return nb::make_tuple(load, nb::make_tuple(files_of(d), first(d).is_mended));
          },
          nb::sig("def __reduce__(self) -> tuple[object, ...]"));
  bind_content(database);
  bind_lookups(database);
  bind_frames(database);
  bind_changes(database);
}

}  // namespace zelk::python
