#include "zelk/converter.hpp"

#include <exception>
#include <string>
#include <string_view>
#include <utility>

#include "database/copier.hpp"
#include "database/file.hpp"
#include "database/heads.hpp"
#include "model/release.hpp"
#include "model/without_raising.hpp"
#include "platform/platform.hpp"
#include "zelk/exception.hpp"
#include "zelk/model.h"

namespace zelk {
namespace {

/// The calling thread's, which the module asks for; null while none runs.
const zelk_conversion*& running_conversion() {
  thread_local const zelk_conversion* conversion = nullptr;
  return conversion;
}

/// Sets the running conversion, and at the end of the scope the one before it.
class Running {
 public:
  explicit Running(const zelk_conversion& conversion)
      : before_(std::exchange(running_conversion(), &conversion)) {}
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;
  ~Running() { running_conversion() = before_; }

 private:
  const zelk_conversion* before_;
};

/// Calls the module's function while a conversion of `database` runs.
///
/// @param number  error number under which an escaping exception is reported
template <typename Call>
bool run(ZelkDatabase& database, const char* option, std::uint32_t number, Call call) {
  const zelk_conversion conversion = {option,
                                      &database.bit_timings,
                                      &database.categories,
                                      &database.filter,
                                      &database.comment,
                                      &database.user_data,
                                      &database.signal_types,
                                      &database.value_tables};
  const Running running(conversion);
  try {
    return call() != 0;
  } catch (const ZelkException&) {  // already reported: raising appends to the error text
  } catch (const std::exception& error) {
    zelk_note(number, kNoLine, error.what());
  } catch (...) {
    zelk_note(number, kNoLine, "the converter module failed");
  }
  return false;
}

void report_missing_function(bool is_loaded) {
  zelk_note(ZELK_ERR_CONVERT, kNoLine,
            is_loaded ? "the module has no such function" : "the module cannot be loaded");
}

/// `file` with the extension, if it has one, replaced by ".DBC".
std::string dbc_path(std::string_view file) {
  const std::size_t name = file.find_last_of("/\\:") + 1;
  const std::size_t dot = file.substr(name).rfind('.');
  return std::string(file.substr(0, dot == file.npos ? dot : name + dot)) + ".DBC";
}

}  // namespace
}  // namespace zelk

namespace {

// Values of the converter's status.
constexpr std::uint32_t kDone = 0;
constexpr std::uint32_t kFailed = 1;  ///< or still running

}  // namespace

extern "C" const zelk_conversion* zelk_get_conversion(void) { return zelk::running_conversion(); }

// --- Converter ---

ZelkConverter::ZelkConverter(ZelkManager& manager, const char* module) : manager_(manager) {
  if (module) module_ = static_cast<HINSTANCE>(zelk::platform::load_module(module).release());
  if (!module_) status_ = kFailed;
}

void ZelkConverter::FindFunction(const char* function) {
  is_function_wanted_ = function != nullptr;
  function_ = GetFunction(function);
}

ZelkConverter::~ZelkConverter() {
  if (module_) zelk::platform::ModuleUnloader()(module_);
}

bool ZelkConverter::PostProcess(symblk*, msgblk*, env_var_blk*, btlblk*, attr_def*, attr*, cat*,
                                filter_t, char*, char*, sigtype*, valtable*) {
  return true;
}

ZelkConverter::Function ZelkConverter::GetFunction(const char* name) const {
  return module_ && name ? zelk::platform::find_function(module_, name) : nullptr;
}

ZelkDatabase* ZelkConverter::GetDatabase(const char* db) const { return manager_.GetDatabase(db); }

// --- Importer ---

ZelkImporter::ZelkImporter(ZelkWriteManager& manager, const char* module, const char* function)
    : ZelkConverter(manager, module) {
  FindFunction(function);
}

