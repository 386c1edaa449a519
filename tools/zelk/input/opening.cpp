#include "input/opening.hpp"

#include "base/quoting.hpp"
#include "input/diagnosis.hpp"
#include "input/mending.hpp"
#include "term/output.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

/// The report of a failure about which the library noted nothing: it notes every other reason.
std::string failure_text(ZelkError error, const std::string& path) {
  return error == ZelkErrorFileNotFound
             ? escaped(zelk_format_error(ZELK_ERR_NOT_FOUND, 0, path.c_str()))
             : "out of memory";
}

}  // namespace

void finish_opening(OpenedDatabase& opened, ZelkManager& manager, ZelkError error,
                    std::string_view text, const std::string& path) {
  opened.error = error;
  if (error == ZelkErrorOk) {
    opened.database = manager.GetDatabase(opened.name);
    opened.encoding = encoding_of(*opened.database);
  }
  if (error != ZelkErrorFileNotFound) {
    // A report can also quote a text of the file that no record holds.
    const bool is_1252 = opened.encoding == Encoding::kWindows1252;
    opened.reports = escaped_lines(is_1252 ? to_utf8(text, opened.encoding) : utf8(text));
  }
  // The caller answers the other errors.
  const bool is_failure = error == ZelkErrorNoDatabase || error == ZelkErrorFileNotFound;
  if (is_failure && opened.reports.empty()) opened.reports = {failure_text(error, path)};
}

ZelkError NamelessImporter::Import(const char* db, const char** name, const char* file) {
  status_ = 1;
  zelk_clear_error_text();
  const char* stored = nullptr;
  auto& manager = static_cast<ZelkWriteManager&>(manager_);
  const ZelkError created = manager.CreateDatabase(db, &stored, nullptr);
  if (created != ZelkErrorOk) return created;
  const ZelkError error = FillDatabase(stored, file);
  if (error == ZelkErrorOk) *name = stored;
  return error;
}

OpenedDatabase open_database(ZelkManager& manager, const std::string& path, const char* name) {
  OpenedDatabase opened;
  const ZelkError error = manager.OpenDatabase(path.c_str(), &opened.name, name, 0);
  finish_opening(opened, manager, error, manager.GetLastOpenError(), path);
  opened.is_refused = error == ZelkErrorNoDatabase;
  return opened;
}

bool exists(const ZelkManager& manager, const std::string& path) {
  return manager.GetDatabaseFileInfo(path.c_str()) != ZelkErrorFileNotFound;
}

std::string fault_of(const ZelkManager& manager, const ZelkConverter& converter,
                     const ModuleCall& call) {
  if (!exists(manager, call.module)) return "no such module";
  if (converter.Status() != 0) return "cannot be loaded as a module";
  if (converter.GetFunction(call.function.c_str())) return "";
  return fmt::format("the module has no function {}", in_quotes(call.function));
}

OpenedDatabase import_database(ZelkWriteManager& manager, const std::string& path, const char* name,
                               const ModuleCall& call) {
  OpenedDatabase opened;
  NamelessImporter importer(manager, call.module.c_str(), call.function.c_str());
  const std::string fault = fault_of(manager, importer, call);
  if (!fault.empty()) {
    opened.reports = {behind_path(call.module, fault)};
    return opened;
  }
  ZelkError error = ZelkErrorFileNotFound;
  if (exists(manager, path)) {
    importer.SetOption(call.option.c_str());
    error = importer.Import(name, &opened.name, path.c_str());
  }
  finish_opening(opened, manager, error, zelk_get_error_text(), path);
  return opened;
}

void print_reports(const OpenedDatabase& opened, const std::string& path) {
  if (opened.is_refused && print_refusal(opened, path)) return;
  for (const std::string& line : opened.reports)
    print_error(behind_path(path, opened.database ? "warning: " + line : line));
  if (opened.database && opened.database->SymbolsShortenedOnRead())
    print_error(fmt::format("{}: warning: {}", escaped(path), kShortenedWarning));
}

std::string behind_path(const std::string& path, const std::string& line) {
  // A syntax error has no text of its own: its line begins with the comma in front of "line N".
  const char* separator = line.starts_with(", ") ? "" : ": ";
  return escaped(path) + separator + line;
}

ZelkDatabase* DatabaseFile::open(const std::string& path) {
  const Format format = format_of_file(path).value_or(Format{});
  constexpr const char* kName = "imported";
  opened_ = !format.is_own()     ? import_database(importer_, path, kName, {format.module})
            : mending_.is_wanted ? import_mended(importer_, path, kName, mending_)
                                 : open_database(reader_, path);
  return opened_.database;
}

ZelkDatabase* DatabaseFile::open_and_report(const std::string& path) {
  open(path);
  print_reports(opened_, path);
  return opened_.database;
}

}  // namespace zelk::tool
