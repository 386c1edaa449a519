#include "decoding.hpp"

#include <map>
#include <utility>

#include "base/frame_id.hpp"
#include "logs/lookup/unique_names.hpp"

namespace zelk::python {
namespace {

std::shared_ptr<const TableHead> head_of(const ZelkColumnDecoder& decoder, std::size_t index,
                                         const ZelkColumnTable& table) {
  auto head = std::make_shared<TableHead>();
  head->name = table.name;
  head->database = table.database;
  for (const ZelkColumn& column : table.columns)
    head->columns.push_back({column.name, column.unit, column.type});
  ArrowSchema schema{};
  decoder.GetSchema(index, &schema);
  head->schema = shared(schema);
  return head;
}

[[noreturn]] void fail_unknown(const char* what, const std::string& pattern) {
  throw Failure(FailureKind::kUnknownName, std::string("no ") + what +
                                               " of the databases has a name like " +
                                               shown(std::string_view(pattern)));
}

}  // namespace

Decoding::Decoding(const std::vector<Source>& sources, const std::vector<std::string>& messages,
                   const std::vector<std::string>& signals, ZelkColumnOptions options)
    : decoder_(options) {
  add(sources);
  for (const std::string& pattern : messages)
    if (!decoder_.SelectMessages(pattern)) fail_unknown("message", pattern);
  for (const std::string& pattern : signals)
    if (!decoder_.SelectSignals(pattern)) fail_unknown("signal", pattern);
  for (const ZelkColumnTable& table : decoder_.Tables())
    heads_.push_back(head_of(decoder_, heads_.size(), table));
}

void Decoding::add(const std::vector<Source>& sources) {
  logs::UniqueNames names;
  std::map<const Model*, std::string> known;
  for (const Source& source : sources) {
    for (const Database::Member& member : source.database->members()) {
      if (member.model->is_editable()) {
        throw Failure(FailureKind::kArgument,
                      "a database is edited: decode with it once the edit is written");
      }
      std::string& name = known[member.model.get()];
      if (name.empty()) name = names.unique(member.name);
      models_.push_back(member.model);
      decoder_.AddDatabase(*member.model, name, source.channel);
    }
  }
}

void Decoding::take_batches(bool is_end, const std::function<bool(std::size_t, ArrowArray)>& take) {
  for (std::size_t table = 0; table < heads_.size(); ++table) {
    ArrowArray batch{};
    while (decoder_.TakeBatch(table, is_end, &batch))
      if (!take(table, batch)) return;
  }
}

namespace {

ZelkColumnValues values_of(const std::string& name) {
  if (name == "physical") return ZelkColumnValues::kPhysical;
  if (name == "raw") return ZelkColumnValues::kRaw;
  if (name == "texts") return ZelkColumnValues::kTexts;
  throw Failure(FailureKind::kArgument, "values must be 'physical', 'raw' or 'texts', not " +
                                            shown(std::string_view(name)));
}

std::vector<std::string> texts_of(const nb::list& texts) {
  std::vector<std::string> result;
  for (const nb::handle text : texts) result.emplace_back(text_from_python(text));
  return result;
}

void construct(Decoding* self, const nb::list& sources, const nb::list& messages,
               const nb::list& signals, nb::str values, bool raw_beside, bool match_pgn,
               std::size_t batch_rows) {
  std::vector<Decoding::Source> all;
  for (const nb::handle source : sources) {
    all.push_back({&nb::cast<const Database&>(source[0]),
                   std::string(text_from_python(nb::object(source[1])))});
  }
  ZelkColumnOptions options;
  options.values = values_of(values.c_str());
  options.raw_beside = raw_beside;
  options.match_groups = match_pgn;
  options.batch_rows = batch_rows;
  new (self) Decoding(all, texts_of(messages), texts_of(signals), options);
}

nb::list empty_tables(const Decoding& decoding) {
  nb::list tables;
  for (const auto& head : decoding.heads()) tables.append(nb::cast(TableRows(head)));
  return tables;
}

}  // namespace

void bind_decoding(nb::module_& module) {
  nb::class_<Decoding>(module, "Decoding", "What decodes frames into tables, in one run.")
      .def("__init__", construct, nb::arg("sources"), nb::arg("messages"), nb::arg("signals"),
           nb::arg("values"), nb::arg("raw_beside"), nb::arg("match_pgn"), nb::arg("batch_rows"),
           nb::sig("def __init__(self, sources: list[tuple[Database, str]], messages: list[str], "
                   "signals: list[str], values: str, raw_beside: bool, match_pgn: bool, "
                   "batch_rows: int) -> None"))
      .def("tables", empty_tables, nb::sig("def tables(self) -> list[TableRows]"),
           "All tables, without rows.");
}

}  // namespace zelk::python
