#include "convert/conversion.hpp"

#include <vector>

#include "base/quoting.hpp"
#include "input/lookup.hpp"
#include "input/mending.hpp"
#include "input/opening.hpp"
#include "save/saving.hpp"
#include "term/output.hpp"
#include "term/system.hpp"
#include "term/text.hpp"
#include "zelk/converter.hpp"

namespace zelk::tool {

namespace {

OpenedDatabase read(const Conversion& conversion, ZelkWriteManager& manager) {
  constexpr const char* kName = "converted";
  const bool is_own = conversion.from.is_own();
  if (is_own && conversion.mending.is_wanted)
    return import_mended(manager, conversion.in, kName, conversion.mending);
  if (is_own) return open_database(manager, conversion.in);
  return import_database(manager, conversion.in, kName,
                         {conversion.from.module, conversion.import_function, conversion.option});
}

/// Prints what the library and the module noted about the written file.
void print_notes(const std::string& path, bool is_success) {
  const std::vector<std::string> lines = escaped_lines(utf8(zelk_get_error_text()));
  for (const std::string& line : lines)
    print_error(behind_path(path, is_success ? "warning: " + line : line));
  if (!is_success && lines.empty()) print_error(behind_path(path, "cannot be exported"));
}

/// Writes a file of another format.
bool export_database(const Conversion& conversion, ZelkWriteManager& manager, const char* name) {
  const ModuleCall call = {conversion.to.module, conversion.export_function, conversion.option};
  ZelkExporter exporter(manager, call.module.c_str(), call.function.c_str());
  const std::string fault = fault_of(manager, exporter, call);
  if (!fault.empty()) {
    print_error(behind_path(call.module, fault));
    return false;
  }
  exporter.SetOption(call.option.c_str());
  const HeldSignals held;
  const bool is_written = exporter.Export(name, conversion.out.c_str()) == ZelkErrorOk;
  print_notes(conversion.out, is_written);
  return is_written;
}

/// Writes a file of the library's own format.
bool write(const std::string& path, ZelkWriteManager& manager, const OpenedDatabase& opened) {
  try {
    check_trial_write(opened.encoded(), path);
    save(*opened.database, path, [&] { return manager.WriteDatabase(opened.name, path.c_str()); });
  } catch (const RequestError& error) {
    print_error(behind_path(path, error.what()));
    return false;
  }
  return true;
}

}  // namespace

bool convert(const Conversion& conversion) {
  ZelkWriteManager manager(static_cast<void*>(nullptr));
  if (exists(manager, conversion.out)) {
    print_error(behind_path(conversion.out, "exists already, and is not replaced"));
    return false;
  }
  const OpenedDatabase opened = read(conversion, manager);
  print_reports(opened, conversion.in);
  if (!opened.database) return false;
  return conversion.to.is_own() ? write(conversion.out, manager, opened)
                                : export_database(conversion, manager, opened.name);
}

}  // namespace zelk::tool
