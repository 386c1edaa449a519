/// \file
/// The contract of converter modules: shared libraries that fill a database from a file of another
/// format, or write one to it.
///
/// A module exports one function for each direction that it serves, with C linkage and under any
/// name; `zelk_import` and `zelk_export` are what the command-line program looks for. A host loads
/// the module and calls the function by `ZelkImporter` and `ZelkExporter` (converter.hpp). The
/// smallest module is examples/csv_module.c.
///
/// **Memory.** Records and texts come from the library (`zelk_malloc`, `zelk_create_*`), each block
/// has exactly one owner, as records.h describes it, and no list runs in a circle. The library
/// tolerates all else: missing names, counts that do not agree, references to records of other
/// databases, values outside their ranges. After a successful import it copies all lists and
/// releases the originals as `zelk_free` does: the module keeps no pointer into them. References
/// become those to the copies; one to a record that is in none of the lists (of signals: in no list
/// of its message) becomes one to the first of its name or number there, else null. When the
/// function fails, the library releases what is in the lists by then.
///
/// **Errors.** Before it returns, a function reports what is wrong, and where, by `zelk_note`
/// (errors.h): number 17 (`ZELK_ERR_CONVERTED_FORMAT`) with the line for a faulty file, 18
/// (`ZELK_ERR_CONVERT`) for one that cannot be written, 15 (`ZELK_ERR_FORMAT`) for what the other
/// format cannot hold and is left out. The host finds the lines in the error text. C++ exceptions
/// end here: an escaping one counts as a failure.
///
/// A function is called on the host's thread, once for each conversion. Conversions of several
/// threads may run at once: a module keeps no state outside the call.

#ifndef ZELK_MODULE_H
#define ZELK_MODULE_H

#include <stdint.h>

#include "zelk/errors.h"
#include "zelk/export.h"
#include "zelk/model.h"
#include "zelk/records.h"

ZELK_EXTERN_C_BEGIN

/// Fills the empty database from `file`.
///
/// @param file  path as the host gave it, in the system's encoding; never null
/// @param messages, nodes, env_vars, attr_defs, attr_values  heads of the database's lists, null at
/// the start; `attr_values` are those of the network itself
/// @return non-zero for success; 0 makes the import fail, and no database is left
typedef int (*zelk_import_function)(const char* file, msgblk** messages, symblk** nodes,
                                    env_var_blk** env_vars, attr_def** attr_defs,
                                    attr** attr_values);

/// Writes the database to `file`, which does not exist; a function that fails leaves none behind.
///
/// @param messages, nodes, env_vars, attr_defs, attr_values  the database's lists, borrowed and not
/// to be changed; null for empty ones
/// @return non-zero for success
typedef int (*zelk_export_function)(const char* file, const msgblk* messages, const symblk* nodes,
                                    const env_var_blk* env_vars, const attr_def* attr_defs,
                                    const attr* attr_values);

/// What a conversion has beside the arguments of its function: the database's other lists. An
/// import may fill them, an export only reads them.
typedef struct zelk_conversion {
  /// The host's wishes, in a form that the module defines; empty for none, never null.
  const char* option;
  btlblk** bit_timings;
  cat** categories;
  filter_t* filter;
  char** comment;    ///< owned by the database; null for none
  char** user_data;  ///< the text of the "VERSION" line, owned by the database; an import finds the
                     ///< empty text and may release and replace it
  sigtype** signal_types;
  valtable** value_tables;
} zelk_conversion;

/// The conversion that is running on the calling thread.
///
/// @return valid until the module's function returns; null when none is running
ZELK_API const zelk_conversion* zelk_get_conversion(void);

ZELK_EXTERN_C_END

#endif
