/// \file
/// The library's own file, version, and the names that it shares with hosts.

#ifndef ZELK_LIBRARY_H
#define ZELK_LIBRARY_H

#ifndef __cplusplus
#include <stdbool.h>
#endif

#include "zelk/export.h"

ZELK_EXTERN_C_BEGIN

/// "DBName": the network attribute that gives a database its default name.
ZELK_API extern const char ZelkDatabaseNameAttribute[];

/// "ZelkMessageNotification": the name under which the message of a change notification is
/// registered.
ZELK_API extern const char ZelkNotificationMessageString[];

/// Gives the library's file and version, and whether it serves a host's interface.
///
/// @param file_name          receives the full file name of the library, cut to `file_name_size` -
/// 2 characters and terminated; on Windows in the process's code page; may be null
/// @param file_name_size     bytes in `file_name`; below 2 nothing is written
/// @param version            receives the text "Zelkms Version 3.2.8" as `strncpy` writes it: at
/// most `version_size` - 1 bytes, the rest of which are zeroed. A text that is cut has no
/// terminator, so the caller hands in a zeroed buffer; may be null
/// @param version_size       bytes in `version`; below 2 nothing is written
/// @param interface_version  version of the interface that the host was made for
/// @return true when `interface_version`, taken as unsigned, is below 332
ZELK_API bool ZELKMSGetModuleParameters(char* file_name, int file_name_size, char* version,
                                        int version_size, int interface_version);

ZELK_EXTERN_C_END

#endif
