/// \file
/// The functions of a converter module. import.cpp and export.cpp export them to hosts and call
/// those declared here, which every module defines for its directions.

#ifndef ZELK_MODULES_COMMON_MODULE_HPP
#define ZELK_MODULES_COMMON_MODULE_HPP

#include <functional>
#include <string_view>

#include "zelk/records.h"

namespace zelk::modules {

/// All that a database is made of; for an export only to be read.
struct Database {
  template <typename Field>
  using Ref = std::reference_wrapper<Field>;

  Ref<msgblk*> messages;
  Ref<symblk*> nodes;
  Ref<env_var_blk*> env_vars;
  Ref<attr_def*> attr_defs;
  Ref<attr*> attr_values;
  Ref<btlblk*> bit_timings;
  Ref<cat*> categories;
  Ref<filter_t> filter;
  Ref<char*> comment;
  Ref<char*> version_text;
  Ref<sigtype*> signal_types;
  Ref<valtable*> value_tables;
};

/// Fills an empty database from a file.
/// @param option  the host's wishes, in the module's own words
/// @throws Fault, std::bad_alloc; the library then releases what the database has got
void import_file(const char* file, const Database& database, std::string_view option);

/// Writes a database to a file that does not exist.
/// @throws Fault, std::bad_alloc; no file is left behind
void export_file(const char* file, const Database& database, std::string_view option);

}  // namespace zelk::modules

#endif
