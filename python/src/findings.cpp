// Lint, repair and comparison of databases.

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <optional>
#include <system_error>

#include "base/encoded_database.hpp"
#include "check/diff/differences.hpp"
#include "check/faults/diagnose.hpp"
#include "check/includes/mend.hpp"
#include "check/lint/lint.hpp"
#include "check/lint/rule.hpp"
#include "check/statements/document.hpp"
#include "database.hpp"
#include "files/files.hpp"
#include "opening.hpp"
#include "values.hpp"

namespace zelk::python {
namespace {

std::vector<std::string> texts_of(nb::handle texts, const char* what) {
  if (PyUnicode_Check(texts.ptr()))
    throw Failure(FailureKind::kArgument, std::string(what) + ": a list of texts, not a text");
  std::vector<std::string> result;
  const nb::object iterator = checked(PyObject_GetIter(texts.ptr()));
  while (PyObject* const item = PyIter_Next(iterator.ptr()))
    result.emplace_back(text_from_python(nb::steal(item)));
  if (PyErr_Occurred()) nb::raise_python_error();
  return result;
}

check::Source read_source(const std::string& path) {
  if (format_of(path) != FileFormat::kDbc) {
    throw Failure(FailureKind::kRead, "is no DBC file", path);
  }
  std::string bytes = read_bytes(path);
  if (bytes.size() > check::Source::kLongest) throw Failure::of_system(EFBIG, path);
  return {path, std::move(bytes)};
}

// --- Lint ---

const check::Rule& rule_named(const std::string& name) {
  if (const check::Rule* const rule = check::find_rule(name)) return *rule;
  throw Failure(FailureKind::kUnknownName, "no rule is named " + shown(name));
}

nb::object lint(nb::handle file, nb::handle disable, std::uint64_t limit) {
  const std::string path = path_from_python(file);
  check::LintSettings settings;
  for (const std::string& name : texts_of(disable, "disable"))
    settings.set_on(rule_named(name), false);
  std::vector<PlacedFinding> findings;
  {
    const nb::gil_scoped_release unlocked;
    const check::Document document = check::read_document(read_source(path));
    const check::StrictReading records(document.source.text());
    if (records.is_accepted()) {
      const check::Names names(document);
      const check::LintResult result =
          check::lint(document, names, records.view(), settings, limit);
      findings = placed(document.source, result.findings);
    } else {
      findings = placed(document.source, check::diagnose(document, limit));
    }
  }
  return findings_to_python(findings);
}

// --- Repair ---

void write_file(const std::string& path, std::string_view text) {
  files::Replacement file(path.c_str(), files::Content::kBytes);
  const bool is_written = file.file() &&
                          std::fwrite(text.data(), 1, text.size(), file.file()) == text.size() &&
                          std::fflush(file.file()) == 0;
  if (is_written && file.take_place()) return;
  const int code = errno;
  const std::string& reason = file.failure();
  throw Failure(
      FailureKind::kWrite,
      reason.empty() ? std::generic_category().message(code) : to_utf8(reason, encoding_of(reason)),
      path);
}

void check_target(const std::string& source, const std::string& target) {
  std::error_code ignored;
  if (!std::filesystem::equivalent(source, target, ignored)) return;
  throw Failure(FailureKind::kWrite, "is the file to read: a repair goes to another one", target);
}

nb::object repair(nb::handle source, nb::handle target, nb::handle keep, nb::handle no_node) {
  const std::string from = path_from_python(source);
  const std::string to = path_from_python(target);
  check::MendOptions options;
  for (std::string& name : texts_of(keep, "keep")) options.kept.insert(std::move(name));
  for (std::string& name : texts_of(no_node, "no_node")) options.no_node.insert(std::move(name));
  std::vector<PlacedFinding> mends;
  {
    const nb::gil_scoped_release unlocked;
    check_target(from, to);
    const check::MendedFile mended = check::mend(read_source(from), options);
    if (mended.outcome == check::Outcome::kUnmendable) {
      throw Failure(FailureKind::kRead, "the file cannot be mended", from, std::nullopt,
                    placed(mended.source, mended.faults));
    }
    write_file(to, mended.text);
    mends = placed(mended.source, mended.mends);
  }
  return findings_to_python(mends);
}

// --- Comparison ---

nb::object to_python(const check::Cell& cell) {
  if (const double* const number = cell.number()) return number_to_python(*number);
  if (const std::string* const text = cell.text()) return text_to_python(*text);
  if (const bool* const yes = std::get_if<bool>(&cell.value)) return nb::bool_(*yes);
  if (!cell.list()) return nb::none();
  nb::list items;
  for (const check::CellElement& element : *cell.list()) {
    const nb::str text = text_to_python(element.text);
    element.number ? items.append(nb::make_tuple(*element.number, text)) : items.append(text);
  }
  return nb::tuple(items);
}

nb::object name_of(const check::Change& change) {
  if (change.what == check::Changed::kDescription)
    return text_to_python("value " + std::to_string(change.number));
  return text_to_python(change.name);
}

/// Makes a tuple of `zelk.Difference`.
class DifferenceList {
 public:
  void add(const check::Difference& difference) {
    constexpr const char* kPresences[] = {"removed", "added", "changed"};
    nb::list changes;
    for (const check::Change& change : difference.changes) {
      changes.append(change_type_(name_of(change), to_python(change.before.cell),
                                  to_python(change.after.cell)));
    }
    const bool is_network = difference.kind == nullptr;
    const check::Object& object = difference.object;
    list_.append(difference_type_(
        kPresences[static_cast<std::size_t>(difference.presence)],
        text_to_python(is_network ? "network" : difference.kind->singular),
        is_network ? nb::none() : nb::object(text_to_python(object.name_text())),
        is_network || !object.owner ? nb::none() : nb::object(text_to_python(object.owner_text())),
        nb::tuple(changes)));
  }

