/// \file
/// Reading DBC files into caller-held lists, and writing them.

#ifndef ZELK_DBC_H
#define ZELK_DBC_H

#include <stddef.h>

#include "zelk/export.h"
#include "zelk/records.h"

ZELK_EXTERN_C_BEGIN

/// Reads a DBC file into the caller's lists.
///
/// Every argument but the first is the address of a list head, or of an owned text; all must be
/// valid. The lists are extended in place, never cleared: records that they held stay, and names in
/// the file resolve to them as well. A caller that wants the file alone passes heads that are null.
/// Comments, the version and the filter replace those that were there.
///
/// On an error, everything that was linked before the fault stays in the lists and is usable;
/// nothing leaks. A null file name, and a file that cannot be opened, change nothing but a null
/// `version`. A carriage return directly before a line feed is dropped; a byte 0xFF between two
/// tokens ends the file.
///
/// @param file_name  path in the platform's encoding; null reads nothing and returns `ZELK_OK`
/// @param version    set to an owned empty text when null, also when `file_name` is null
/// @param slots      four places for the definitions of the long-name attributes (signal, message,
///                   node, environment variable); null is allowed. Names too long for the format
///                   stand in such attributes. The read puts the file's definitions there. Once
///                   the file is accepted, their values become the names of the objects, and all
///                   definitions in the slots leave the list and are released; that includes those
///                   which the caller left there, and which no value may use any more. The slots
///                   are null then. A refused file leaves its definitions in list and slots
/// @return `ZELK_OK`; or `ZELK_ERR_SYNTAX` without memory for a name of the "NS_" list, the one
///         fault that neither raises nor reports. Every number but `ZELK_OK` is a failure
/// @throws ZelkException for every other error (numbers in errors.h; `ZELK_ERR_NOT_FOUND` for a
///         file that cannot be opened or read). C hosts use `zelk_try_read`
ZELK_API uint32_t zelk_read(const char* file_name, symblk** nodes, msgblk** messages,
                            env_var_blk** env_vars, btlblk** bit_timings, attr_def** attr_defs,
                            attr** net_attrs, cat** categories, filter_t* filter, char** db_comment,
                            char** version, sigtype** sig_types, valtable** val_tables,
                            attr_def* slots[4]);

/// `zelk_read` for hosts that cannot catch: never raises, and returns the number of the error
/// (errors.h) or `ZELK_OK`. The error's message line is the last one of
/// `zelk_get_thread_error_text`.
ZELK_API uint32_t zelk_try_read(const char* file_name, symblk** nodes, msgblk** messages,
                                env_var_blk** env_vars, btlblk** bit_timings, attr_def** attr_defs,
                                attr** net_attrs, cat** categories, filter_t* filter,
                                char** db_comment, char** version, sigtype** sig_types,
                                valtable** val_tables, attr_def* slots[4]);

/// `zelk_try_read` for the bytes of a file that are in memory: records, numbers and message lines
/// are those of reading a file with these bytes.
///
/// @param text  any bytes, NULs included; only read, and not needed afterwards. Null reads nothing
///              and returns `ZELK_OK`, as a null file name does
/// @param size  their count
ZELK_API uint32_t zelk_try_read_text(const char* text, size_t size, symblk** nodes,
                                     msgblk** messages, env_var_blk** env_vars,
                                     btlblk** bit_timings, attr_def** attr_defs, attr** net_attrs,
                                     cat** categories, filter_t* filter, char** db_comment,
                                     char** version, sigtype** sig_types, valtable** val_tables,
                                     attr_def* slots[4]);

