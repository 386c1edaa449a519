/// \file
/// Databases of files that converter modules read.

#ifndef ZELK_TOOL_INPUT_IMPORTING_HPP
#define ZELK_TOOL_INPUT_IMPORTING_HPP

#include <string>

#include "input/database.hpp"
#include "input/formats.hpp"
#include "zelk/converter.hpp"

namespace zelk::tool {

/// The call of a module.
struct ModuleCall {
  std::string module;    ///< file
  std::string function;  ///< in it
  std::string option;    ///< for it
};

/// How the modules that come with the library read a file of a format.
inline ModuleCall import_call(const Format& format) { return {format.module, "zelk_import", ""}; }

/// Whether there is a file.
bool exists(const ZelkManager& manager, const std::string& path);

/// Why a module cannot be used; empty when it can.
std::string fault_of(const ZelkManager& manager, const ZelkConverter& converter,
                     const ModuleCall& call);

/// Makes a database of `path`, which the manager holds. It is for no file: a file with the name of
/// this one and the extension ".dbc" is neither looked at nor claimed.
///
/// @param name  of the database, which no other one of the manager has
OpenedDatabase import_database(ZelkWriteManager& manager, const std::string& path, const char* name,
                               const ModuleCall& call);

}  // namespace zelk::tool

#endif
