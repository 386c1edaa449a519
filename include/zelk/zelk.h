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
/// 3. **Null.** A null list is empty. Other null arguments are not allowed unless said otherwise.
/// 4. **Errors.** Numbers, texts and the error text are those of errors.h. Aborting errors raise
/// `ZelkException`, a C++ exception; what a C host may call without catching says so.
/// 5. **Locale.** Numbers are read and written the same way under every locale of the process. In a
/// process whose locale has a double-byte code page, the second byte of a character is never taken
/// for a backslash.
/// 6. **Threads.** The library takes no locks. Reading, writing and reporting share process-wide
/// state (error text, symbol length, announced names, written names) and want one thread at a time;
/// lookups only read the lists they are given.

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
