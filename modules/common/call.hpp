/// \file
/// What the exported functions of a module have in common.

#ifndef ZELK_MODULES_COMMON_CALL_HPP
#define ZELK_MODULES_COMMON_CALL_HPP

#include <cstdint>
#include <new>

#include "common/module.hpp"
#include "common/records.hpp"
#include "zelk/module.h"

namespace zelk::modules {

using Operation = void (*)(const char* file, const Database& database, std::string_view option);

inline void run(Operation operation, const char* file, msgblk*& messages, symblk*& nodes,
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

}  // namespace zelk::modules

#endif