/// Writes a database as a DBC file, created or emptied. The order of sections and every blank are
/// fixed. All list heads and texts may be null. The names of the "NS_" list beyond the keywords are
/// those of the file that the calling thread read last, but for names that a record bears here.
///
/// What was read from a file is written so that it is read back into the same records. Names of
/// nodes, messages, signals and environment variables longer than 32 characters are written
/// shortened, unique up to 1,000 of a kind with the same beginning, and in full as values of the
/// long-name attributes. They are written shortened only for a message, and its signals, behind
/// another message with its identifier, and where the user's own definition of such an attribute is
/// no STRING. Texts keep their bytes, but for a blank behind a backslash at
/// the end of a text, and between the first byte of a double-byte character and a double quote; a
/// carriage return in front of a line feed is lost. Infinities are written as the largest finite
/// doubles, not-a-number as 0, all numbers with 14 significant digits. A list of one transmitter is
/// not written: the "BO_" line has one. The only value that selects a signal is written once, where
/// the message has one multiplexor.
///
/// What the format cannot express is written as it stands, and such a file is refused when it is
/// read, or gives other records:
/// - start bits, lengths, data lengths and baud rates above 32767, and a signal's length of 0;
/// - a signal's factor of 0, which is read as 1, and its minimum above its maximum, which are read
///   exchanged;
/// - names that `zelk_can_name_object` refuses, inline names among them; inline names and units of
///   more than 32 characters; a name of up to 32 characters that an earlier node has;
/// - types of environment variables and attributes, and kinds of objects, beyond their enumerators;
///   bit 15 of an access code; the default of an ENUM that is no item;
/// - records that refer to a definition, category, table, type or filter node that the lists do not
///   hold, or to a signal of another message; circles of multiplexors; a multiplexor without a
///   value that selects the signal; a value without a multiplexor, where the message has one;
/// - what other lines than its own say of a message behind another with its identifier, and of a
///   signal, environment variable or signal type behind another of its name (of signals: in its
///   message): the first one gets it; likewise values of a definition behind another of its name
///   and kind.
///
/// `ZelkDatabase::Write` refuses to save such a database.
///
/// The file at `path` is written directly. A fault of the stream after the opening, such as a full
/// disk, is not noticed.
///
/// @param path           path in the platform's encoding; null cannot be opened
/// @param filter         by value; its lists are only read. One empty list of two is read back as
///                       one link to nothing
/// @param write_mul_val  not 0: also write the "SG_MUL_VAL_" section (extended multiplexing)
/// @return `ZELK_OK`; `ZELK_ERR_WRITE` when the file cannot be opened, which leaves everything as
/// it
///         was and reports nothing
/// @throws ZelkException for `ZELK_ERR_MEMORY`; the file is then incomplete. C hosts use
///         `zelk_try_write`
ZELK_API uint32_t zelk_write(const char* path, symblk* nodes, msgblk* messages,
                             env_var_blk* env_vars, btlblk* bit_timings, attr_def* attr_defs,
                             attr* db_attrs, cat* categories, filter_t filter, const char* comment,
                             const char* version, sigtype* sigtypes, valtable* valtables,
                             uint8_t write_mul_val);

/// `zelk_write` for hosts that cannot catch: never raises, and returns the number of the error
/// (errors.h) or `ZELK_OK`. `ZELK_ERR_MEMORY` is reported, `ZELK_ERR_WRITE` is not.
ZELK_API uint32_t zelk_try_write(const char* path, symblk* nodes, msgblk* messages,
                                 env_var_blk* env_vars, btlblk* bit_timings, attr_def* attr_defs,
                                 attr* db_attrs, cat* categories, filter_t filter,
                                 const char* comment, const char* version, sigtype* sigtypes,
                                 valtable* valtables, uint8_t write_mul_val);

/// Whether a file can hold a name for a node, message, signal or environment variable, so that it
/// is read back: letters, digits and "_" of ASCII, the first no digit; no keyword. A symbol that a
/// file announced ("NS_") can be a name: what is written announces no name that a record bears.
///
/// @param name     null is none
/// @param is_node  not 0: it is a node's, which must not be `ZELK_NO_NODE` either
/// @return 1 or 0
ZELK_API int zelk_can_name_object(const char* name, int is_node);

ZELK_EXTERN_C_END

#endif
