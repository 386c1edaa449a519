// Tables of decoded rows, as Python sees them.

#include "decoding.hpp"

namespace zelk::python {
namespace {

constexpr const char* kSchema = "arrow_schema";
constexpr const char* kStream = "arrow_array_stream";

/// Releases the structure unless a consumer has moved it out.
template <typename Structure>
void release_capsule(PyObject* capsule) {
  const char* const name = PyCapsule_GetName(capsule);
  auto* const structure = static_cast<Structure*>(PyCapsule_GetPointer(capsule, name));
  if (structure->release) structure->release(structure);
  delete structure;
}

/// @param make  fills the structure
template <typename Structure, typename Make>
nb::object capsule_of(const char* name, const Make& make) {
  auto structure = std::make_unique<Structure>();
  nb::object capsule = checked(PyCapsule_New(structure.get(), name, release_capsule<Structure>));
  structure.release()->release = nullptr;
  make(*static_cast<Structure*>(PyCapsule_GetPointer(capsule.ptr(), name)));
  return capsule;
}

nb::object schema_capsule(const TableRows& rows) {
  return capsule_of<ArrowSchema>(kSchema, [&](ArrowSchema& out) { rows.export_schema(out); });
}

/// A consumer may ask for another schema; who gives the stream need not follow.
nb::object stream_capsule(const TableRows& rows, nb::handle) {
  return capsule_of<ArrowArrayStream>(kStream,
                                      [&](ArrowArrayStream& out) { rows.export_stream(out); });
}

nb::list texts_of_columns(const TableRows& rows, std::string ColumnHead::*text) {
  nb::list texts;
  for (std::size_t i = 0; i < rows.column_count(); ++i)
    texts.append(text_to_python(rows.column(i).*text));
  return texts;
}

nb::list columns(const TableRows& rows) { return texts_of_columns(rows, &ColumnHead::name); }
nb::list units(const TableRows& rows) { return texts_of_columns(rows, &ColumnHead::unit); }

bool is_text(const TableRows& rows, std::size_t column) {
  return rows.column(column).type == ZelkColumnType::kDictionary;
}

std::size_t byte_count(const TableRows& rows) {
  std::size_t width = 0;
  for (std::size_t i = 0; i < rows.column_count(); ++i) width += width_of(rows.column(i).type);
  return width * rows.row_count();
}

TableRows with_columns(const TableRows& rows, const nb::list& wanted) {
  std::vector<std::size_t> indices;
  for (const nb::handle index : wanted) indices.push_back(nb::cast<std::size_t>(index));
  return rows.with_columns(indices);
}

TableRows joined(const nb::list& parts) {
  std::vector<const TableRows*> all;
  for (const nb::handle part : parts) all.push_back(&nb::cast<const TableRows&>(part));
  if (all.empty()) throw Failure(FailureKind::kArgument, "no rows to join");
  return TableRows::joined(all);
}

}  // namespace

void bind_table(nb::module_& module) {
  nb::class_<TableRows>(module, "TableRows", "Rows of one message, in batches; never changes.")
      .def_prop_ro("name", [](const TableRows& rows) { return text_to_python(rows.head().name); })
      .def_prop_ro("database",
                   [](const TableRows& rows) { return text_to_python(rows.head().database); })
      .def_prop_ro("columns", columns, nb::sig("def columns(self) -> list[str]"))
      .def_prop_ro("units", units, nb::sig("def units(self) -> list[str]"))
      .def_prop_ro("nbytes", byte_count)
      .def_prop_ro("batch_count", [](const TableRows& rows) { return rows.batches().size(); })
      .def("__len__", &TableRows::row_count)
      .def("is_text", is_text, nb::arg("column"))
      .def("with_columns", with_columns, nb::arg("columns"),
           nb::sig("def with_columns(self, columns: list[int]) -> TableRows"))
      .def(
          "values", column_values, nb::arg("column"), nb::arg("fills"),
          nb::sig("def values(self, column: int, fills: bool) -> numpy.typing.NDArray[typing.Any]"))
      .def("nulls", column_nulls, nb::arg("column"),
           nb::sig("def nulls(self, column: int) -> numpy.typing.NDArray[numpy.bool_] | None"))
      .def("codes", column_codes, nb::arg("column"),
           nb::sig("def codes(self, column: int) -> tuple[numpy.typing.NDArray[numpy.int32], "
                   "list[str]]"))
      .def("__arrow_c_schema__", schema_capsule, nb::sig("def __arrow_c_schema__(self) -> object"))
      .def("__arrow_c_stream__", stream_capsule, nb::arg("requested_schema") = nb::none(),
           nb::sig("def __arrow_c_stream__(self, requested_schema: object = None) -> object"))
      .def_static("joined", joined, nb::arg("parts"),
                  nb::sig("def joined(parts: list[TableRows]) -> TableRows"));
}

}  // namespace zelk::python