ZelkError ZelkImporter::Import(const char* db, const char** name, const char* file) {
  status_ = kFailed;
  zelk_clear_error_text();
  return zelk::without_raising(ZelkErrorNoDatabase, [&] {
    const ZelkError source = file ? zelk::writability(file) : ZelkErrorFileNotFound;
    if (source != ZelkErrorOk) return source;
    const char* stored = nullptr;
    const ZelkError created = CreateDatabase(db, &stored, file);
    if (created != ZelkErrorOk) return created;
    const ZelkError error = FillDatabase(stored, file);
    if (error == ZelkErrorOk && name) *name = stored;
    return error;
  });
}

ZelkError ZelkImporter::CreateDatabase(const char* db, const char** name, const char* file) {
  auto& manager = static_cast<ZelkWriteManager&>(manager_);
  if (db && manager.GetUniqueDatabaseName(db)) return ZelkErrorNameUsed;
  return zelk::without_raising(ZelkErrorNoDatabase, [&] {
    return manager.CreateDatabase(db, name, zelk::dbc_path(file).c_str());
  });
}

ZelkError ZelkImporter::FillDatabase(const char* name, const char* file) {
  status_ = kFailed;
  database_ = GetDatabase(name);
  if (!database_) return ZelkErrorNoDatabase;
  const bool is_filled = ProcessFile(file) && CopyDatabaseLists();
  database_ = nullptr;
  if (!is_filled) {
    manager_.CloseDatabase(name, false);
    return ZelkErrorNoDatabase;
  }
  status_ = kDone;
  return ZelkErrorOk;
}

bool ZelkImporter::ProcessFile(const char* file) {
  if (!function_) {
    zelk::report_missing_function(module_ != nullptr);
    return false;
  }
  ZelkDatabase& database = *database_;
  const auto import = reinterpret_cast<zelk_import_function>(function_);
  return zelk::run(database, option_, ZELK_ERR_CONVERTED_FORMAT, [&] {
    return import(file, &database.messages, &database.nodes, &database.env_vars,
                  &database.attr_defs, &database.attr_values);
  });
}

bool ZelkImporter::PostProcess(symblk* nodes, msgblk* messages, env_var_blk* env_vars,
                               btlblk* bit_timings, attr_def* attr_defs, attr* attr_values,
                               cat* categories, filter_t filter, char* comment, char* user_data,
                               sigtype* signal_types, valtable* value_tables) {
  zelk::release({nodes, messages, env_vars, bit_timings, attr_defs, attr_values, categories, filter,
                 comment, user_data, signal_types, value_tables});
  return true;
}

bool ZelkImporter::CopyDatabaseLists() {
  return zelk::without_raising(false, [this] {
    ZelkDatabase filled;
    zelk::swap_content(zelk::heads_of(filled), zelk::heads_of(*database_));
    const bool is_complete = zelk::DatabaseCopier(filled, *database_).copy();
    const auto post_process = [this](auto... parts) { return PostProcess(parts...); };
    return std::apply(post_process, zelk::take(zelk::heads_of(filled)).all()) && is_complete;
  });
}

// --- Exporter ---

ZelkExporter::ZelkExporter(ZelkManager& manager, const char* module, const char* function)
    : ZelkConverter(manager, module) {
  FindFunction(function);
}

ZelkError ZelkExporter::Export(const char* db, const char* file) {
  status_ = kFailed;
  zelk_clear_error_text();
  if (!file) return ZelkErrorNotWritten;
  return zelk::without_raising(ZelkErrorNotWritten, [&] {
    if (zelk::writability(file) != ZelkErrorFileNotFound) return ZelkErrorFileBelongs;
    database_ = manager_.FindDatabase(db);
    const bool is_written = database_ && ProcessFile(file);
    database_ = nullptr;
    if (!is_written) return ZelkErrorNotWritten;
    status_ = kDone;
    return ZelkErrorOk;
  });
}

bool ZelkExporter::ProcessFile(const char* file) {
  if (!function_) {
    if (is_function_wanted_) zelk::report_missing_function(module_ != nullptr);
    return true;
  }
  const ZelkDatabase& database = *database_;
  const auto write = reinterpret_cast<zelk_export_function>(function_);
  return zelk::run(*database_, option_, ZELK_ERR_CONVERT, [&] {
    return write(file, database.messages, database.nodes, database.env_vars, database.attr_defs,
                 database.attr_values);
  });
}
