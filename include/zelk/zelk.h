/// \file
/// The whole C interface, for C11 and C++20.
///
/// Conventions that hold everywhere:
///
/// 1. **Lists.** A database is a set of list heads (records.h) that the caller holds. Functions
/// take a head, or its address when they change it. The order of heads in argument lists is: nodes,
/// messages, environment variables, bit timings, attribute definitions, database attribute values,
/// categories, filter, comment, version, signal types, value tables.
/// 2. **Ownership.** Every record and text in a list comes from `zelk_malloc` and is released by
/// its list. Texts handed in are copied. Records and texts handed out are borrowed and valid until
/// deleted, unless said otherwise.
/// 3. **Null.** A null list is empty. A lookup or query that is asked about a null record, or for a
/// null name, answers as for a missing one. Other null arguments are not allowed unless said
/// otherwise.
/// 4. **Errors.** Numbers, texts and error texts are those of errors.h. Aborting errors raise
/// `ZelkException`, a C++ exception; what a C host may call without catching says so.
/// 5. **Locale.** Numbers are read and written the same way under every locale of the process. In a
/// process whose locale has a double-byte code page, the second byte of a character is never taken
/// for a backslash.
/// 6. **Threads.** What threads do with lists, databases, managers and decoders of their own may
/// run at once: creating and editing records, reads, writes, lookups, opening, saving, decoding. So
/// may lookups, writes and decoding in lists, or in a database, that nobody edits meanwhile. Each
/// thread has its own message line (`zelk_format_error`), error text
/// (`zelk_get_thread_error_text`), mark of shortened names (`zelk_symbols_shortened`) and announced
/// names of its last read. For the whole process, and guarded, are the error text of
/// `zelk_get_error_text`, the symbol length, the registered functions of platform.h, and the lists
/// of managers, databases and locks.
///
/// The caller's duty stays: while one thread edits a list or a database, reads into it or closes
/// it, no other touches it, and saving or committing a database edits other instances of its file;
/// a manager, with its status word and the texts that it hands out,
/// belongs to one thread at a time; registered functions are called in whichever thread notifies or
/// is refused; no thread switches the locale of the process while another reads or writes.
/// 7. **End of the process.** Every function may be called from `atexit` handlers and from
/// destructors of global objects. What the library keeps for a thread is released when the thread
/// ends; the main thread's stays to the end of the process.

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