  nb::object take() const { return nb::tuple(list_); }

 private:
  nb::module_ types_ = nb::module_::import_("zelk._findings");
  nb::object change_type_ = types_.attr("Change");
  nb::object difference_type_ = types_.attr("Difference");
  nb::list list_;
};

const std::shared_ptr<Model>& only_model(const Database& database) {
  if (database.members().size() == 1) return database.members().front().model;
  throw Failure(FailureKind::kArgument,
                "databases of several files are compared one by one: see Database.databases");
}

nb::object diff(const Database& before, const Database& after) {
  const std::shared_ptr<Model> a = only_model(before);
  const std::shared_ptr<Model> b = only_model(after);
  DifferenceList list;
  const auto compare = [&] {
    check::for_each_difference({*a, a->encoding}, {*b, b->encoding},
                               [&](const check::Difference& difference) {
                                 const nb::gil_scoped_acquire lock;
                                 list.add(difference);
                               });
  };
  const Use uses[] = {Use(a), Use(b)};
  if (a->is_editable() || b->is_editable()) {
    compare();  // nobody may change them meanwhile
  } else {
    const nb::gil_scoped_release unlocked;
    compare();
  }
  return list.take();
}

}  // namespace

void bind_findings(nb::module_& module) {
  module
      .def("lint", lint, nb::arg("path"), nb::arg("disable"), nb::arg("limit"),
           nb::sig("def lint(path: object, disable: collections.abc.Iterable[str], limit: int) -> "
                   "tuple[Finding, ...]"))
      .def("repair", repair, nb::arg("source"), nb::arg("target"), nb::arg("keep"),
           nb::arg("no_node"),
           nb::sig("def repair(source: object, target: object, keep: "
                   "collections.abc.Iterable[str], no_node: collections.abc.Iterable[str]) -> "
                   "tuple[Finding, ...]"))
      .def("diff", diff, nb::arg("before"), nb::arg("after"),
           nb::sig("def diff(before: Database, after: Database) -> tuple[Difference, ...]"));
}

}  // namespace zelk::python
