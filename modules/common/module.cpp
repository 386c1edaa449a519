#include "common/module.hpp"

#include <new>

#include "common/records.hpp"
#include "zelk/module.h"

namespace zelk::modules {
namespace {

using Operation = void (*)(const char* file, const Database& database, std::string_view option);

/// For `Database`, which serves both directions: an export changes nothing.
template <typename Record>
Record*& unlocked(const Record*& head) {
  return const_cast<Record*&>(head);
}

void run(Operation operation, const char* file, msgblk*& messages, symblk*& nodes,
         env_var_blk*& env_vars, attr_def*& attr_defs, attr*& attr_values) {
  const zelk_conversion* const more = zelk_get_conversion();
  if (!more) throw Fault("no conversion is running");  // the caller was not the library
  operation(
      file,
      {messages, nodes, env_vars, attr_defs, attr_values, *more->bit_timings, *more->categories,
       *more->filter, *more->comment, *more->user_data, *more->signal_types, *more->value_tables},
      more->option);
}

/// Runs the body of an exported function, and notes what it throws.
///
/// @param number  the error that a Fault is
/// @return what the function returns
template <typename Body>
int guarded(std::uint32_t number, Body body) {
  try {
    body();
    return 1;
  } catch (const Fault& fault) {
    zelk_note(number, fault.line(), fault.what());
  } catch (const std::bad_alloc&) {
    zelk_note(ZELK_ERR_MEMORY, 0, nullptr);
  } catch (const std::exception& error) {
    zelk_note(number, 0, error.what());
  }
  return 0;
}

}  // namespace
}  // namespace zelk::modules

extern "C" ZELK_MODULE_EXPORT int zelk_import(const char* file, msgblk** messages, symblk** nodes,
                                              env_var_blk** env_vars, attr_def** attr_defs,
                                              attr** attr_values) {
  using namespace zelk::modules;
  return guarded(ZELK_ERR_CONVERTED_FORMAT, [=] {
    run(import_file, file, *messages, *nodes, *env_vars, *attr_defs, *attr_values);
  });
}

extern "C" ZELK_MODULE_EXPORT int zelk_export(const char* file, const msgblk* messages,
                                              const symblk* nodes, const env_var_blk* env_vars,
                                              const attr_def* attr_defs, const attr* attr_values) {
  using namespace zelk::modules;
  return guarded(ZELK_ERR_CONVERT, [&] {
    run(export_file, file, unlocked(messages), unlocked(nodes), unlocked(env_vars),
        unlocked(attr_defs), unlocked(attr_values));
  });
}
