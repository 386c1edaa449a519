#include "input/importing.hpp"

#include <fmt/format.h>

#include "term/text.hpp"

namespace zelk::tool {

namespace {

/// Makes databases that are for no file yet, of files that may be read-only.
class FileImporter : public ZelkImporter {
 public:
  using ZelkImporter::ZelkImporter;

  ZelkError Import(const char* db, const char** name, const char* file) override {
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
};

}  // namespace

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
  FileImporter importer(manager, call.module.c_str(), call.function.c_str());
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

}  // namespace zelk::tool
