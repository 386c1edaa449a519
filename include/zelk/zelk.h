/// \file
/// The whole C interface, for C11 and C++20.
///
/// Conventions that hold everywhere (the classes of the `.hpp` headers keep them too):
///
/// 1. **Lists.** A database is a set of list heads (records.h) that the caller holds. Functions
/// take a head, or its address when they change it. The order of heads in argument lists is: nodes,
/// messages, environment variables, bit timings, attribute definitions, database attribute values,
/// categories, filter, comment, version, signal types, value tables.
/// 2. **Ownership.** Every record and text in a list comes from `zelk_malloc` and is released by
/// its list. Texts handed in are copied. Records and texts handed out are borrowed and valid until
/// deleted, unless said otherwise.
/// 3. **Null.** A null list is empty. A lookup or query treats a null record or name as one that
/// does not exist. Other null arguments are not allowed unless said otherwise.
/// 4. **Errors.** Numbers, texts and error texts are those of errors.h. Aborting errors raise
/// `ZelkException`, a C++ exception; the contract of a function says so when it never raises.
/// 5. **Locale.** Numbers are read and written the same way under every locale of the process. In a
/// process whose locale has a double-byte code page, the second byte of a character is never taken
/// for a backslash.
/// 6. **Threads.** Threads may work at once on lists, databases, managers and decoders of their
/// own: create and edit records, read, write, look up, open, save, decode. They may also look up,
/// write and decode in shared lists, or in a shared database, while nobody edits these. Each thread
/// has its own message line (`zelk_format_error`), error text (`zelk_get_thread_error_text`), mark
/// of shortened names (`zelk_symbols_shortened`) and announced names of its last read. The process
/// shares, and guards, the error text of `zelk_get_error_text`, the symbol length, the registered
/// functions of platform.h, and the lists of managers, databases and locks.
///
/// The caller sees to the rest: while one thread edits a list or a database, reads into it or
/// closes it, no other touches it; saving or committing a database edits other instances of its
/// file. A manager, with its status word and the texts that it hands out, belongs to one thread at
/// a time. Registered functions are called in the thread that notifies or is refused. No thread
/// switches the locale of the process while another reads or writes.
/// 7. **End of the process.** Every function may be called from `atexit` handlers and from
/// destructors of global objects. What the library keeps for a thread is released when the thread
/// ends; the main thread's stays to the end of the process.
/// 8. **Memory.** An operation that runs out of memory reports `ZELK_ERR_MEMORY` and fails. In the
/// C interface the report raises, unless the function never raises; C hosts cannot catch that, and
/// treat it as the end of the process. Of the classes only the constructors raise.

#ifndef ZELK_ZELK_H
#define ZELK_ZELK_H

#include "zelk/dbc.h"
#include "zelk/errors.h"
#include "zelk/export.h"
#include "zelk/library.h"
#include "zelk/model.h"
#include "zelk/module.h"
#include "zelk/platform.h"
#include "zelk/query.h"
#include "zelk/records.h"

#endif
