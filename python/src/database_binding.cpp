// The class Database of Python.

#include "base/list.hpp"
#include "codec.hpp"
#include "database.hpp"
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

nb::object decode_message(Database& database, nb::handle key, nb::handle data, bool decode_choices,
                          bool scaling, bool allow_truncated) {
  return database.codec(key).decode(data, {decode_choices, scaling, allow_truncated});
}

nb::str repr(Database& database) {
  std::string text = "<zelk.Database";
  std::size_t messages = 0;
  for (const Database::Member& member : database.members()) {
    text += (messages == 0 && text.ends_with("Database") ? " " : ", ") + member.name;
    messages += each(member.model->messages).size();
  }
  return text_to_python(text + ": " + std::to_string(messages) + " messages>");
}

}  // namespace

void bind_database(nb::module_& module) {
  nb::class_<Database>(module, "Database",
                       "The databases of one or more files; `zelk.load` makes it.")
      .def("__init__", construct, nb::arg("paths"), nb::arg("repair") = false)
      .def_prop_ro("messages", &Database::messages, nb::sig("def messages(self) -> Messages"),
                   "All messages, in the order of the files.")
      .def_prop_ro("nodes", &Database::nodes, nb::sig("def nodes(self) -> Nodes"),
                   "All nodes, in the order of the files.")
      .def("message", &Database::message, nb::arg("id_or_name").none(),
           nb::sig("def message(self, id_or_name: int | str) -> Message"))
      .def("decode_message", decode_message, nb::arg("id_or_name").none(), nb::arg("data").none(),
           nb::arg("decode_choices") = true, nb::arg("scaling") = true,
           nb::arg("allow_truncated") = false)
      .def("__repr__", repr);
}

}  // namespace zelk::python
